// The command with the readers that come with it, on logs as a runtime writes them.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "LogWriter.h"
#include "MemoryLimit.h"
#include "support/Command.h"
#include "support/TestChunks.h"

namespace zeb::viewer::test {
namespace {

namespace fs = std::filesystem;
using Strings = std::vector<std::string>;

using samplelog::Event;
using samplelog::Message;
using samplelog::MethodType;
using samplelog::Value;

Message execution(std::uint64_t durationUs, const std::vector<Event>& events) {
    return {MethodType::Execute, "net", {0, durationUs}, 0, events, 0};
}

Event profilingLevel(const Value& value) {
    return {"Execute Profiling Level", value, samplelog::none, 0, {}, {}, {}};
}

// A chunk with a header and two executions of a graph.
std::string chunkOf(const std::vector<Event>& events) {
    std::ostringstream bytes;
    samplelog::LogWriter writer(bytes);
    samplelog::Header header;
    header.generatorName = "runner";
    header.generatorVersion = "1.2";
    writer.setHeader(header);
    writer.add(execution(100, events));
    writer.add(execution(300, events));
    writer.finishChunk();
    return bytes.str();
}

class RealReader : public testing::Test {
protected:
    static CommandResult view(Strings arguments, Output output = Output::captured) {
        arguments.insert(arguments.begin(), ZEB_VIEWER);
        return runCommand(arguments, output);
    }
    static void expectFailure(const CommandResult& result, int exitCode, const std::string& line) {
        EXPECT_EQ(result.exitCode, exitCode) << line;
        EXPECT_EQ(result.err, "zeb-profile-viewer: " + line + "\n");
    }
    static void expectPart(const std::string& text, const std::string& part) {
        EXPECT_NE(text.find(part), std::string::npos) << part << "\nis not in\n" << text;
    }

