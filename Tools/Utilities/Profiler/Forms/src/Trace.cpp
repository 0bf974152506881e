#include "Trace.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string_view>
#include <utility>
#include <vector>

#include "JsonText.h"
#include "TraceTracks.h"
#include "log/ChunkReader.h"
#include "log/FlatBufferReaderUtil.h"
#include "log/LogAccess.h"
#include "store/EventArena.h"
#include "store/MessageFields.h"
#include "store/MessageParts.h"
#include "store/NamedList.h"
#include "text/Saturation.h"

namespace zeb::forms {

namespace {

using analysis::Graph;
using profiling::EventUnit;
using profiling::schema::LogEvent;
using profiling::schema::LogMessage;
using profiling::schema::MethodType;
using profiling::schema::ValueSelector;
using Events = flatbuffers::Vector<flatbuffers::Offset<LogEvent>>;

constexpr std::uint64_t runProcess = 1;
constexpr std::uint64_t firstAverageProcess = 2;

enum class MethodGroup : std::uint8_t { setUp, executions, others, tearDown };

struct MethodForm {
    MethodType method;
    std::string_view name;
    MethodGroup group;
    std::string_view textField;  ///< what the message's text is
};

constexpr std::string_view graphField = "graph";
constexpr std::string_view textField = "text";
constexpr std::string_view unknownMethod = "unknown method";

constexpr std::array methodForms = {
    MethodForm{MethodType::DynamicLibLoad, "load library", MethodGroup::setUp, textField},
    MethodForm{MethodType::InitStep, "init step", MethodGroup::setUp, textField},
    MethodForm{MethodType::ComposeGraphs, "compose", MethodGroup::setUp, graphField},
    MethodForm{MethodType::Init, "init", MethodGroup::setUp, textField},
    MethodForm{MethodType::Finalize, "finalize", MethodGroup::setUp, graphField},
    MethodForm{MethodType::ContextGetBinarySize, "get binary size", MethodGroup::setUp, textField},
    MethodForm{MethodType::ContextGetBinary, "get binary", MethodGroup::setUp, textField},
    MethodForm{MethodType::ContextGetBinarySectionSize, "get binary section size", MethodGroup::setUp,
               textField},
    MethodForm{MethodType::Execute, "execute", MethodGroup::executions, graphField},
    MethodForm{MethodType::ExecuteAsync, "execute asynchronously", MethodGroup::executions, graphField},
    MethodForm{MethodType::ExecuteOverall, "execute overall", MethodGroup::others, textField},
    MethodForm{MethodType::ApplyBinarySection, "apply binary section", MethodGroup::others, graphField},
    MethodForm{MethodType::ApplyBinarySectionAlternate, "apply binary section", MethodGroup::others,
               graphField},
    MethodForm{MethodType::FinalizeAfterTensorUpdates, "finalize after tensor updates", MethodGroup::others,
               graphField},
    MethodForm{MethodType::UpdateBinarySection, "update binary section", MethodGroup::others, textField},
    MethodForm{MethodType::DeInit, "de-init", MethodGroup::tearDown, textField},
};

MethodForm formOf(MethodType method) {
    const auto* const known = std::find_if(methodForms.begin(), methodForms.end(),
                                           [method](MethodForm form) { return form.method == method; });
    return known != methodForms.end() ? *known
                                      : MethodForm{method, unknownMethod, MethodGroup::others, textField};
}

// The times of a `GraphEvents` message mean nothing.
std::optional<TimeSpan> timesOf(const LogMessage& message) {
    const auto start = message.timing()->startTime();
    const auto end = message.timing()->endTime();
    if (!start || !end || message.methodType() == MethodType::GraphEvents) {
        return std::nullopt;
    }
    return TimeSpan{*start, std::max(*start, *end)};
}

// Hands out the messages of a log that are visible at a level, with the chunk that each lies in.
template <typename Take>
bool forEachMessage(const std::string& logPath, profiling::VisibilityLevel level, Take take) {
    profiling::ChunkReader chunks(logPath);
    if (!chunks.isOpen()) {
        return false;
    }
    profiling::FlatBufferReaderUtil walker;
    while (chunks.nextLength()) {
        const auto buffer = chunks.readBody();
        if (!buffer || !walker.openChunk(*buffer)) {
            return false;
        }
        while (const LogMessage* const message = walker.nextMessage()) {
            if (message->level() < static_cast<std::int8_t>(level)) {
                take(*message, walker.chunk());
            }
        }
        walker.closeChunk();
    }
    return true;
}

std::optional<std::uint64_t> smallestOf(std::optional<std::uint64_t> smallest, std::uint64_t start) {
    return smallest ? std::min(*smallest, start) : start;
}

// A JSON object that is appended to a text, member by member.
class JsonObject {
public:
    explicit JsonObject(std::string& json) : json_(json) { json_ += '{'; }

