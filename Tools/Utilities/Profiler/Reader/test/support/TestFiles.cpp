#include "support/TestFiles.h"

#include <stdlib.h>  // NOLINT(modernize-deprecated-headers): mkdtemp
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <iterator>
#include <system_error>

namespace zeb::test {

TempDir::TempDir() {
    std::string pattern = (std::filesystem::temp_directory_path() / "zeb-test-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) {
        throw std::system_error(errno, std::generic_category(), pattern);
    }
    path_ = pattern;
}

TempDir::~TempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string TempDir::write(std::string_view name, std::string_view bytes) const {
    std::ofstream(path_ / name, std::ios::binary) << bytes;
    return path(name);
}

std::string TempDir::write(std::string_view name, const std::vector<std::uint8_t>& bytes) const {
    return write(name, std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
}

OrdinaryUser::OrdinaryUser() {
    if (::getuid() == 0 && ::seteuid(65534) != 0) {
        throw std::system_error(errno, std::generic_category(), "seteuid");
    }
}

OrdinaryUser::~OrdinaryUser() {
    static_cast<void>(::seteuid(::getuid()));
}

std::string fileText(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace zeb::test
