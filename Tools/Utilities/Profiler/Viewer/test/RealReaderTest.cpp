// The command with the readers that come with it, on logs as a runtime writes them.

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <csignal>
#include <filesystem>
#include <fstream>

#include "command/MemoryLimit.h"
#include "samplelog/LogWriter.h"
#include "support/Command.h"
#include "support/TestChunks.h"
#include "viewer/PluginLibrary.h"

namespace zeb::viewer {
namespace {

using namespace command::test;

namespace fs = std::filesystem;
using samplelog::Event;
using samplelog::Value;

Event profilingLevel(const Value& value) {
    return {"Execute Profiling Level", value, samplelog::none, 0, {}, {}, {}};
}

// A chunk with a header and two executions of a graph.
std::string chunkOf(const Event& event) {
    const auto execution = [&event](std::uint64_t us) {
        return samplelog::Message{samplelog::MethodType::Execute, "net", {0, us}, 0, {event}, 0};
    };
    const samplelog::Header header{.generatorName = "runner", .generatorVersion = "1.2", .backendInfo = {}};
    return textOf(samplelog::encodeLog(header, {execution(100), execution(300)}));
}

class RealReader : public testing::Test {
protected:
    static CommandResult view(Strings arguments) {
        arguments.insert(arguments.begin(), ZEB_VIEWER);
        return runCommand(arguments);
    }
    static void expectPart(const std::string& text, const std::string& part) {
        EXPECT_NE(text.find(part), std::string::npos) << part << "\nis not in\n" << text;
    }

