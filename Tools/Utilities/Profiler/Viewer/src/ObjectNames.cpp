#include "ObjectNames.h"

#include <limits.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <vector>

#include "Failure.h"
#include "log/ChunkReader.h"
#include "log/FlatBufferReaderUtil.h"
#include "log/LogAccess.h"

namespace zeb::viewer {

namespace {

namespace fs = std::filesystem;
namespace schema = profiling::schema;

using profiling::LogChunkBuffer;
using EventVector = flatbuffers::Vector<flatbuffers::Offset<schema::LogEvent>>;

constexpr std::uint32_t objectUnit = 5;
constexpr std::size_t maxShownName = 200;

// Which places of a chunk have been seen. Events may share what is below them, so that a small chunk stands
// for a huge tree; each place is looked at once.
class SeenPlaces {
public:
    explicit SeenPlaces(const LogChunkBuffer& chunk) : start_(chunk.data()), isSeen_(chunk.size()) {}

    // Gives false from the second time on.
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

class NameCheck {
public:
    NameCheck(const std::string& logPath, const std::string& directory)
        : logPath_(logPath), directory_(directory) {}

    void check(std::string_view name, bool isObject) const {
        const fs::path path(name);
        if (path.is_absolute() || climbs(path)) {
            throw leadsOut(name);
        }
        std::error_code error;
        const fs::path parent =
            path.has_parent_path() ? fs::canonical(directory_ / path.parent_path(), error) : directory_;
        if (!error && !isWithin(parent, directory_)) {
            throw leadsOut(name);
        }
        if (isObject) {
            checkFile(name, path.filename(), error ? error.value() : accessError(parent));
        }
    }

    std::uint64_t chunkNumber = 0;

private:
    [[nodiscard]] static int accessError(const fs::path& parent) {
        return ::access(parent.c_str(), W_OK | X_OK) == 0 ? 0 : errno;
    }

    void checkFile(std::string_view name, const fs::path& fileName, int directoryError) const {
        const int nameError = fileName.empty() ? EISDIR : ENAMETOOLONG;
        const bool isGood = !fileName.empty() && fileName.native().size() <= NAME_MAX;
        if (directoryError != 0 || !isGood) {
            throw Failure(ExitCode::badOutput, logPath_,
                          subject(name) + " can't be saved in " + directory_.string() + ": " +
                              errorText(directoryError != 0 ? directoryError : nameError));
        }
    }

    [[nodiscard]] Failure leadsOut(std::string_view name) const {
        return {ExitCode::badLog, logPath_,
                subject(name) + " would be saved outside of " + directory_.string() +
                    "; --trust-object-names allows it"};
    }

    [[nodiscard]] std::string subject(std::string_view name) const {
        const std::string_view shown = name.substr(0, maxShownName);
        return "chunk " + std::to_string(chunkNumber) + ": the object \"" + std::string(shown) +
               (shown.size() < name.size() ? "..." : "") + "\"";
    }

    std::string logPath_;
    fs::path directory_;
};

// The walk of one chunk, which has been verified. That bounds the depth of the recursion too.
class ChunkWalk {
public:
    ChunkWalk(const LogChunkBuffer& chunk, const NameCheck& names)
        : seenLists_(chunk), seenEvents_(chunk), names_(names) {}

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
        if (event.fileName() != nullptr && !profiling::visibleText(event.fileName()).empty()) {
            names_.check(profiling::visibleText(event.fileName()), event.unit() == objectUnit);
        }
        visit(event.subEvents());
    }

    SeenPlaces seenLists_;
    SeenPlaces seenEvents_;
    const NameCheck& names_;
};

}  // namespace

void checkObjectNames(const std::string& logPath, const std::string& directory) {
    profiling::ChunkReader chunks(logPath);
    profiling::FlatBufferReaderUtil walker;
    NameCheck names(logPath, directory);
    while (chunks.isOpen() && chunks.nextLength()) {
        const auto chunk = chunks.readBody();
        if (!chunk || !walker.openChunk(*chunk)) {
            return;
        }
        names.chunkNumber = chunks.index() + 1;
        ChunkWalk walk(*chunk, names);
        while (const schema::LogMessage* const message = walker.nextMessage()) {
            walk.visit(message->events());
        }
    }
}

}  // namespace zeb::viewer
