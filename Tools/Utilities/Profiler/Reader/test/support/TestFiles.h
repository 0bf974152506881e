#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace zeb::test {

/// A directory that goes away with the test.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    [[nodiscard]] std::string path(std::string_view name) const { return (path_ / name).string(); }
    [[nodiscard]] const std::filesystem::path& directory() const { return path_; }
    /// Writes a file and gives its path.
    std::string write(std::string_view name, std::string_view bytes) const;
    std::string write(std::string_view name, const std::vector<std::uint8_t>& bytes) const;

private:
    std::filesystem::path path_;
};

/// Root may do everything, so it steps down for as long as this lives.
class OrdinaryUser {
public:
    OrdinaryUser();
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;
    ~OrdinaryUser();
};

/// @return the whole file, empty when there is none
std::string fileText(const std::string& path);

}  // namespace zeb::test
