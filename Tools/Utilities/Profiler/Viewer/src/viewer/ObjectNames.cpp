#include "viewer/ObjectNames.h"

#include <limits.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <unordered_map>
#include <vector>

#include "command/Failure.h"
#include "log/ChunkReader.h"
#include "log/EventUnit.h"
#include "log/FlatBufferReaderUtil.h"
#include "log/LogAccess.h"
#include "text/NumberedName.h"

namespace zeb::viewer {

using command::errorText;
using command::ExitCode;
using command::Failure;

namespace {

namespace fs = std::filesystem;
namespace schema = profiling::schema;

using profiling::LogChunkBuffer;
using EventVector = flatbuffers::Vector<flatbuffers::Offset<schema::LogEvent>>;

// Which places of a chunk have been seen. Events may share what is below them, so that a small chunk stands
// for a huge tree; each place is looked at once.
class SeenPlaces {
public:
    explicit SeenPlaces(const LogChunkBuffer& chunk) : start_(chunk.data()), isSeen_(chunk.size()) {}

    // Returns false from the second time on.
    bool add(const void* place) {
        const auto offset = static_cast<std::size_t>(static_cast<const std::uint8_t*>(place) - start_);
        const bool isNew = !isSeen_[offset];
        isSeen_[offset] = true;
        return isNew;
    }

private:
    const std::uint8_t* start_;
    std::vector<bool> isSeen_;
};

bool climbs(const fs::path& name) {
    return std::any_of(name.begin(), name.end(), [](const fs::path& part) { return part == ".."; });
}

bool isWithin(const fs::path& path, const fs::path& directory) {
    return std::mismatch(directory.begin(), directory.end(), path.begin(), path.end()).first ==
           directory.end();
}

// The number of a taken name may change the directory's name.
bool isNumberedElsewhere(const fs::path& name) {
    return fs::path(profiling::numberedName(name.native(), 1)).parent_path() != name.parent_path();
}

class NameCheck {
public:
    NameCheck(const std::string& logPath, const std::string& directory)
        : logPath_(logPath), directory_(directory) {}

    // Returns the directory of the file that the name stands for, which is there when it is to be an object.
    const std::string& check(std::string_view name, bool isObject) {
        const fs::path path(name);
        if (path.is_absolute() || climbs(path)) {
            throw leadsOut(name, "would be saved");
        }
        const Parent& parent = parentOf(path.parent_path().string());
        if (!parent.isWithin) {
            throw leadsOut(name, "would be saved");
        }
        if (isNumberedElsewhere(path)) {
            throw leadsOut(name, "could be saved, with a number at its last \".\",");
        }
        const bool isTooLong = path.filename().native().size() > NAME_MAX;
        if (isObject && (parent.error != 0 || isTooLong)) {
            throw Failure(ExitCode::badOutput, logPath_,
                          subject(name) + " can't be saved in " + directory_.string() + ": " +
                              errorText(parent.error != 0 ? parent.error : ENAMETOOLONG));
        }
        return parent.path;
    }

    std::uint64_t chunkNumber = 0;

private:
    struct Parent {
        std::string path;
        bool isWithin;
        int error;
    };

    // Each directory is resolved once.
    const Parent& parentOf(const std::string& name) {
        const auto [place, isNew] = parents_.try_emplace(name);
        if (isNew) {
            std::error_code error;
            const fs::path path = name.empty() ? directory_ : fs::canonical(directory_ / name, error);
            place->second = {path.string(), error || isWithin(path, directory_),
                             error ? error.value() : accessError(path)};
        }
        return place->second;
    }

    [[nodiscard]] static int accessError(const fs::path& parent) {
        std::error_code error;
        if (!fs::is_directory(parent, error)) {
            return error ? error.value() : ENOTDIR;
        }
        return ::access(parent.c_str(), W_OK | X_OK) == 0 ? 0 : errno;
    }

    [[nodiscard]] Failure leadsOut(std::string_view name, const std::string& how) const {
        return {ExitCode::badLog, logPath_,
                subject(name) + " " + how + " outside of " + directory_.string() +
                    "; --trust-object-names allows it"};
    }

    [[nodiscard]] std::string subject(std::string_view name) const {
        return objectInChunk(chunkNumber, name);
    }

    std::string logPath_;
    fs::path directory_;
    std::unordered_map<std::string, Parent> parents_;
};

// The walk of one chunk, which has been verified. That bounds the depth of the recursion too.
class ChunkWalk {
public:
    ChunkWalk(const LogChunkBuffer& chunk, NameCheck& names, SavedObjects& objects)
        : seenLists_(chunk), seenEvents_(chunk), names_(names), objects_(objects) {}

    void visit(const EventVector* events) {
        if (events == nullptr || !seenLists_.add(events)) {
            return;
        }
        for (std::uint32_t index = 0; index < profiling::lengthOf(events); ++index) {
            visit(*profiling::tableAt(events, index));
        }
    }

private:
    void visit(const schema::LogEvent& event) {
        if (!seenEvents_.add(&event)) {
            return;
        }
        if (event.fileName() != nullptr) {
            lookAt(event.fileName(), event);
        }
        visit(event.subEvents());
    }

    // A name is read once for each of the two, for events may share it.
    void lookAt(const flatbuffers::String* fileName, const schema::LogEvent& event) {
        const bool isObject = profiling::unitOf(event.unit()) == profiling::EventUnit::object;
        const auto [place, isNew] = (isObject ? objectNames_ : otherNames_).try_emplace(fileName);
        SavedObjects::Object*& object = place->second;
        if (isNew) {
            const std::string_view name = profiling::visibleText(fileName);
            if (name.empty()) {
                return;
            }
            const std::string& parent = names_.check(name, isObject);
            object = isObject ? &objects_.at(name, names_.chunkNumber, parent) : nullptr;
        }
        if (object != nullptr) {
            ++object->count;
            object->sizes.push_back(objectSize(event));
        }
    }

    static std::uint32_t objectSize(const schema::LogEvent& event) {
        const bool hasBytes =
            event.valueSelector() == schema::ValueSelector::Bytes && event.bytes() != nullptr;
        return hasBytes ? profiling::lengthOf(event.bytes()) : 0;
    }

    using Names = std::unordered_map<const flatbuffers::String*, SavedObjects::Object*>;

    SeenPlaces seenLists_;
    SeenPlaces seenEvents_;
    Names objectNames_;
    Names otherNames_;
    NameCheck& names_;
    SavedObjects& objects_;
};

}  // namespace

SavedObjects checkObjectNames(const std::string& logPath, const std::string& directory) {
    profiling::ChunkReader chunks(logPath);
    profiling::FlatBufferReaderUtil walker;
    NameCheck names(logPath, directory);
    SavedObjects objects(logPath, directory);
    while (chunks.isOpen() && chunks.nextLength()) {
        const auto chunk = chunks.readBody();
        if (!chunk || !walker.openChunk(*chunk)) {
            break;
        }
        names.chunkNumber = chunks.index() + 1;
        ChunkWalk walk(*chunk, names, objects);
        while (const schema::LogMessage* const message = walker.nextMessage()) {
            walk.visit(message->events());
        }
    }
    return objects;
}

}  // namespace zeb::viewer
