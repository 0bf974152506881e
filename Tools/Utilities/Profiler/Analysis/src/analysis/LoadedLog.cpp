#include "analysis/LoadedLog.h"

#include <algorithm>
#include <sstream>
#include <string_view>
#include <unordered_map>

#include "analysis/LogText.h"
#include "analysis/RunId.h"
#include "log/ChunkReader.h"
#include "log/FlatBufferReaderUtil.h"
#include "log/Methods.h"
#include "store/MessageFields.h"
#include "store/MessageParts.h"
#include "store/NamedList.h"

namespace zeb::analysis {

namespace {

using profiling::schema::LogMessage;
using profiling::schema::MethodType;

constexpr std::optional<StepKind> stepOf(MethodType method) {
    switch (method) {
        case MethodType::DynamicLibLoad:
            return StepKind::libraryLoad;
        case MethodType::InitStep:
            return StepKind::initStep;
        case MethodType::ComposeGraphs:
            return StepKind::compose;
        case MethodType::Init:
            return StepKind::init;
        case MethodType::Finalize:
            return StepKind::finalize;
        case MethodType::DeInit:
            return StepKind::deInit;
        default:
            return std::nullopt;
    }
}
static_assert(std::all_of(profiling::methods.begin(), profiling::methods.end(),
                          [](const profiling::Method& method) {
                              return stepOf(method.type).has_value() ==
                                     (method.part == profiling::MethodPart::steps);
                          }),
              "each method that has steps has their kind");

// Takes down of each message what the store does not keep.
class MessageNotes {
public:
    explicit MessageNotes(LoadedLog& log) : log_(log) {}

    void add(const LogMessage& message, const profiling::OpenChunk& chunk) {
        parts_.enter(chunk);
        if (profiling::methodOf(message.methodType()).part == profiling::MethodPart::executions) {
            addExecution(message);
        } else if (const auto kind = stepOf(message.methodType())) {
            log_.steps.push_back({.kind = *kind,
                                  .text = textOf(message),
                                  .startUs = startOf(message),
                                  .durationUs = durationOf(message),
                                  .events = {}});
        }
    }

private:
    static std::optional<std::uint64_t> startOf(const LogMessage& message) {
        const auto start = message.timing()->startTime();
        return start ? std::optional<std::uint64_t>(*start) : std::nullopt;
    }

    static bool isTimed(const LogMessage& message) {
        return message.timing()->startTime().has_value() && message.timing()->endTime().has_value();
    }

    static std::optional<std::uint64_t> durationOf(const LogMessage& message) {
        return isTimed(message) ? std::optional(profiling::durationOf(message)) : std::nullopt;
    }

    // A long one is cut once, however many messages share it.
    std::string textOf(const LogMessage& message) {
        const auto* const text = message.text();
        if (text == nullptr || profiling::lengthOf(text) <= maxTextBytes) {
            return text == nullptr ? std::string() : cutName(parts_.visible(text));
        }
        const profiling::StoredText whole = parts_.name(text);
        const auto [found, isNew] = cutNames_.try_emplace(whole.kept());
        if (isNew) {
            found->second = cutName(whole);
        }
        return found->second;
    }

    void addExecution(const LogMessage& message) {
        const std::string_view text = parts_.visible(message.text());
        const auto whole = [](std::string_view name) { return name; };
        const NamedGraph& named = parts_.entryOf(graphs_, text, whole, [&] {
            log_.graphs.push_back({.name = parts_.part(text), .records = {}, .startUs = {}, .isTimed = {}});
            return NamedGraph{log_.graphs.back().name, log_.graphs.size() - 1};
        });
        GraphExecutions& graph = log_.graphs[named.position];
        graph.records.push_back(log_.store.latestExecution());
        graph.startUs.push_back(startOf(message));
        graph.isTimed.push_back(isTimed(message));
    }

    struct NamedGraph {
        profiling::StoredText name;
        std::size_t position;
    };

    LoadedLog& log_;
    profiling::MessageParts parts_{log_.names};
    std::unordered_map<const profiling::KeptText*, std::string> cutNames_;
    profiling::NamedList<NamedGraph, &NamedGraph::name> graphs_;
};

}  // namespace

bool loadLog(const std::string& path, LoadedLog& log) {
    profiling::ChunkReader chunks(path);
    if (!chunks.isOpen()) {
        return false;
    }
    profiling::FlatBufferReaderUtil walker;
    MessageNotes notes(log);
    RunIdHash bytesRead;
    while (chunks.nextLength()) {
        const auto buffer = chunks.readBody();
        if (!buffer || !walker.openChunk(*buffer)) {
            return false;
        }
        bytesRead.add(chunks.prefix());
        bytesRead.add(buffer->bytes());
        if (const auto* const header = walker.header(); header != nullptr && !log.header.headerSaved) {
            log.header = profiling::readLogHeader(*header);
        }
        while (const LogMessage* const message = walker.nextMessage()) {
            if (log.store.dispatchMethod(*message, walker.chunk())) {
                notes.add(*message, walker.chunk());
            }
        }
        walker.closeChunk();
    }
    bytesRead.add(chunks.prefix());  // what stands behind the last chunk
    log.runId = bytesRead.runId();
    std::ostringstream untold;  // the notes of the aggregation are the report's
    log.store.aggregateStatistics(untold);
    return true;
}

}  // namespace zeb::analysis