    void addText(std::string_view key, std::string_view text) {
        addKey(key);
        appendJsonText(json_, cutInMiddle(text, longestTraceText));
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
    JsonObject addObject(std::string_view key) {
        addKey(key);
        return JsonObject(json_);
    }
    template <typename Numbers>
    void addNumbers(std::string_view key, const Numbers& numbers) {
        addKey(key);
        char separator = '[';
        for (const auto number : numbers) {
            json_ += separator;
            appendJsonNumber(json_, std::uint64_t{number});
            separator = ',';
        }
        json_ += separator == '[' ? "[]" : "]";
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

// A track of the trace: the viewers call its numbers process and thread.
struct TrackNumber {
    std::uint64_t process = 0;
    std::uint64_t track = 0;
};

// The file, an event a line.
class TraceFile {
public:
    explicit TraceFile(std::ostream& out) : out_(out) {
        text_ = R"({"displayTimeUnit":"ms","traceEvents":[)";
    }

    void nameProcess(std::uint64_t process, std::string_view name) {
        addMetadata("process_name", {process, 0}, "name", name);
        addSortIndex("process_sort_index", {process, 0}, process);
    }
    void labelProcess(std::uint64_t process, std::string_view label) {
        addMetadata("process_labels", {process, 0}, "labels", label);
    }
    void nameTrack(TrackNumber track, std::string_view name) {
        addMetadata("thread_name", track, "name", name);
        addSortIndex("thread_sort_index", track, track.track);
    }
    /// @param addArguments gets the object of the arguments
    template <typename AddArguments>
    void addSlice(std::string_view name, TrackNumber track, TimeSpan slice, AddArguments addArguments) {
        JsonObject event = open(name, "X", track);
        event.addNumber("ts", slice.startUs);
        event.addNumber("dur", slice.endUs - slice.startUs);
        JsonObject arguments = event.addObject("args");
        addArguments(arguments);
        arguments.close();
        event.close();
        flush(flushedSize);
    }
    /// @param addMembers gets the object of what holds for the trace as a whole
    /// @return size of the file in bytes
    template <typename AddMembers>
    std::uint64_t finish(AddMembers addMembers) {
        text_ += "\n],\"otherData\":";
        JsonObject members(text_);
        addMembers(members);
        members.close();
        text_ += "}\n";
        flush(0);
        return bytes_;
    }

private:
    static constexpr std::size_t flushedSize = 64UL * 1024;

    JsonObject open(std::string_view name, std::string_view phase, TrackNumber track) {
        text_ += isFirst_ ? "\n" : ",\n";
        isFirst_ = false;
        JsonObject event(text_);
        event.addText("name", name);
        event.addText("ph", phase);
        event.addNumber("pid", track.process);
        event.addNumber("tid", track.track);
        return event;
    }
    void addMetadata(std::string_view kind, TrackNumber track, std::string_view key, std::string_view text) {
        JsonObject event = open(kind, "M", track);
        JsonObject arguments = event.addObject("args");
        arguments.addText(key, text);
        arguments.close();
        event.close();
        flush(flushedSize);
    }
    void addSortIndex(std::string_view kind, TrackNumber track, std::uint64_t index) {
        JsonObject event = open(kind, "M", track);
        JsonObject arguments = event.addObject("args");
        arguments.addNumber("sort_index", index);
        arguments.close();
        event.close();
    }
    void flush(std::size_t size) {
        if (text_.size() > size) {
            out_.write(text_.data(), static_cast<std::streamsize>(text_.size()));
            bytes_ += text_.size();
            text_.clear();
        }
    }

    std::ostream& out_;
    std::string text_;
    bool isFirst_ = true;
    std::uint64_t bytes_ = 0;
};

// The events of a message as arguments: the names on the way down, and the unit.
class EventArguments {
public:
    EventArguments(profiling::MessageParts& parts, JsonObject& arguments)
        : parts_(parts), arguments_(arguments) {}

    void add(const Events* events) {
        if (events == nullptr || profiling::lengthOf(events) == 0) {
            return;
        }
        JsonObject object = arguments_.addObject("events");
        const bool isWhole = addBelow(object, {}, events);
        object.close();
        if (!isWhole) {
            arguments_.addTrue("hasMoreEvents");
        }
    }

private:
    // Ends at the limit, however many events there are: many messages may share them.
    bool addBelow(JsonObject& object, std::string_view above, const Events* events) {
        for (std::uint32_t position = 0; position < profiling::lengthOf(events); ++position) {
            if (keys_.size() == maxTraceEvents) {
                return false;
            }
            const LogEvent& event = *profiling::tableAt(events, position);
            const std::string path = pathOf(above, event);
            addValue(object, path, event);
            if (event.subEvents() != nullptr && !addBelow(object, path, event.subEvents())) {
                return false;
            }
        }
        return true;
    }

    std::string pathOf(std::string_view above, const LogEvent& event) {
        std::string path(above);
        path += above.empty() ? "" : " > ";
        path += event.name() == nullptr ? std::string()
                                        : cutInMiddle(parts_.visible(event.name()), longestTraceText);
        return cutInMiddle(path, longestTraceText);
    }

    void addValue(JsonObject& object, const std::string& path, const LogEvent& event) {
        switch (event.valueSelector()) {
            case ValueSelector::Int:
                return object.addNumber(keyOf(path, event), event.intValue());
            case ValueSelector::Uint:
                return object.addNumber(keyOf(path, event), event.uintValue());
            case ValueSelector::Float:
                return object.addNumber(keyOf(path, event), event.floatValue());
            case ValueSelector::Double:
                return object.addNumber(keyOf(path, event), event.doubleValue());
            case ValueSelector::Text:
                return object.addText(keyOf(path, event), event.stringValue() == nullptr
                                                              ? std::string_view{}
                                                              : parts_.visible(event.stringValue()));
            case ValueSelector::Bytes:
                return object.addNumber(
                    newKey(path + " [bytes]"),
                    std::uint64_t{event.bytes() == nullptr ? 0 : profiling::lengthOf(event.bytes())});
            default:
                return object.addText(newKey(path), {});
        }
    }

    const std::string& keyOf(const std::string& path, const LogEvent& event) {
        switch (static_cast<EventUnit>(event.unit())) {
            case EventUnit::bytes:
                return newKey(path + " [bytes]");
            case EventUnit::cycles:
                return newKey(path + " [cycles]");
            case EventUnit::count:
            case EventUnit::object:
            case EventUnit::none:
                return newKey(path);
            default:
                return newKey(path + " [us]");
        }
    }

    // Two members of an object must not have the same key.
    const std::string& newKey(const std::string& wanted) {
        std::string key = wanted;
        for (std::size_t number = 2; std::find(keys_.begin(), keys_.end(), key) != keys_.end(); ++number) {
            key = wanted + " #" + std::to_string(number);
        }
        return keys_.emplace_back(std::move(key));
    }

    profiling::MessageParts& parts_;
    JsonObject& arguments_;
    std::vector<std::string> keys_;
};

// The tracks of the run as the log has it. Each group has its numbers, and the viewers sort by them.
class RunTracks {
public:
    RunTracks(TraceFile& file, const analysis::Run& run) : file_(file), run_(run), parts_(names_) {
        for (const Graph& graph : run.graphs) {
            positions_.findOrAdd(graph.name, [&] { return addGraph(graph.name); });
        }
    }

    struct Execution {
        std::size_t graph = 0;  ///< its position in the run
        std::optional<std::uint64_t> queueWaitUs;
    };

    [[nodiscard]] profiling::MessageParts& parts() { return parts_; }

    /// To be asked once for each execution of the log, in its order.
    /// @return nothing for one that the run does not have
    std::optional<Execution> nextExecution(const LogMessage& message) {
        if (message.text() == nullptr) {
            return std::nullopt;
        }
        const std::string_view name = parts_.visible(message.text());
        const auto whole = [](std::string_view text) { return text; };
        const std::size_t position =
            parts_.entryOf(positions_, name, whole, [&] { return addGraph(name); }).position;
        if (position >= run_.graphs.size()) {
            return std::nullopt;
        }
        const auto& waits = run_.graphs[position].executions.queueWaitUs;
        const std::size_t execution = graphs_[position].executions++;
        return Execution{position, execution < waits.size() ? waits[execution] : std::nullopt};
    }

    /// @return nothing when the group has no track left for the slice
    std::optional<TrackNumber> place(MethodGroup group, const std::optional<Execution>& execution,
                                     TimeSpan slice) {
        if (execution) {
            return place(graphs_[execution->graph].tracks, slice,
                         firstOfGraphs + execution->graph * TrackGroup::maxTracks,
                         [&] { return "Executions of " + nameOf(run_.graphs[execution->graph]); });
        }
        switch (group) {
            case MethodGroup::setUp:
                return place(setUp_, slice, firstOfSetUp, [] { return std::string("Set-up"); });
            case MethodGroup::tearDown:
                return place(tearDown_, slice, firstOfGraphs + run_.graphs.size() * TrackGroup::maxTracks,
                             [] { return std::string("Tear-down"); });
            default:
                return place(others_, slice, firstOfOthers, [] { return std::string("Other calls"); });
        }
    }

private:
    static constexpr std::uint64_t firstOfSetUp = 1;
    static constexpr std::uint64_t firstOfOthers = firstOfSetUp + TrackGroup::maxTracks;
    static constexpr std::uint64_t firstOfGraphs = firstOfOthers + TrackGroup::maxTracks;

    struct NamedGraph {
        profiling::StoredText name;
        std::size_t position;
    };
    struct GraphTracks {
        std::size_t executions = 0;  ///< met so far
        TrackGroup tracks{Sharing::disjoint};
    };

    NamedGraph addGraph(std::string_view name) {
        graphs_.emplace_back();
        return {names_.keepText(name), graphs_.size() - 1};
    }

    static std::string nameOf(const Graph& graph) { return cutInMiddle(graph.name, longestTraceText / 2); }

    template <typename Name>
    std::optional<TrackNumber> place(TrackGroup& group, TimeSpan slice, std::uint64_t first, Name name) {
        const auto place = group.place(slice);
        if (!place) {
            return std::nullopt;
        }
        const TrackNumber number{runProcess, first + place->track};
        if (place->isNewTrack) {
            file_.nameTrack(
                number, place->track == 0 ? name() : name() + ", track " + std::to_string(place->track + 1));
        }
        return number;
    }

    TraceFile& file_;
    const analysis::Run& run_;
    profiling::EventArena names_;
    profiling::MessageParts parts_;
    profiling::NamedList<NamedGraph, &NamedGraph::name> positions_;  ///< those of the run first
    std::vector<GraphTracks> graphs_;
    TrackGroup setUp_{Sharing::nested};
    TrackGroup others_{Sharing::nested};
    TrackGroup tearDown_{Sharing::nested};
};

std::optional<std::uint64_t> inUs(std::optional<double> ms, double (*toWhole)(double)) {
    constexpr double usOfMs = 1000.0;
    return ms ? std::optional(profiling::cutToWhole(std::max(0.0, toWhole(*ms * usOfMs)))) : std::nullopt;
}

// The second pass: makes slices of the messages.
class RunSlices {
public:
    RunSlices(TraceFile& file, const analysis::Run& run, const TraceOptions& options, std::uint64_t zeroUs)
        : file_(file), tracks_(file, run), zeroUs_(zeroUs) {
        fromUs_ = inUs(options.fromMs, [](double us) { return std::ceil(us); }).value_or(0);
        toUs_ = inUs(options.toMs, [](double us) {
                    return std::floor(us);
                }).value_or(std::numeric_limits<std::uint64_t>::max());
        file_.nameProcess(runProcess, "run, as measured");
    }

    void add(const LogMessage& message, const profiling::OpenChunk& chunk) {
        tracks_.parts().enter(chunk);
        const MethodForm form = formOf(message.methodType());
        const auto execution =
            form.group == MethodGroup::executions ? tracks_.nextExecution(message) : std::nullopt;
        const auto times = timesOf(message);
        if (!times) {
            ++result_.withoutTimes;
            return;
        }
        const TimeSpan slice{times->startUs - zeroUs_, times->endUs - zeroUs_};
        if (slice.endUs >= largestExactNumber) {
            ++result_.leftOutAsTooLate;
        } else if (slice.endUs < fromUs_ || slice.startUs > toUs_) {
            ++result_.outsideCut;
        } else if (const auto track = tracks_.place(form.group, execution, slice)) {
            ++result_.slices;
            addSlice(message, form, execution, slice, *track);
        } else {
            ++result_.leftOutForTracks;
        }
    }

    [[nodiscard]] const TraceResult& result() const { return result_; }
    [[nodiscard]] std::uint64_t fromUs() const { return fromUs_; }

private:
    void addSlice(const LogMessage& message, const MethodForm& form,
                  const std::optional<RunTracks::Execution>& execution, TimeSpan slice, TrackNumber track) {
        const std::string text = message.text() == nullptr
                                     ? std::string()
                                     : cutInMiddle(tracks_.parts().visible(message.text()), longestTraceText);
        const std::uint64_t us = slice.endUs - slice.startUs;
        const auto wait = execution ? execution->queueWaitUs : std::nullopt;
        const bool isNamedByGraph = form.textField == graphField && !execution && !text.empty();
        file_.addSlice(std::string(form.name) + (isNamedByGraph ? " " + text : ""), track, slice,
                       [&](JsonObject& arguments) {
                           if (form.name == unknownMethod) {
                               arguments.addNumber(
                                   "method", std::int64_t{static_cast<std::int8_t>(message.methodType())});
                           }
                           if (message.text() != nullptr) {
                               arguments.addText(form.textField, text);
                           }
                           arguments.addNumber("level", std::int64_t{message.level()});
                           arguments.addNumber("durationUs", us);
                           if (*message.timing()->endTime() < *message.timing()->startTime()) {
                               arguments.addTrue("endsBeforeStart");
                           }
                           if (wait) {
                               arguments.addNumber("queueWaitUs", *wait);
                               arguments.addNumber("withoutQueueWaitUs",
                                                   profiling::differenceOrZero(us, *wait));
                           }
                           EventArguments(tracks_.parts(), arguments).add(message.events());
                       });
        if (wait && *wait > 0 && us > 0) {
            addQueueWait(*wait, slice, track);
        }
    }

    // The log tells how long it was and not when.
    void addQueueWait(std::uint64_t waitUs, TimeSpan execution, TrackNumber track) {
        const std::uint64_t us = std::min(waitUs, execution.endUs - execution.startUs);
        file_.addSlice("queue wait", track, {execution.startUs, execution.startUs + us},
                       [&](JsonObject& arguments) {
                           arguments.addText("placed", "assumed");
                           arguments.addNumber("queueWaitUs", waitUs);
                       });
    }

    TraceFile& file_;
    RunTracks tracks_;
    std::uint64_t zeroUs_;
    std::uint64_t fromUs_ = 0;
    std::uint64_t toUs_ = 0;
    TraceResult result_;
};

// An average inference of a graph: its layers end to end in their order, which nobody has measured.
class AverageInference {
public:
    AverageInference(TraceFile& file, std::uint64_t process, std::uint64_t startUs)
        : file_(file), process_(process), atUs_(std::min(startUs, largestExactNumber)) {}

    /// @param graph has layers
    void add(const Graph& graph, bool isOnlyGraph) {
        const std::string of =
            isOnlyGraph ? std::string() : " of " + cutInMiddle(graph.name, longestTraceText / 2);
        file_.nameProcess(process_, "average inference" + of + " (laid out, not measured)");
        if (!graph.zebLayers.empty()) {
            file_.nameTrack({process_, zebTrack}, "ZEB layers");
        }
        file_.nameTrack({process_, dspTrack}, "DSP");
        file_.nameTrack({process_, krelTrack}, "Krel");
        for (const analysis::ZebLayer& layer : graph.zebLayers) {
            addZebLayer(layer);
        }
        if (graph.zebLayers.empty()) {
            for (const analysis::OruLayer& layer : graph.oruLayers) {
                addOruLayer(layer);
            }
        }
        if (leftOut_ > 0) {
            file_.labelProcess(process_, std::to_string(leftOut_) + " layers left out: times too large");
        }
    }

private:
    static constexpr std::uint64_t zebTrack = 1;
    static constexpr std::uint64_t dspTrack = 2;
    static constexpr std::uint64_t krelTrack = 3;
    static constexpr std::size_t maxShownIds = 32;

    void addZebLayer(const analysis::ZebLayer& layer) {
        const auto us = room(layer.dspUs, layer.krelUs);
        if (!us) {
            return;
        }
        file_.addSlice(layer.name, {process_, zebTrack}, {atUs_, atUs_ + *us}, [&](JsonObject& arguments) {
            arguments.addText("placed", "laid out");
            arguments.addNumber("dspUs", layer.dspUs);
            arguments.addNumber("krelUs", layer.krelUs);
            arguments.addNumber("oruLayerCount", std::uint64_t{layer.oruLayers.size()});
            const auto shown = static_cast<std::ptrdiff_t>(std::min(maxShownIds, layer.oruLayers.size()));
            arguments.addNumbers("oruLayers",
                                 std::vector(layer.oruLayers.begin(), layer.oruLayers.begin() + shown));
        });
        const auto addNothing = [](JsonObject& arguments) { arguments.addText("placed", "laid out"); };
        addPart(layer.name, dspTrack, layer.dspUs, addNothing);
        addPart(layer.name, krelTrack, layer.krelUs, addNothing);
    }

    void addOruLayer(const analysis::OruLayer& layer) {
        if (!room(layer.timeUs(), 0)) {
            return;
        }
        addPart(layer.typeName + " " + std::to_string(layer.id), layer.isOffloaded ? krelTrack : dspTrack,
                layer.timeUs(), [&](JsonObject& arguments) {
                    arguments.addText("placed", "laid out");
                    arguments.addNumber("oruLayer", std::uint64_t{layer.id});
                    arguments.addText("type", layer.typeName);
                });
    }

    template <typename AddArguments>
    void addPart(std::string_view name, std::uint64_t track, std::uint64_t us, AddArguments addArguments) {
        if (us > 0) {
            file_.addSlice(name, {process_, track}, {atUs_, atUs_ + us}, addArguments);
        }
        atUs_ += us;
    }

    // The sum of two times, if there is room for it; else the layer is left out.
    std::optional<std::uint64_t> room(std::uint64_t oneUs, std::uint64_t otherUs) {
        const std::uint64_t left = largestExactNumber - atUs_;
        if (oneUs > left || otherUs > left - oneUs) {
            ++leftOut_;
            return std::nullopt;
        }
        return oneUs + otherUs;
    }

    TraceFile& file_;
    std::uint64_t process_;
    std::uint64_t atUs_;
    std::uint64_t leftOut_ = 0;
};

void addAverages(TraceFile& file, const analysis::Run& run, std::uint64_t startUs) {
    for (std::size_t position = 0; position < run.graphs.size(); ++position) {
        const Graph& graph = run.graphs[position];
        if (!graph.zebLayers.empty() || !graph.oruLayers.empty()) {
            AverageInference(file, firstAverageProcess + position, startUs)
                .add(graph, run.graphs.size() == 1);
        }
    }
}

std::string labelOf(const TraceResult& result) {
    std::string label;
    const auto add = [&label](std::uint64_t count, std::string_view what) {
        if (count > 0) {
            label += (label.empty() ? "" : "; ") + std::to_string(count) + " " + std::string(what);
        }
    };
    add(result.withoutTimes, "without times");
    add(result.outsideCut, "cut away");
    add(result.leftOutForTracks, "found no track");
    add(result.leftOutAsTooLate, "too late");
    return label.empty() ? label : "Messages not shown: " + label;
}

void describe(JsonObject& members, const analysis::Run& run, const TraceResult& result,
              std::optional<std::uint64_t> smallestStartUs) {
    members.addText("logFile", run.logFile);
    if (run.header) {
        members.addText("generator", run.header->generatorName);
        members.addText("generatorVersion", run.header->generatorVersion);
        members.addText("backendVersion", run.header->backendVersion);
        members.addNumber("epochUs", run.header->epochUs);
    }
    if (smallestStartUs) {
        members.addNumber("smallestStartUs", *smallestStartUs);
    }
    members.addNumber("slices", result.slices);
    members.addNumber("messagesWithoutTimes", result.withoutTimes);
    members.addNumber("messagesCutAway", result.outsideCut);
    members.addNumber("messagesWithoutTrack", result.leftOutForTracks);
    members.addNumber("messagesTooLate", result.leftOutAsTooLate);
}

}  // namespace

std::optional<TraceResult> writeTrace(std::ostream& out, const analysis::Run& run, const std::string& logPath,
                                      const TraceOptions& options) {
    std::optional<std::uint64_t> smallestStartUs;
    const auto findStart = [&](const LogMessage& message, const profiling::OpenChunk& /*chunk*/) {
        if (const auto times = timesOf(message)) {
            smallestStartUs = smallestOf(smallestStartUs, times->startUs);
        }
    };
    if (!forEachMessage(logPath, options.level, findStart)) {
        return std::nullopt;
    }
    TraceFile file(out);
    RunSlices slices(file, run, options, smallestStartUs.value_or(0));
    const auto addSlice = [&](const LogMessage& message, const profiling::OpenChunk& chunk) {
        slices.add(message, chunk);
    };
    if (!forEachMessage(logPath, options.level, addSlice)) {
        return std::nullopt;
    }
    TraceResult result = slices.result();
    if (const std::string label = labelOf(result); !label.empty()) {
        file.labelProcess(runProcess, label);
    }
    addAverages(file, run, slices.fromUs());
    result.bytes = file.finish([&](JsonObject& members) { describe(members, run, result, smallestStartUs); });
    return result;
}

}  // namespace zeb::forms
