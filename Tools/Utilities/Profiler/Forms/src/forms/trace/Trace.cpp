#include "forms/trace/Trace.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string_view>
#include <vector>

#include "forms/trace/AverageTrace.h"
#include "forms/trace/TraceEvents.h"
#include "forms/trace/TraceFile.h"
#include "forms/trace/TraceTracks.h"
#include "log/ChunkReader.h"
#include "log/FlatBufferReaderUtil.h"
#include "log/Methods.h"
#include "store/EventArena.h"
#include "store/MessageParts.h"
#include "store/NamedList.h"
#include "text/Saturation.h"

namespace zeb::forms {

namespace {

using analysis::Graph;
using profiling::Method;
using profiling::MethodGroup;
using profiling::MethodPart;
using profiling::MethodText;
using profiling::schema::LogMessage;
using profiling::schema::MethodType;

constexpr std::uint64_t runProcess = 1;
constexpr std::uint64_t firstAverageProcess = 2;

constexpr Method unknownMethod = {MethodType::Unknown, "unknown method",  {},
                                  MethodGroup::others, MethodText::other, MethodPart::none};

const Method& shownMethod(MethodType type) {
    const Method* const known = profiling::findMethod(type);
    return known != nullptr ? *known : unknownMethod;
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
        const std::size_t position = parts_
                                         .entryOf(positions_, name, analysis::cutName,
                                                  [&] { return addGraph(analysis::cutName(name)); })
                                         .position;
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

    static std::string nameOf(const Graph& graph) {
        return profiling::cutInMiddle(graph.name, maxTraceText / 2);
    }

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

constexpr double usOfMs = 1000.0;

// The second pass: makes slices of the messages.
class RunSlices {
public:
    RunSlices(TraceFile& file, const analysis::Run& run, const TraceOptions& options, std::uint64_t zeroUs)
        : file_(file), tracks_(file, run), zeroUs_(zeroUs) {
        if (options.fromMs) {
            fromUs_ = profiling::cutToWhole(std::max(0.0, std::ceil(*options.fromMs * usOfMs)));
        }
        if (options.toMs) {
            toUs_ = profiling::cutToWhole(std::max(0.0, std::floor(*options.toMs * usOfMs)));
        }
        file_.nameProcess(runProcess, "run, as measured");
    }

    void add(const LogMessage& message, const profiling::OpenChunk& chunk) {
        tracks_.parts().enter(chunk);
        const Method& method = shownMethod(message.methodType());
        const auto execution =
            method.group == MethodGroup::executions ? tracks_.nextExecution(message) : std::nullopt;
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
        } else if (const auto track = tracks_.place(method.group, execution, slice)) {
            ++result_.slices;
            addSlice(message, method, execution, slice, *track);
        } else {
            ++result_.leftOutForTracks;
        }
    }

    [[nodiscard]] const TraceResult& result() const { return result_; }
    [[nodiscard]] std::uint64_t fromUs() const { return fromUs_; }

private:
    void addSlice(const LogMessage& message, const Method& method,
                  const std::optional<RunTracks::Execution>& execution, TimeSpan slice, TrackNumber track) {
        const std::string text =
            message.text() == nullptr ? std::string() : traceText(tracks_.parts().visible(message.text()));
        const bool isGraph = method.text == MethodText::graph;
        // Where a text is no argument, the name has it.
        const bool isTextInName = (isGraph || file_.isPlain()) && !execution && !text.empty();
        const auto waitUs = execution ? execution->queueWaitUs : std::nullopt;
        const std::uint64_t us = slice.endUs - slice.startUs;
        file_.addSlice(std::string(method.name) + (isTextInName ? " " + text : ""), track, slice,
                       [&](JsonWriter& arguments) {
                           if (message.text() != nullptr) {
                               arguments.member(isGraph ? "graph" : "text", text);
                           }
                           addArguments(arguments, message, us, waitUs);
                       });
        if (waitUs && *waitUs > 0 && us > 0) {
            addQueueWait(*waitUs, slice, track);
        }
    }

    void addArguments(JsonWriter& arguments, const LogMessage& message, std::uint64_t us,
                      std::optional<std::uint64_t> waitUs) {
        arguments.member("method", static_cast<std::int8_t>(message.methodType()));
        arguments.member("level", message.level());
        arguments.member("durationUs", us);
        if (*message.timing()->endTime() < *message.timing()->startTime()) {
            arguments.member("endsBeforeStart", true);
        }
        if (waitUs) {
            arguments.member("queueWaitUs", *waitUs);
            arguments.member("withoutQueueWaitUs", profiling::differenceOrZero(us, *waitUs));
        }
        addEvents(arguments, message, tracks_.parts());
    }

    // The log tells how long it was and not when.
    void addQueueWait(std::uint64_t waitUs, TimeSpan execution, TrackNumber track) {
        const std::uint64_t us = std::min(waitUs, execution.endUs - execution.startUs);
        file_.addSlice("queue wait", track, {execution.startUs, execution.startUs + us},
                       [&](JsonWriter& arguments) {
                           arguments.member("placed", "assumed");
                           arguments.member("queueWaitUs", waitUs);
                       });
    }

    TraceFile& file_;
    RunTracks tracks_;
    std::uint64_t zeroUs_;
    std::uint64_t fromUs_ = 0;
    std::uint64_t toUs_ = std::numeric_limits<std::uint64_t>::max();
    TraceResult result_;
};

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

void describe(JsonWriter& members, const analysis::Run& run, const TraceResult& result,
              std::optional<std::uint64_t> smallestStartUs) {
    members.member("logFile", traceText(run.logFile));
    if (run.header) {
        members.member("generator", traceText(run.header->generatorName));
        members.member("generatorVersion", traceText(run.header->generatorVersion));
        members.member("backendVersion", traceText(run.header->backendVersion));
        members.member("epochUs", run.header->epochUs);
    }
    if (smallestStartUs) {
        members.member("smallestStartUs", *smallestStartUs);
    }
    members.member("slices", result.slices);
    members.member("messagesWithoutTimes", result.withoutTimes);
    members.member("messagesCutAway", result.outsideCut);
    members.member("messagesWithoutTrack", result.leftOutForTracks);
    members.member("messagesTooLate", result.leftOutAsTooLate);
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
    TraceFile file(out, options.slices);
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
    addAverages(file, run, firstAverageProcess, slices.fromUs());
    result.bytes = file.finish([&](JsonWriter& members) { describe(members, run, result, smallestStartUs); });
    return result;
}

}  // namespace zeb::forms
