#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace zeb::viewer::test {

/// A directory that goes away with the test.
class TempDir {
public:
    TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    ~TempDir();

    [[nodiscard]] std::string path(std::string_view name) const { return (directory_ / name).string(); }
    /// Writes a file and gives its path.
    [[nodiscard]] std::string write(std::string_view name, std::string_view bytes) const;

private:
    std::filesystem::path directory_;
};

/// Root may do everything, so it steps down for as long as this lives.
class OrdinaryUser {
public:
    OrdinaryUser();
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;
    ~OrdinaryUser();
};

/// @return the whole file; a text that no file holds when there is none
std::string fileText(const std::string& path);

/// @return a chunk of a log, a header with a name in it, without its length prefix
std::string soundChunk();

/// @return a log of few bytes that stands for more than two million events: eight children each, seven levels
///         deep, the same ones for all parents. The innermost is an object.
std::string sharedEventsLog(const std::string& objectName);

/// @return the length prefix of a chunk
std::string prefixOf(std::uint32_t length);

/// @return the chunk with its length prefix
std::string withPrefix(const std::string& chunk);

}  // namespace zeb::viewer::test
