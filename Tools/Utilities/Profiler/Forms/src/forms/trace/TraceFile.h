#pragma once

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>

#include "forms/json/JsonWriter.h"
#include "forms/trace/TraceTracks.h"
#include "text/Utf8.h"

/// A file in the Trace Event format as it is written: an event a line, and no more of it in memory than a
/// piece.
namespace zeb::forms {

/// Texts of a log stand in a trace with that many bytes at most: from longer ones the middle is left out.
inline constexpr std::size_t maxTraceText = 120;

/// @return a text of the log as it stands in a trace
inline std::string traceText(std::string_view text) {
    return profiling::cutInMiddle(text, maxTraceText);
}

/// A track of a trace by its numbers, which viewers call process and thread and sort by.
struct TrackNumber {
    std::uint64_t process = 0;
    std::uint64_t track = 0;
};

enum class SliceForm : std::uint8_t {
    full,
    plain,  ///< without arguments: some viewers take them for a part of the name, and then no two slices are
            ///< alike
};

class TraceFile {
public:
    /// @param out has to outlive the file; its state tells whether writing succeeded
    explicit TraceFile(std::ostream& out, SliceForm slices = SliceForm::full);

    [[nodiscard]] bool isPlain() const { return slices_ == SliceForm::plain; }

    void nameProcess(std::uint64_t process, std::string_view name);
    void labelProcess(std::uint64_t process, std::string_view label);
    void nameTrack(TrackNumber track, std::string_view name);

    /// @param addArguments gets the writer within the object of the slice's arguments
    template <typename AddArguments>
    void addSlice(std::string_view name, TrackNumber track, TimeSpan slice, AddArguments addArguments) {
        beginEvent(name, "X", track);
        json_.member("ts", slice.startUs);
        json_.member("dur", slice.endUs - slice.startUs);
        if (!isPlain()) {
            json_.key("args");
            json_.beginObject();
            addArguments(json_);
            json_.endObject();
        }
        json_.endObject();
    }

    /// Ends the file.
    /// @param addMembers gets the writer within the object of what holds for the trace as a whole
    /// @return the file's size in bytes
    template <typename AddMembers>
    std::uint64_t finish(AddMembers addMembers) {
        json_.breakLine();
        json_.endList();
        json_.key("otherData");
        json_.beginObject();
        addMembers(json_);
        json_.endObject();
        json_.endObject();
        json_.breakLine();
        return json_.flush();
    }

private:
    void beginEvent(std::string_view name, std::string_view phase, TrackNumber track);
    template <typename Value>
    void addMetadata(std::string_view kind, TrackNumber track, std::string_view key, const Value& value);

    JsonWriter json_;
    SliceForm slices_;
};

}  // namespace zeb::forms
