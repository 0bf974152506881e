#pragma once

#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "command/CommandLine.h"

namespace zeb::viewer {

/// @return how messages call an object: by its chunk, counted from 1, and its name, cut when it is long
std::string objectInChunk(std::uint64_t chunkNumber, std::string_view name);

/// The objects that a log has for a directory, and the files that a reader makes of them there. Readers pass
/// over a file that they can't make, or not whole, so the viewer looks: at what can be known before the
/// report, and afterwards at each file that is new.
///
/// A reader need not save all of them, and may save an object several times. It makes "a.bin", and "a_1.bin",
/// "a_2.bin" and so on when that is taken, without gaps. Nobody else may make files of these names meanwhile.
class SavedObjects {
public:
    /// @param logPath for messages
    /// @param directory from the root, without links
    SavedObjects(const std::string& logPath, const std::string& directory);

    /// The objects of one name in one directory, by whatever path the log names it.
    struct Object {
        std::string name;           ///< as the log gives it, the first one
        std::uint64_t chunkNumber;  ///< where that is
        std::uint64_t count = 0;    ///< how many the log has
        std::vector<std::uint32_t> sizes;
        std::vector<std::uint64_t> takenNumbers;  ///< files that are not the reader's
        std::uint64_t endNumber = 0;              ///< files from this number on are not looked at
    };

    /// @param parent the directory of the file, which is there; it has to have a status
    /// @return the place of the objects of that name; it stays where it is
    Object& at(std::string_view name, std::uint64_t chunkNumber, const std::string& parent);

    /// Looks before the report.
    /// @param outputs files that are written beside the objects; an empty path stands for none
    /// @throws Failure when an object could become one of these files, can't be made for its size or the
    /// length of
    ///         its numbered name, or a directory has no room for any file
    void checkBefore(std::span<const command::Given> outputs);

    /// Looks after the report.
    /// @throws Failure that names a new file whose size is that of no object of its name, or a directory that
    ///         has no room for another file, so that one may be missing
    void checkAfter() const;

private:
    using Directory = std::pair<::dev_t, ::ino_t>;

    void checkRoom(const std::string& words) const;
    void refuseOutput(const command::Given& output) const;
    [[nodiscard]] std::string pathOf(const Object& object, std::uint64_t number) const;
    void findTaken(Object& object) const;
    [[nodiscard]] const Object* find(std::size_t directory, const std::string& fileName) const;
    [[nodiscard]] bool mayHaveSize(std::size_t directory, const std::string& fileName,
                                   std::uint64_t size) const;
    void checkFiles(const std::string& key, const Object& object) const;

    std::string logPath_;
    std::string directory_;
    std::map<Directory, std::size_t> directoryNumbers_;
    std::map<std::string, std::size_t, std::less<>> parents_;  ///< by path, some for the same directory
    std::unordered_map<std::string, Object> objects_;  ///< by the directory's number and the file name
};

}  // namespace zeb::viewer
