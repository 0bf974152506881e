#include "forms/trace/TraceFile.h"

namespace zeb::forms {

TraceFile::TraceFile(std::ostream& out, SliceForm slices) : json_(out, {.bigAsText = true}), slices_(slices) {
    json_.beginObject();
    json_.member("displayTimeUnit", "ms");
    json_.key("traceEvents");
    json_.beginList();
}

void TraceFile::nameProcess(std::uint64_t process, std::string_view name) {
    addMetadata("process_name", {process, 0}, "name", traceText(name));
    addMetadata("process_sort_index", {process, 0}, "sort_index", process);
}

void TraceFile::labelProcess(std::uint64_t process, std::string_view label) {
    addMetadata("process_labels", {process, 0}, "labels", traceText(label));
}

void TraceFile::nameTrack(TrackNumber track, std::string_view name) {
    addMetadata("thread_name", track, "name", traceText(name));
    addMetadata("thread_sort_index", track, "sort_index", track.track);
}

void TraceFile::beginEvent(std::string_view name, std::string_view phase, TrackNumber track) {
    json_.breakLine();
    json_.beginObject();
    json_.member("name", traceText(name));
    json_.member("ph", phase);
    json_.member("pid", track.process);
    json_.member("tid", track.track);
}

template <typename Value>
void TraceFile::addMetadata(std::string_view kind, TrackNumber track, std::string_view key,
                            const Value& value) {
    beginEvent(kind, "M", track);
    json_.key("args");
    json_.beginObject();
    json_.member(key, value);
    json_.endObject();
    json_.endObject();
}

}  // namespace zeb::forms
