#include "viewer/SavedObjects.h"

#include <fcntl.h>
#include <limits.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <optional>

#include "command/Failure.h"
#include "command/FileDescriptor.h"
#include "command/FileIdentity.h"
#include "text/NumberedName.h"

namespace zeb::viewer {

using command::errorText;
using command::ExitCode;
using command::Failure;
using command::FileDescriptor;

namespace {

// An execution's event may be saved for itself, the average, the shortest and the longest of its graph.
constexpr std::uint64_t savesOfAnObject = 4;
constexpr std::size_t maxShownName = 200;

std::string fileNameOf(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

// The name whose numbered form this is, if it is one.
std::optional<std::string> withoutNumber(const std::string& name) {
    const std::size_t point = std::min(name.rfind('.'), name.size());
    const std::size_t mark = name.substr(0, point).find_last_not_of("0123456789");
    if (mark == std::string::npos || mark + 1 == point || name[mark] != '_' || name[mark + 1] == '0') {
        return std::nullopt;
    }
    return name.substr(0, mark) + name.substr(point);
}

std::string keyOf(std::size_t directory, const std::string& fileName) {
    return std::to_string(directory) + "/" + fileName;
}

// Tries whether the directory takes another file, by one without a name. A file system that has none isn't
// asked. Gives the error, or 0.
int errorOfNewFile(const std::string& directory) {
    const FileDescriptor file(::open(directory.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600));
    const bool isMade = file.isOpen() && ::write(file.get(), "x", 1) == 1;
    return !isMade && (errno == ENOSPC || errno == EDQUOT) ? errno : 0;
}

std::uint64_t fileSizeLimit() {
    rlimit limit{};
    return ::getrlimit(RLIMIT_FSIZE, &limit) == 0 ? limit.rlim_cur : RLIM_INFINITY;
}

std::string subject(const SavedObjects::Object& object) {
    return objectInChunk(object.chunkNumber, object.name);
}

}  // namespace

std::string objectInChunk(std::uint64_t chunkNumber, std::string_view name) {
    const std::string_view shown = name.substr(0, maxShownName);
    return "chunk " + std::to_string(chunkNumber) + ": the object \"" + std::string(shown) +
           (shown.size() < name.size() ? "..." : "") + "\"";
}

SavedObjects::SavedObjects(const std::string& logPath, const std::string& directory)
    : logPath_(logPath), directory_(directory) {}

SavedObjects::Object& SavedObjects::at(std::string_view name, std::uint64_t chunkNumber,
                                       const std::string& parent) {
    auto place = parents_.find(parent);
    if (place == parents_.end()) {
        struct stat status {};
        if (::stat(parent.c_str(), &status) != 0) {
            throw Failure(ExitCode::badOutput, parent, "objects can't be saved there: " + errorText(errno));
        }
        const auto number =
            directoryNumbers_.try_emplace({status.st_dev, status.st_ino}, directoryNumbers_.size())
                .first->second;
        place = parents_.emplace(parent, number).first;
    }
    const std::string path(name);
    return objects_
        .try_emplace(keyOf(place->second, fileNameOf(path)), Object{path, chunkNumber, 0, {}, {}, 0})
        .first->second;
}

void SavedObjects::checkRoom(const std::string& words) const {
    for (const auto& [parent, number] : parents_) {
        if (const int error = errorOfNewFile(parent); error != 0) {
            throw Failure(ExitCode::badOutput, parent, words + errorText(error));
        }
    }
}

std::string SavedObjects::pathOf(const Object& object, std::uint64_t number) const {
    return directory_ + "/" + profiling::numberedName(object.name, number);
}

const SavedObjects::Object* SavedObjects::find(std::size_t directory, const std::string& fileName) const {
    const auto place = objects_.find(keyOf(directory, fileName));
    return place == objects_.end() ? nullptr : &place->second;
}

// No object is written to a file that is there.
void SavedObjects::refuseOutput(const command::Given& output) const {
    const auto identity = command::identityOf(output.value);
    if (!identity || identity->name.empty()) {
        return;
    }
    const auto directory = directoryNumbers_.find({identity->device, identity->inode});
    if (directory == directoryNumbers_.end()) {
        return;
    }
    const Object* object = find(directory->second, identity->name);
    if (const auto name = withoutNumber(identity->name); object == nullptr && name) {
        object = find(directory->second, *name);
    }
    if (object != nullptr) {
        throw Failure(ExitCode::badLog, logPath_,
                      subject(*object) + " could be saved as " + output.value + ", the file of " +
                          output.name + ", which needs another name");
    }
}

// A reader that saves every object as often as it may needs no more numbers than are looked at here.
void SavedObjects::findTaken(Object& object) const {
    const std::uint64_t lastNeeded = savesOfAnObject * (object.count - 1);
    struct stat status {};
    for (std::uint64_t free = 0; free < savesOfAnObject * object.count; ++object.endNumber) {
        const std::string candidate = pathOf(object, object.endNumber);
        if (::lstat(candidate.c_str(), &status) == 0) {
            object.takenNumbers.push_back(object.endNumber);
        } else if (free++ == lastNeeded && fileNameOf(candidate).size() > NAME_MAX) {
            throw Failure(ExitCode::badOutput, logPath_,
                          subject(object) + " can't be saved in " + directory_ + " with the number " +
                              std::to_string(object.endNumber) + ": " + errorText(ENAMETOOLONG));
        }
    }
}

void SavedObjects::checkBefore(std::span<const command::Given> outputs) {
    for (const command::Given& output : outputs) {
        refuseOutput(output);
    }
    checkRoom("objects can't be saved there: ");
    const std::uint64_t limit = fileSizeLimit();
    for (auto& [key, object] : objects_) {
        std::sort(object.sizes.begin(), object.sizes.end());
        object.sizes.erase(std::unique(object.sizes.begin(), object.sizes.end()), object.sizes.end());
        if (object.sizes.back() > limit) {
            throw Failure(ExitCode::badOutput, logPath_,
                          subject(object) + " can't be saved in " + directory_ + ": " + errorText(EFBIG));
        }
        findTaken(object);
    }
}

// "a_1" may be the second file of "a" or the first of "a_1".
bool SavedObjects::mayHaveSize(std::size_t directory, const std::string& fileName, std::uint64_t size) const {
    const auto hasSize = [&](const std::string& name) {
        const Object* const object = find(directory, name);
        return object != nullptr && std::binary_search(object->sizes.begin(), object->sizes.end(), size);
    };
    const auto name = withoutNumber(fileName);
    return hasSize(fileName) || (name && hasSize(*name));
}

void SavedObjects::checkFiles(const std::string& key, const Object& object) const {
    const std::size_t directory = std::stoull(key);
    auto taken = object.takenNumbers.begin();
    for (std::uint64_t number = 0; number < object.endNumber; ++number) {
        if (taken != object.takenNumbers.end() && *taken == number) {
            ++taken;
            continue;
        }
        const std::string path = pathOf(object, number);
        struct stat status {};
        if (::lstat(path.c_str(), &status) != 0) {
            return;
        }
        const auto size = static_cast<std::uint64_t>(status.st_size);
        if (S_ISREG(status.st_mode) && !mayHaveSize(directory, fileNameOf(path), size)) {
            throw Failure(ExitCode::badOutput, path,
                          "the object is not saved whole: the file has " + std::to_string(size) +
                              " bytes, the log gives " + std::to_string(object.sizes.back()));
        }
    }
}

void SavedObjects::checkAfter() const {
    for (const auto& [key, object] : objects_) {
        checkFiles(key, object);
    }
    checkRoom("no other object can be saved there, so one may be missing: ");
}

}  // namespace zeb::viewer
