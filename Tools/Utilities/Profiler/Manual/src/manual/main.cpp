// Writes the manual pages and completions of all commands: write-manual VERSION DATE DIRECTORY

#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "console/CommandManual.h"
#include "manual/Commands.h"
#include "manual/Completions.h"
#include "manual/ManPage.h"

namespace zeb::manual {
namespace {

using console::CommandManual;

void writeFile(const std::filesystem::path& path, const std::string& text) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream out;
    out.exceptions(std::ios::badbit | std::ios::failbit);
    out.open(path, std::ios::binary);
    out << text;
    out.close();
}

void writeManuals(const Release& release, const std::filesystem::path& directory) {
    const std::vector<CommandManual> manuals = commandManuals();
    for (const CommandManual& manual : manuals) {
        std::vector<std::string> others;
        for (const CommandManual& other : manuals) {
            if (&other != &manual) {
                others.push_back(other.name);
            }
        }
        writeFile(directory / "man/man1" / (manual.name + ".1"), manPage(manual, release, others));
        writeFile(directory / "bash" / manual.name, bashCompletion(manual));
        writeFile(directory / "zsh" / ("_" + manual.name), zshCompletion(manual));
        writeFile(directory / "fish" / (manual.name + ".fish"), fishCompletion(manual));
    }
}

}  // namespace
}  // namespace zeb::manual

int main(int argc, char** argv) {
    if (argc != 4) {
        std::cerr << "usage: write-manual VERSION DATE DIRECTORY\n";
        return 2;
    }
    try {
        zeb::manual::writeManuals({argv[1], argv[2]}, argv[3]);
    } catch (const std::exception& error) {
        std::cerr << "write-manual: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