    TempDir files;
    std::string chunk = chunkOf({profilingLevel(std::uint64_t{1})});
    std::string log = files.write("run.log", chunk + chunk);
    std::string csv = files.path("runs.csv");
};

TEST_F(RealReader, ReportsAGoodLog) {
    for (const Strings& options :
         {Strings{}, Strings{"--internal"}, Strings{"--reader=murl"}, Strings{"--reader=generic"}}) {
        Strings arguments{log};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const CommandResult result = view(arguments);
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_EQ(result.err, "");
        expectPart(result.out, "Input Log File Location: " + log + "\n");
        expectPart(result.out, "Stats (Average):\n");
        expectPart(result.out, "    Marlix: 200 us\n");
    }
    const CommandResult filtered = view({log, "--level=0"});
    EXPECT_EQ(filtered.exitCode, 0);
    EXPECT_EQ(filtered.out.find("Graph 0"), std::string::npos);
}

TEST_F(RealReader, ReadsAPipeThatGivesAFewBytesAtATime) {
    const std::string script =
        "{ head -c 3 \"$2\"; sleep 0.05; tail -c +4 \"$2\" | head -c 40; sleep 0.05; tail -c +44 \"$2\"; } | "
        "\"$1\" /dev/stdin";
    const CommandResult result = runCommand({"/bin/sh", "-c", script, "sh", ZEB_VIEWER, log});
    EXPECT_EQ(result.exitCode, 0);
    expectPart(result.out, "    Marlix: 200 us\n");
}

TEST_F(RealReader, AppendsBothRunsToOneCsvFile) {
    EXPECT_EQ(view({log, "--csv", csv}).exitCode, 0);
    const std::string once = fileText(csv);
    expectPart(once, "input log file location, " + log + "\n");
    EXPECT_EQ(view({"--csv", csv, log}).exitCode, 0);
    EXPECT_EQ(fileText(csv), once + once);
    EXPECT_EQ(view({"--csv", csv, log, "--reader=generic"}).exitCode, 0);
    EXPECT_TRUE(fileText(csv).starts_with(once + once + "input log file location, "));
    expectFailure(view({log, "--csv", "/dev/full"}), 3,
                  "/dev/full: the CSV file can't be written: No space left on device");
    expectFailure(view({log, "--csv", csv}, Output::full), 3,
                  "standard output: it can't be written: No space left on device");
}

TEST_F(RealReader, TellsWhatIsWrongWithALog) {
    const std::string place = " at byte " + std::to_string(chunk.size()) + ", " +
                              std::to_string(chunk.size() - 4) + " bytes long, ";
    std::string flipped = chunk;
    flipped[chunk.find("runner") + 6] ^= 0x10;
    const struct {
        std::string bytes;
        std::string words;
    } cases[] = {
        {"", "the file is empty"},
        {chunk + chunk.substr(0, chunk.size() - 1),
         "the log can't be read: chunk 2" + place + "is cut off at the end of the file: only " +
             std::to_string(chunk.size() - 5) + " bytes of it are there"},
        {chunk + flipped, "the log can't be read: chunk 2" + place +
                              "fails verification: a table, vector or string in it is malformed"},
    };
    for (const char* const reader : {"--reader=murl", "--reader=generic"}) {
        for (const auto& [bytes, words] : cases) {
            expectFailure(view({files.write("bad.log", bytes), reader}), 1,
                          files.path("bad.log") + ": " + words);
        }
        expectFailure(view({files.path("no.log"), reader}), 1,
                      files.path("no.log") + ": there is no such file");
    }
}

TEST_F(RealReader, TellsAValueThatIsNoNumber) {
    const std::string bad = files.write("bad.log", chunkOf({profilingLevel("abc")}));
    std::ofstream(csv) << "old\n";
    expectFailure(view({bad, "--csv", csv}), 5,
                  bad + ": the report failed: a value in the log is no number (invalid stoi argument)");
    const std::string large = files.write("bad.log", chunkOf({profilingLevel(std::uint64_t{1} << 40U)}));
    expectFailure(
        view({large}), 5,
        large +
            ": the report failed: a value in the log is no number that fits (stoi argument out of range)");
    EXPECT_EQ(fileText(csv), "old\n");
}

TEST_F(RealReader, HasTheLastWordOnItsOptions) {
    const CommandResult extraHelp = view({log, "--extra_help"});
    EXPECT_EQ(extraHelp.exitCode, 2);
    EXPECT_EQ(extraHelp.out, "");
    expectPart(extraHelp.err, "[ --internal ]");
    const CommandResult help = view({"--help"});
    EXPECT_EQ(help.exitCode, 0);
    expectPart(help.out, "--save-objects[=DIR]  ");
    expectPart(help.err, "[ --extra_help ]");
    expectFailure(view({log, "--intrenal"}), 2, "--intrenal: unknown option, did you mean --internal?");
    expectFailure(view({log, "--internal", "--reader=generic"}), 2,
                  "--internal: unknown option; see zeb-profile-viewer --help");
}

TEST_F(RealReader, SavesObjects) {
    Event object;
    object.name = "layers";
    object.value = samplelog::Bytes{'b', 'y', 't', 'e', 's'};
    object.unit = samplelog::object;
    object.fileName = "layers.bin";
    const std::string saved = files.write("objects.log", chunkOf({object}));
    const std::string place = fs::canonical(files.path("")).string();
    std::ofstream(files.path("layers.bin")) << "mine";
    for (const char* const reader : {"--reader=murl", "--reader=generic"}) {
        expectFailure(view({saved, "--save-objects=" + files.path(""), reader}), 0, "objects go to " + place);
    }
    EXPECT_EQ(fileText(files.path("layers.bin")), "mine");
    EXPECT_EQ(fileText(files.path("layers_1.bin")), "bytes");
}

TEST_F(RealReader, EndsWithALineWhenALogNeedsTooMuchMemory) {
    if (!MemoryLimit::canBeSet) {
        GTEST_SKIP() << "no limit under sanitizers";
    }
    const std::string shared = files.write("shared.log", sharedEventsLog("a.bin"));
    const std::string large = files.write("large.log", chunk + prefixOf(200 << 20U));
    fs::resize_file(large, chunk.size() + 4 + (200 << 20U));
    for (const char* const reader : {"--reader=murl", "--reader=generic"}) {
        expectFailure(view({shared, "--max-memory=64M", reader}), 1,
                      shared + ": needs more than 64M of memory");
        expectFailure(view({large, "--max-memory=64M", reader}), 1,
                      large + ": the log can't be read: chunk 2 at byte " + std::to_string(chunk.size()) +
                          ", 209715200 bytes long, needs more than 64M of memory");
    }
    // The check of the names, which comes first, keeps within the limit too.
    expectFailure(view({large, "--max-memory=64M", "--save-objects=" + files.path("")}), 1,
                  large + ": needs more than 64M of memory");
}

TEST_F(RealReader, IsEndedAtOnceByAnInterrupt) {
    const std::string pipe = files.path("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    std::ofstream(csv) << "old\n";
    for (const int signal : {SIGINT, SIGTERM}) {
        RunningCommand viewer({ZEB_VIEWER, pipe, "--csv", csv});
        std::ofstream writer(pipe);  // waits until the viewer has it open
        writer << chunk << std::flush;
        viewer.sendSignal(signal);
        const CommandResult result = viewer.wait();
        EXPECT_EQ(result.exitCode, 128 + signal);
        EXPECT_EQ(result.out + result.err, "");
        EXPECT_EQ(fileText(csv), "old\n");
    }
}

}  // namespace
}  // namespace zeb::viewer::test