    TempDir files;
    std::string chunk = chunkOf(profilingLevel(std::uint64_t{1}));
    std::string log = files.write("run.log", chunk + chunk);
    std::string csv = files.path("runs.csv");
};

TEST_F(RealReader, ReportsAGoodLogAndAppendsToTheCsvFile) {
    std::string rows;
    for (const char* const option : {"--reader=murl", "--internal", "--reader=generic"}) {
        const CommandResult result = view({log, "--csv", csv, option});
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_EQ(result.err, "");
        expectPart(result.out, "Input Log File Location: " + log + "\n");
        expectPart(result.out, "    Marlix: 200 us\n");
        EXPECT_TRUE(fileText(csv).starts_with(rows + "input log file location, " + log + "\n"));
        rows = fileText(csv);
    }
    const CommandResult filtered = view({log, "--level=0"});
    EXPECT_EQ(filtered.exitCode, 0);
    EXPECT_EQ(filtered.out.find("Graph 0"), std::string::npos);
}

TEST_F(RealReader, ReadsAPipeThatGivesAFewBytesAtATime) {
    const std::string script =
        "{ head -c 3 \"$2\"; sleep 0.05; tail -c +4 \"$2\" | head -c 40; sleep 0.05; tail -c +44 \"$2\"; } | "
        "\"$1\" -";
    const CommandResult result = runCommand({"/bin/sh", "-c", script, "sh", ZEB_VIEWER, log});
    EXPECT_EQ(result.exitCode, 0);
    expectPart(result.out, "Input Log File Location: /dev/stdin\n");
    expectPart(result.out, "    Marlix: 200 us\n");
}

// What takes a second reading works too: a diagnosis, the check of object names, forms.
TEST_F(RealReader, ReadsAPipeMoreThanOnce) {
    const auto through = [this](const std::string& bytes, const std::string& command) {
        return runCommand(
            {"/bin/bash", "-c", "cat \"$2\" | " + command, "sh", ZEB_VIEWER, files.write("piped", bytes)});
    };
    const CommandResult forms =
        through(chunk, "\"$1\" - --save-objects=" + files.path("") + " --top --json -");
    EXPECT_EQ(forms.exitCode, 2);
    const CommandResult top = through(chunk, "\"$1\" - --quiet --top --json " + files.path("j"));
    EXPECT_EQ(top.exitCode, 0) << top.err;
    expectPart(top.out, "Where an inference goes");
    expectPart(fileText(files.path("j")), "\"log\":\"/dev/stdin\"");
    expectFailure(through(chunk + std::string("\x08\0\0\0damaged!", 12), "\"$1\" /dev/stdin"), 1,
                  "/dev/stdin: the log can't be read: chunk 2 at byte " + std::to_string(chunk.size()) +
                      ", 8 bytes long, is too short to be a chunk");
    const CommandResult inherited = through(chunk, "\"$1\" --quiet --top <(cat)");
    EXPECT_EQ(inherited.exitCode, 0) << inherited.err;
    expectPart(inherited.out, "Where an inference goes");
    const std::string pipe = files.path("fifo");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const auto named = [&](const std::string& bytes) {
        return through(bytes, "tee \"" + pipe + "\" >/dev/null & \"$1\" --json - \"" + pipe + "\"");
    };
    expectPart(named(chunk).out, "\"log\":\"" + pipe + "\"");
    expectFailure(named(chunk.substr(0, chunk.size() - 1)), 1,
                  pipe + ": the log can't be read: chunk 1 at byte 0, " + std::to_string(chunk.size() - 4) +
                      " bytes long, is cut off at the end of the file: only " +
                      std::to_string(chunk.size() - 5) + " bytes of it are there");
}

TEST_F(RealReader, TellsWhatCompressesALog) {
    for (const auto& [bytes, words] : {std::pair{std::string("\x1F\x8B\x08 zip"), "gzip; try zcat "},
                                       {std::string("\x28\xB5\x2F\xFD zstd"), "zstd; try zstdcat "},
                                       {std::string("\xFD"
                                                    "7zXZ\0 xz",
                                                    9),
                                        "xz; try xzcat "}}) {
        const std::string packed = files.write("packed.log", bytes);
        expectFailure(view({packed}), 1,
                      packed + ": the log can't be read: it seems to be compressed by " + words + packed +
                          " | zeb-profile-viewer -");
    }
}

TEST_F(RealReader, TellsWhatBeginsLikeAnotherKindOfFile) {
    const std::pair<std::string, std::string> cases[] = {
        {"{\"schema\":1}\n", "JSON"}, {"\n [1]", "JSON"}, {"Caf\xC3\xA9 au lait", "text"}, {"1234", "text"}};
    for (const auto& [bytes, kind] : cases) {
        const std::string other = files.write("other.log", bytes);
        expectFailure(view({other}), 1,
                      other + ": the log can't be read: it is no log, and begins like " + kind);
    }
    // What is damaged further on is a log all the same.
    expectPart(view({files.write("cut.log", chunk + "text")}).err, "the log can't be read: chunk 2 at byte ");
}

TEST_F(RealReader, TellsWhatIsWrongWithALog) {
    const std::string bad = files.path("bad.log");
    const std::string notANumber = "the report failed: a value in the log is no number ";
    const std::string damaged = "the log can't be read: chunk 2 at byte " + std::to_string(chunk.size()) +
                                ", " + std::to_string(chunk.size() - 4) + " bytes long, ";
    std::string flipped = chunk;
    flipped[chunk.find("runner") + 6] ^= 0x10;
    const struct {
        std::string bytes;
        std::string option;
        int exitCode;
        std::string words;
    } cases[] = {
        {chunk + chunk.substr(0, 10), "--reader=generic", 1,
         damaged + "is cut off at the end of the file: only 6 bytes of it are there"},
        {chunk + flipped, "--reader=murl", 1,
         damaged + "fails verification: a table, vector or string in it is malformed"},
        {chunkOf(profilingLevel("abc")), "--reader=murl", 5, notANumber + "(invalid stoi argument)"},
        {chunkOf(profilingLevel(std::uint64_t{1} << 40U)), "--reader=murl", 5,
         notANumber + "that fits (stoi argument out of range)"},
    };
    files.write("runs.csv", "old\n");
    for (const auto& [bytes, option, exitCode, words] : cases) {
        files.write("bad.log", bytes);
        expectFailure(view({bad, "--csv", csv, option}), exitCode, bad + ": " + words);
    }
    EXPECT_EQ(fileText(csv), "old\n");
}

TEST_F(RealReader, HasTheLastWordOnItsOptions) {
    const CommandResult extraHelp = view({log, "--extra_help"});
    EXPECT_EQ(extraHelp.exitCode, 2);
    EXPECT_EQ(extraHelp.out, "");
    expectPart(extraHelp.err, "[ --internal ]");
    expectPart(view({"--help"}).err, "[ --extra_help ]");
    expectFailure(view({log, "--intrenal"}), 2, "--intrenal: unknown option, did you mean --internal?");
    expectFailure(view({log, "--internal", "--reader=generic"}), 2,
                  "--internal: unknown option; see zeb-profile-viewer --help");
}

// The words and exit codes are those of a run that makes the report, though none is made.
TEST_F(RealReader, IsNotAskedForAReportThatNobodySees) {
    const std::string file = files.path("run.json");
    const std::string odd = files.write("odd.log", chunkOf(profilingLevel("abc")));
    const std::string broken = files.write("broken.log", chunk + chunk.substr(0, 90));
    const Strings cases[] = {
        {log},
        {log, "--internal"},
        {log, "--reader", "murk"},
        {log, "--intrenal"},
        {log, "--extra_help"},
        {broken},
        {odd},
        {odd, "--reader=generic"},
        {files.path("none")},
    };
    for (const Strings& arguments : cases) {
        for (const Strings& form : {Strings{}, Strings{"--json", file}}) {
            const auto with = [&](Strings words) {
                words.insert(words.end(), arguments.begin(), arguments.end());
                words.insert(words.end(), form.begin(), form.end());
                return view(words);
            };
            const CommandResult loud = with({});
            const CommandResult quiet = with({"--quiet"});
            EXPECT_EQ(quiet.exitCode, loud.exitCode) << arguments.back();
            EXPECT_EQ(quiet.err, loud.err);
            EXPECT_EQ(quiet.out, "");
        }
    }
    // It is loaded and has its options, and that is all.
    const CommandResult calls =
        view({log, "--reader", ZEB_FAKE_READER, "--quiet", "--json", file, "--calls"});
    EXPECT_EQ(calls.err, "createReader " + log + " 127\nparseBackendArgs\ndeleteReader\n");
    for (const Strings& needed : {Strings{"--csv", csv}, Strings{"--save-objects=" + files.path("")}}) {
        Strings words = {log, "--reader", ZEB_FAKE_READER, "--quiet", "--calls"};
        words.insert(words.end(), needed.begin(), needed.end());
        expectPart(view(words).err, "generateReports\n");
    }
}

TEST_F(RealReader, WritesAPageBesideTheReportOrInItsPlace) {
    const std::string page = files.path("run.html");
    const CommandResult beside = view({log, "--html", page});
    EXPECT_EQ(beside.exitCode, 0);
    expectPart(beside.out, "    Marlix: 200 us\n");
    const CommandResult alone = view({log, "--html", "-"});
    EXPECT_EQ(alone.exitCode, 0);
    EXPECT_EQ(alone.out, fileText(page));
    EXPECT_TRUE(alone.out.starts_with("<!DOCTYPE html>\n"));
    EXPECT_TRUE(alone.out.ends_with("</html>\n"));

    const std::string broken = files.write("broken.log", chunk + chunk.substr(0, 90));
    EXPECT_EQ(view({broken, "--html", page}).exitCode, 1);
    EXPECT_EQ(fileText(page), alone.out) << "a page of before is kept whole";
}

TEST(PluginLibrary, IsClosedWhenItGoes) {
    const std::string path = fs::path(ZEB_VIEWER).parent_path() / "../lib/libZebGenericProfilingReader.so";
    const auto isLoaded = [&path] {
        void* const library = ::dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
        return library != nullptr && ::dlclose(library) == 0;
    };
    {
        const PluginLibrary plugin(path);
        EXPECT_TRUE(isLoaded());
    }
    EXPECT_FALSE(isLoaded());
}

TEST_F(RealReader, SavesObjects) {
    const Event object{
        "layers", samplelog::Bytes{'b', 'y', 't', 'e', 's'}, samplelog::object, 0, "layers.bin", {}, {}};
    const std::string saved = files.write("objects.log", chunkOf(object));
    const std::string place = fs::canonical(files.path("")).string();
    files.write("layers.bin", "mine");
    for (const char* const reader : {"--reader=murl", "--reader=generic"}) {
        expectFailure(view({saved, "--save-objects=" + files.path(""), reader}), 0, "objects go to " + place);
    }
    EXPECT_EQ(fileText(files.path("layers.bin")), "mine");
    EXPECT_EQ(fileText(files.path("layers_1.bin")), "bytes");
}

TEST_F(RealReader, EndsWithALineWhenALogNeedsTooMuchMemory) {
    if (!command::MemoryLimit::canBeSet) {
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
    files.write("runs.csv", "old\n");
    for (const int signal : {SIGINT, SIGTERM}) {
        const auto interrupt = [&](pid_t viewer) {
            std::ofstream writer(pipe);  // waits until the viewer has it open
            writer << chunk << std::flush;
            EXPECT_EQ(::kill(viewer, signal), 0);
        };
        const CommandResult result =
            runCommand({ZEB_VIEWER, pipe, "--csv", csv}, output::captured, interrupt);
        EXPECT_EQ(result.exitCode, 128 + signal);
        EXPECT_EQ(result.out + result.err, "");
        EXPECT_EQ(fileText(csv), "old\n");
    }
}

}  // namespace
}  // namespace zeb::viewer
