// Readers that override the operations which make the header, the lines and the rows of events.

#include <gtest/gtest.h>

#include "reader/backend/ZebProfileLogReaderMURL.h"
#include "support/TestReader.h"

namespace zeb::profiling {
namespace {

using test::event;
using test::Message;
using test::message;
using test::MethodType;

template <typename Reader>
class Overriding final : public Reader {
public:
    using Reader::Reader;

    std::string printHeader() override { return "[header]"; }
    void printEvent(std::ostream& /*out*/, const EventList& events, std::uint64_t level) override {
        for (const ProfileEvent& event : events) {
            lines += std::string(event.name) + std::to_string(level) + " ";
        }
    }
    void writeEventCsv(std::ostream& /*out*/, const EventList& events, std::uint64_t timestamp,
                       const std::string& messageText) override {
        for (const ProfileEvent& event : events) {
            rows += std::string(event.name) + std::to_string(timestamp) + " " + messageText + ", ";
        }
    }

    std::string lines;
    std::string rows;
};

struct Heard {
    std::string console;
    std::string lines;
    std::string rows;
};

template <typename Reader>
Heard heardOf(const samplelog::Bytes& log) {
    test::Loaded<Overriding<Reader>> loaded(log);
    const std::string console = loaded.wholeConsole(loaded.directory.path("csv"));
    return {console, loaded.reader.lines, loaded.reader.rows};
}

TEST(OverridingReader, IsHeardByAllReports) {
    const std::vector<Message> messages = {
        message(MethodType::Init, "", 1, {event("init")}, 1),
        message(MethodType::Finalize, "g", 1, {event("finalize")}, 2),
        message(MethodType::Execute, "g", 1, {event("execute")}, 3),
        message(MethodType::ApplyBinarySection, "g", 1, {event("apply")}, 4),
        message(MethodType::FinalizeAfterTensorUpdates, "g", 1, {event("after")}, 5),
        message(MethodType::UpdateBinarySection, "", 1, {event("update")}, 6),
        message(MethodType::DeInit, "", 1, {event("deinit")}, 7),
    };
    test::Header updater;
    updater.generatorName = "sorel-lora-adapter-bin-updater";
    const struct {
        const char* report;
        Heard heard;
        const char* lines;
        const char* rows;
    } cases[] = {
        {"generic", heardOf<ZebProfileLogReader>(test::logOf({messages})),
         "init1 finalize1 deinit1 execute1 execute1 execute1 apply1 apply1 apply1 after1 after1 after1 ",
         "init1 INIT, finalize2 FINALIZE, deinit7 DE-INIT, execute3 EXECUTE, apply4 APPLYBINARY, "
         "after5 FINALIZE_AFTER_TENSOR_UPDATES, "},
        {"of an adapter updater", heardOf<ZebProfileLogReader>(test::logOf({messages}, updater)), "update1 ",
         "update6 UPDATE_BINARY_SECTION, "},
        {"backend", heardOf<ZebProfileLogReaderMURL>(test::logOf({messages})), "deinit1 ", ""},
    };
    for (const auto& [report, heard, lines, rows] : cases) {
        EXPECT_EQ(heard.console.substr(0, 9), "[header]\n") << report;
        EXPECT_EQ(heard.lines, lines) << report;
        EXPECT_EQ(heard.rows, rows) << report;
    }
}

}  // namespace
}  // namespace zeb::profiling
