#include "benchmark/Subjects.h"

#include <array>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <streambuf>

#include "analysis/MakeRun.h"
#include "analysis/runs/Comparison.h"
#include "analysis/runs/RunSummary.h"
#include "benchmark/Floors.h"
#include "benchmark/Processes.h"
#include "forms/json/RunJson.h"
#include "forms/markdown/RunMarkdown.h"
#include "forms/page/Page.h"
#include "forms/text/ComparisonText.h"
#include "forms/text/TopText.h"
#include "forms/trace/Trace.h"
#include "log/ChunkReader.h"
#include "reader/backend/ZebProfileLogReaderMURL.h"

namespace zeb::bench {

namespace {

using analysis::EventTrees;
using profiling::VisibilityLevel;
using profiling::ZebProfileLogReader;
using profiling::ZebProfileLogReaderMURL;

constexpr auto allMessages = static_cast<VisibilityLevel>(127);

template <typename Work>
double timeOf(Work work) {
    const double start = processorTime();
    work();
    return processorTime() - start;
}

// Takes text and drops it.
class Sink final : public std::streambuf {
protected:
    std::streamsize xsputn(const char* /*text*/, std::streamsize length) override { return length; }
    int_type overflow(int_type character) override { return traits_type::not_eof(character); }
};

void require(bool isGood, const char* what) {
    if (!isGood) {
        throw std::runtime_error(what);
    }
}

void measureRead(const MeasuredLog& log, Figures& figures) {
    figures[Figure::read] = timeOf([&log] { readChunks(log.path); });
}

void measureVerify(const MeasuredLog& log, Figures& figures) {
    figures[Figure::verify] = timeOf([&log] { verifyChunks(log.path); });
}

void measureCopy(const MeasuredLog& log, Figures& figures) {
    const double idleMemory = peakMemory();
    std::optional<PlainLog> copied;
    figures[Figure::copy] = timeOf([&] { copied = copyLog(log.path); });
    figures[Figure::copyMemory] = peakMemory() - idleMemory;
    figures[Figure::copyDestruction] = timeOf([&copied] { copied.reset(); });
}

void measureLoad(const MeasuredLog& log, Figures& figures) {
    const double idleMemory = peakMemory();
    std::optional<ZebProfileLogReaderMURL> reader(std::in_place, log.path, allMessages);
    figures[Figure::load] = timeOf([&] { require(reader->loadLog(false), "cannot load the log"); });
    figures[Figure::loadMemory] = peakMemory() - idleMemory;
    figures[Figure::loadDestruction] = timeOf([&reader] { reader.reset(); });
}

// What `loadLog` does, taken apart.
void measureParts(const MeasuredLog& log, Figures& figures) {
    profiling::EventStore store(static_cast<std::int8_t>(allMessages));
    figures[Figure::decode] = timeOf([&] {
        profiling::ChunkReader chunks(log.path);
        profiling::FlatBufferReaderUtil walker;
        while (chunks.nextLength()) {
            const auto buffer = chunks.readBody();
            require(buffer && walker.openChunk(*buffer), "cannot decode the log");
            while (const auto* const message = walker.nextMessage()) {
                store.dispatchMethod(*message, walker.chunk());
            }
        }
    });
    std::ostringstream notes;
    figures[Figure::aggregate] = timeOf([&] { store.aggregateStatistics(notes); });
}

// The reports of the generic reader are those that show events, the backend's show layers.
void measureReports(const MeasuredLog& log, Figures& figures) {
    Sink sink;
    std::cout.rdbuf(&sink);
    ZebProfileLogReaderMURL reader(log.path, allMessages);
    require(reader.loadLog(false), "cannot load the log");
    figures[Figure::backendReport] = timeOf([&] { require(reader.generateReports(""), "cannot report"); });
    figures[Figure::genericReport] =
        timeOf([&] { require(reader.ZebProfileLogReader::generateReports(""), "cannot report"); });
    std::cout.rdbuf(nullptr);
}

template <typename Write>
double timeOfCsv(Write write) {
    return timeOf([&write] {
        std::ofstream csv("/dev/null", std::ios::app);
        csv << std::fixed << std::setprecision(0);
        write(csv);
        csv.close();
        require(csv.good(), "cannot write the CSV report");
    });
}

// The CSV forms by themselves.
void measureCsv(const MeasuredLog& log, Figures& figures) {
    ZebProfileLogReaderMURL reader(log.path, allMessages);
    require(reader.loadLog(false), "cannot load the log");
    Sink sink;
    std::ostream unread(&sink);
    reader.printBackendReport(unread);  // works out what the CSV form shows
    figures[Figure::backendCsv] = timeOfCsv([&reader](std::ostream& csv) { reader.writeBackendCsv(csv); });
    figures[Figure::genericCsv] = timeOfCsv([&reader](std::ostream& csv) { reader.writeCsvReport(csv); });
}

void measureFormatting(const MeasuredLog& log, Figures& figures) {
    std::string report;
    figures[Figure::reportFloor] = timeOf([&] { formatLayerReport(report, log.size); });
    std::string csv;
    figures[Figure::csvFloor] = timeOf([&] { formatLayerCsv(csv, log.size); });
    require(!report.empty() && !csv.empty(), "nothing formatted");
}

constexpr std::array<Subject, 8> ofReader = {{
    {measureRead},
    {measureVerify},
    {measureCopy, false, true},
    {measureLoad},
    {measureParts},
    {measureFormatting, true},
    {measureReports},
    {measureCsv},
}};

template <typename Show>
void measureForm(const MeasuredLog& log, Figures& figures, Figure time, Figure memory, EventTrees eventTrees,
                 Show show) {
    const double idleMemory = peakMemory();
    Sink sink;
    std::ostream out(&sink);
    figures[time] = timeOf([&] {
        const auto run = analysis::makeRun(log.path, allMessages, eventTrees);
        require(run.has_value(), "cannot load the log");
        show(*run, out);
    });
    figures[memory] = peakMemory() - idleMemory;
}

void measureTop(const MeasuredLog& log, Figures& figures) {
    measureForm(log, figures, Figure::top, Figure::topMemory, EventTrees::leftOut,
                [](const analysis::Run& run, std::ostream& out) { forms::printTop(out, run, {}); });
}

void measureJson(const MeasuredLog& log, Figures& figures) {
    measureForm(log, figures, Figure::json, Figure::jsonMemory, EventTrees::gathered,
                [](const analysis::Run& run, std::ostream& out) { forms::writeRunJson(out, run); });
}

void measureHtml(const MeasuredLog& log, Figures& figures) {
    measureForm(log, figures, Figure::html, Figure::htmlMemory, EventTrees::gathered,
                [](const analysis::Run& run, std::ostream& out) { forms::writePage(out, run); });
}

void measureTrace(const MeasuredLog& log, Figures& figures) {
    measureForm(
        log, figures, Figure::trace, Figure::traceMemory, EventTrees::leftOut,
        [&log](const analysis::Run& run, std::ostream& out) {
            require(forms::writeTrace(out, run, log.path, {.level = allMessages, .fromMs = {}, .toMs = {}})
                        .has_value(),
                    "cannot write the trace");
        });
}

void measureMarkdown(const MeasuredLog& log, Figures& figures) {
    measureForm(log, figures, Figure::markdown, Figure::markdownMemory, EventTrees::leftOut,
                [](const analysis::Run& run, std::ostream& out) { forms::writeRunMarkdown(out, run); });
}

// Of the log with itself, which is read once.
void measureCompare(const MeasuredLog& log, Figures& figures) {
    measureForm(log, figures, Figure::compare, Figure::compareMemory, EventTrees::leftOut,
                [](const analysis::Run& run, std::ostream& out) {
                    const std::vector<analysis::RunSummary> side = {analysis::summarize(run)};
                    forms::printComparison(out, analysis::compare(side, side), {});
                });
}

constexpr std::array<Subject, 6> ofForms = {{
    {measureTop},
    {measureJson},
    {measureHtml},
    {measureTrace},
    {measureMarkdown},
    {measureCompare},
}};

}  // namespace

std::span<const Subject> readerSubjects() {
    return ofReader;
}

std::span<const Subject> formSubjects() {
    return ofForms;
}

}  // namespace zeb::bench
