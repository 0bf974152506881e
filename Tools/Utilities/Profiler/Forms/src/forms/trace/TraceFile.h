#pragma once

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>

#include "forms/json/JsonText.h"
#include "forms/trace/TraceTracks.h"
#include "text/Utf8.h"

/// A file in the Trace Event format as it is written: an event a line, and no more of it in memory than a
/// piece.
namespace zeb::forms {

/// Texts of a log stand in a trace with that many bytes at most: from longer ones the middle is left out.
inline constexpr std::size_t longestTraceText = 120;

/// A JSON object that is appended to a text, member by member. Keys have to differ.
class JsonObject {
public:
    /// @param json has to outlive the object; nobody else appends to it before `close`
    explicit JsonObject(std::string& json) : json_(json) { json_ += '{'; }

    /// Adds a text, cut to `longestTraceText`.
    void addText(std::string_view key, std::string_view text) {
        addKey(key);
        appendJsonText(json_, profiling::cutInMiddle(text, longestTraceText));
    }
    template <typename Number>
    void addNumber(std::string_view key, Number value) {
        addKey(key);
        appendJsonNumber(json_, value);
    }
    void addTrue(std::string_view key) {
        addKey(key);
        json_ += "true";
    }
    template <typename Numbers>
    void addNumbers(std::string_view key, const Numbers& numbers) {
        addKey(key);
        json_ += '[';
        bool isFirst = true;
        for (const auto number : numbers) {
            json_ += isFirst ? "" : ",";
            isFirst = false;
            appendJsonNumber(json_, std::uint64_t{number});
        }
        json_ += ']';
    }
    /// @return an object within this one, to be closed before the next member
    JsonObject addObject(std::string_view key) {
        addKey(key);
        return JsonObject(json_);
    }
    void close() { json_ += '}'; }

private:
    void addKey(std::string_view key) {
        json_ += isEmpty_ ? "" : ",";
        isEmpty_ = false;
        appendJsonText(json_, key);
        json_ += ':';
    }

    std::string& json_;
    bool isEmpty_ = true;
};

/// A track of a trace by its numbers, which viewers call process and thread and sort by.
struct TrackNumber {
    std::uint64_t process = 0;
    std::uint64_t track = 0;
};

class TraceFile {
public:
    /// @param out has to outlive the file; its state tells whether writing succeeded
    explicit TraceFile(std::ostream& out);

    void nameProcess(std::uint64_t process, std::string_view name);
    void labelProcess(std::uint64_t process, std::string_view label);
    void nameTrack(TrackNumber track, std::string_view name);

    /// @param addArguments gets the object of the slice's arguments
    template <typename AddArguments>
    void addSlice(std::string_view name, TrackNumber track, TimeSpan slice, AddArguments addArguments) {
        JsonObject event = open(name, "X", track);
        event.addNumber("ts", slice.startUs);
        event.addNumber("dur", slice.endUs - slice.startUs);
        JsonObject arguments = event.addObject("args");
        addArguments(arguments);
        arguments.close();
        close(event);
    }

    /// Ends the file.
    /// @param addMembers gets the object of what holds for the trace as a whole
    /// @return the file's size in bytes
    template <typename AddMembers>
    std::uint64_t finish(AddMembers addMembers) {
        text_ += "\n],\"otherData\":";
        JsonObject members(text_);
        addMembers(members);
        members.close();
        text_ += "}\n";
        flush();
        return bytes_;
    }

private:
    JsonObject open(std::string_view name, std::string_view phase, TrackNumber track);
    void close(JsonObject& event);
    void addMetadata(std::string_view kind, TrackNumber track, std::string_view key, std::string_view text);
    void addSortIndex(std::string_view kind, TrackNumber track, std::uint64_t index);
    void flush();

    std::ostream& out_;
    std::string text_;  ///< what has not gone out yet
    bool isFirst_ = true;
    std::uint64_t bytes_ = 0;  ///< gone out
};

}  // namespace zeb::forms
