#include "forms/trace/TraceFile.h"

namespace zeb::forms {

TraceFile::TraceFile(std::ostream& out) : out_(out), text_(R"({"displayTimeUnit":"ms","traceEvents":[)") {}

void TraceFile::nameProcess(std::uint64_t process, std::string_view name) {
    addMetadata("process_name", {process, 0}, "name", name);
    addSortIndex("process_sort_index", {process, 0}, process);
}

void TraceFile::labelProcess(std::uint64_t process, std::string_view label) {
    addMetadata("process_labels", {process, 0}, "labels", label);
}

void TraceFile::nameTrack(TrackNumber track, std::string_view name) {
    addMetadata("thread_name", track, "name", name);
    addSortIndex("thread_sort_index", track, track.track);
}

JsonObject TraceFile::open(std::string_view name, std::string_view phase, TrackNumber track) {
    text_ += isFirst_ ? "\n" : ",\n";
    isFirst_ = false;
    JsonObject event(text_);
    event.addText("name", name);
    event.addText("ph", phase);
    event.addNumber("pid", track.process);
    event.addNumber("tid", track.track);
    return event;
}

void TraceFile::close(JsonObject& event) {
    constexpr std::size_t pieceSize = 64UL * 1024;
    event.close();
    if (text_.size() >= pieceSize) {
        flush();
    }
}

void TraceFile::addMetadata(std::string_view kind, TrackNumber track, std::string_view key,
                            std::string_view text) {
    JsonObject event = open(kind, "M", track);
    JsonObject arguments = event.addObject("args");
    arguments.addText(key, text);
    arguments.close();
    close(event);
}

void TraceFile::addSortIndex(std::string_view kind, TrackNumber track, std::uint64_t index) {
    JsonObject event = open(kind, "M", track);
    JsonObject arguments = event.addObject("args");
    arguments.addNumber("sort_index", index);
    arguments.close();
    close(event);
}

void TraceFile::flush() {
    out_.write(text_.data(), static_cast<std::streamsize>(text_.size()));
    bytes_ += text_.size();
    text_.clear();
}

}  // namespace zeb::forms
