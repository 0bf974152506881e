#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace zeb::fuzz {

/// A file that lies in memory and has a path, so that a reader can open it.
class MemoryFile {
public:
    /// @throws std::system_error
    MemoryFile();
    ~MemoryFile();
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    [[nodiscard]] const std::string& path() const { return path_; }

    /// Puts the bytes in place of what the file holds.
    void assign(std::span<const std::uint8_t> bytes);
    [[nodiscard]] std::string content() const;

private:
    int descriptor_;
    std::string path_;
};

}  // namespace zeb::fuzz
