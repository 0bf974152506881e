// Runs a fuzz target over the files that are given, and over those in the directories that are given.

#include <exception>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include "harness/FuzzTarget.h"
#include "harness/LogChecks.h"
#include "support/TestFiles.h"

namespace {

std::vector<std::filesystem::path> inputsIn(const std::filesystem::path& path) {
    if (!std::filesystem::is_directory(path)) {
        return {std::filesystem::absolute(path)};
    }
    std::vector<std::filesystem::path> inputs;
    for (const auto& entry : std::filesystem::directory_iterator(std::filesystem::absolute(path))) {
        if (entry.is_regular_file()) {
            inputs.push_back(entry.path());
        }
    }
    return inputs;
}

// Copied to a buffer of its size, so that a sanitizer sees what is read behind it.
void replay(const std::filesystem::path& path) {
    const std::string text = zeb::test::fileText(path.string());
    const std::vector<std::uint8_t> bytes(text.begin(), text.end());
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
}

}  // namespace

int main(int argc, char** argv) {
    try {
        std::vector<std::filesystem::path> inputs;
        for (int index = 1; index < argc; ++index) {
            const auto more = inputsIn(argv[index]);
            inputs.insert(inputs.end(), more.begin(), more.end());
        }
        zeb::fuzz::checkEveryInputInFull();
        for (const std::filesystem::path& input : inputs) {
            std::cerr << input.filename().string() << std::endl;  // tells which one ended the process
            replay(input);
        }
        std::cout << inputs.size() << " inputs\n";
        return inputs.empty() ? 1 : 0;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
