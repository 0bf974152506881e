#pragma once

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "log/OpenChunk.h"
#include "memory/BlockList.h"
#include "store/EventArena.h"
#include "store/MethodRecord.h"
#include "store/NamedList.h"

namespace zeb::profiling {

namespace schema {
struct LogMessage;
}
class MessageParts;

/// All that is kept of a log: records made from its method messages, and the statistics over them. Nothing in
/// it points into a chunk. Durations are in us; timestamps are the log's. The reports read the members and
/// never change them. All operations throw `std::bad_alloc`; what is kept until then is whole.
class EventStore {
public:
    /// @param visibilityLevel messages whose level is not strictly below it are dropped
    explicit EventStore(std::int8_t visibilityLevel);
    EventStore(const EventStore&) = delete;
    EventStore& operator=(const EventStore&) = delete;
    ~EventStore();

    /// Decodes one message of a verified chunk and keeps what its method asks for.
    /// @param chunk the chunk that the message lies in
    /// @return whether the message was stored
    bool dispatchMethod(const schema::LogMessage& message, const OpenChunk& chunk);

    /// Derives the statistics lists, the queue waits and the Init row from the records. To be called once,
    /// after the last message.
    /// @param notes receives what is to be told to the user, whole lines
    void aggregateStatistics(std::ostream& notes);

    /// @return false when there is no event of that name anywhere in the store, which saves searching for it
    [[nodiscard]] bool mayHaveEvent(std::string_view name) const { return arena_.hasName(name); }

    /// @return the record of the latest execution that was stored, null before the first. It stays where it
    /// is, and its events may still come.
    [[nodiscard]] const MethodRecord* latestExecution() const { return latestExecution_; }

    // Initialization
    std::uint64_t initTimestamp = 0;       ///< of the Init row, by aggregation
    std::uint64_t initDurationUs = 0;      ///< of the Init row, by aggregation
    std::uint64_t initStepTimestamp = 0;   ///< of the latest InitStep message, dropped ones too
    std::uint64_t initStepDurationUs = 0;  ///< of the latest InitStep message that was not dropped
    std::uint64_t composeTimestamp = 0;    ///< the first one of a ComposeGraphs message that is not 0
    std::uint64_t composeDurationUs = 0;   ///< sum over all ComposeGraphs messages
    BlockList<StoredText>
        composeGraphNames;       ///< texts of the ComposeGraphs messages, those that are not empty
    StoredText initStepMessage;  ///< text of the latest InitStep message
    EventList initEvents;        ///< events of type init of the latest message that can have some
    bool hasInitEvents = false;  ///< an event of type init was seen outside Init messages
    MethodRecord initRecord;     ///< the latest Init message
    bool hasInitRecord = false;

    // Contexts; the keys are those of `contextMethods`
    bool hasContextRetrieval = false;  ///< such a message was stored
    NamedRecordList contextRetrieval;  ///< the latest message under each key
    bool hasContextSectionRetrieval = false;
    GraphRecordList contextSectionRetrieval;  ///< all messages under the one key

    // Finalization, graphs in order of first appearance
    NamedRecordList finalizeRecords;
    bool hasFinalize = false;        ///< a Finalize message was stored
    bool hasFinalizeEvents = false;  ///< an event was filed under finalization

    // The methods that have statistics (`measuredMethods`): records, graphs in order of first appearance;
    // statistics by aggregation, with an entry for each graph in the same order
    GraphRecordList executeRecords;
    StatisticsList executeAverage;
    StatisticsList executeMax;
    StatisticsList executeMin;
    bool hasApplyBinarySection = false;
    GraphRecordList applyBinarySectionRecords;
    StatisticsList applyBinarySectionAverage;
    StatisticsList applyBinarySectionMax;
    StatisticsList applyBinarySectionMin;
    bool hasFinalizeAfterTensorUpdates = false;
    GraphRecordList finalizeAfterTensorUpdatesRecords;
    StatisticsList finalizeAfterTensorUpdatesAverage;
    StatisticsList finalizeAfterTensorUpdatesMax;
    StatisticsList finalizeAfterTensorUpdatesMin;

    // Queue waits of the executions, by aggregation
    bool asyncExecute = false;                       ///< an ExecuteAsync message was met, dropped or not
    std::vector<GraphQueueWaits> executeQueueWaits;  ///< empty unless every execution has exactly one wait
    std::vector<GraphQueueWait> executeMaxQueueWaits;
    std::vector<GraphQueueWait> executeMinQueueWaits;

