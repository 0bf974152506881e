#include "support/TestFiles.h"

#include <stdlib.h>  // NOLINT(modernize-deprecated-headers): mkdtemp

#include <fstream>
#include <iterator>
#include <system_error>

namespace zeb::test {

TempDir::TempDir() {
    std::string pattern = (std::filesystem::temp_directory_path() / "zeb-test-XXXXXX").string();
    path_ = mkdtemp(pattern.data());
}

TempDir::~TempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string TempDir::write(std::string_view name, const std::vector<std::uint8_t>& bytes) const {
    std::ofstream file(path_ / name, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return path(name);
}

std::string fileText(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace zeb::test