    bool hasUpdateBinarySection = false;
    std::vector<NamedMethodRecord> updateBinarySectionRecords;  ///< the latest message, under an empty name
    MethodRecord executeOverallRecord;                          ///< the latest ExecuteOverall message
    bool hasExecuteOverall = false;
    MethodRecord deInitRecord;   ///< the latest DeInit message
    MethodRecord libLoadRecord;  ///< the latest DynamicLibLoad message
    bool hasLibLoad = false;

private:
    bool decodeInit(const schema::LogMessage& message);
    bool decodeDeInit(const schema::LogMessage& message);
    bool decodeInitStep(const schema::LogMessage& message);
    bool decodeComposeGraphs(const schema::LogMessage& message);
    bool decodeExecuteOverall(const schema::LogMessage& message);
    bool decodeDynamicLibLoad(const schema::LogMessage& message);
    bool decodeExecute(const schema::LogMessage& message);
    bool decodeFinalize(const schema::LogMessage& message);
    bool decodeGraphEvents(const schema::LogMessage& message);
    bool decodeApplyBinarySection(const schema::LogMessage& message);
    bool decodeFinalizeAfterTensorUpdates(const schema::LogMessage& message);
    bool decodeUpdateBinarySection(const schema::LogMessage& message);
    bool decodeContextGetBinary(const schema::LogMessage& message);
    bool decodeContextGetBinarySectionSize(const schema::LogMessage& message);

    [[nodiscard]] bool isVisible(const schema::LogMessage& message) const;
    MethodRecord recordWithText(const schema::LogMessage& message);
    bool decodeWholeRecord(const schema::LogMessage& message, MethodRecord& record, bool& hasRecord);
    void fileInitEvents(EventList events);
    void fileFinalizeEvents(std::string_view graphName, EventList events);
    void fileExecuteEvents(std::string_view graphName, EventList events);

    struct GraphEntry {
        GraphMethodRecords& graph;
        bool isNew;
    };
    using NameIn = std::string_view (*)(std::string_view text);
    static std::string_view wholeText(std::string_view text) { return text; }

    [[nodiscard]] std::optional<std::string_view> textOf(const schema::LogMessage& message);
    NamedMethodRecord& namedRecord(NamedRecordList& list, std::string_view name);
    GraphEntry graphOf(GraphRecordList& list, std::string_view text, const MethodRecord& first,
                       NameIn nameIn = wholeText);
    const MethodRecord& addRecord(GraphRecordList& list, std::string_view text, const MethodRecord& record,
                                  NameIn nameIn = wholeText);

    void aggregateQueueWaits(std::ostream& notes);
    void aggregateInitRow();

    std::int8_t visibilityLevel_;
    const MethodRecord* latestExecution_ = nullptr;
    EventArena arena_;
    std::unique_ptr<MessageParts> parts_;
};

/// Where the store has the records of a method with statistics, and the statistics.
struct MeasuredMethod {
    GraphRecordList EventStore::*records;
    StatisticsList EventStore::*average;
    StatisticsList EventStore::*max;
    StatisticsList EventStore::*min;
};

inline constexpr MeasuredMethod executeMethod = {&EventStore::executeRecords, &EventStore::executeAverage,
                                                 &EventStore::executeMax, &EventStore::executeMin};
inline constexpr MeasuredMethod applyBinarySectionMethod = {
    &EventStore::applyBinarySectionRecords, &EventStore::applyBinarySectionAverage,
    &EventStore::applyBinarySectionMax, &EventStore::applyBinarySectionMin};
inline constexpr MeasuredMethod finalizeAfterTensorUpdatesMethod = {
    &EventStore::finalizeAfterTensorUpdatesRecords, &EventStore::finalizeAfterTensorUpdatesAverage,
    &EventStore::finalizeAfterTensorUpdatesMax, &EventStore::finalizeAfterTensorUpdatesMin};

/// All of them, in the order in which they are aggregated and reported.
inline constexpr MeasuredMethod measuredMethods[] = {executeMethod, applyBinarySectionMethod,
                                                     finalizeAfterTensorUpdatesMethod};

}  // namespace zeb::profiling
