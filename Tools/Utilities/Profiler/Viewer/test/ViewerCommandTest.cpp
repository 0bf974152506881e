// The command from end to end: exit codes, messages and what reaches which stream.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>  // NOLINT(modernize-deprecated-headers): posix_openpt
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "command/FileDescriptor.h"
#include "command/MemoryLimit.h"
#include "support/Command.h"
#include "support/TestChunks.h"

namespace zeb::viewer {
namespace {

using namespace command::test;

namespace fs = std::filesystem;
class ViewerCommand : public testing::Test {
protected:
    // Runs the viewer with the fake reader.
    static CommandResult view(Strings arguments, const std::string& output = output::captured) {
        arguments.insert(arguments.begin(), {ZEB_VIEWER, "--reader", ZEB_FAKE_READER});
        return runCommand(arguments, output);
    }

    // Runs the viewer through a shell, with its arguments as "$@".
    static CommandResult viewThrough(const std::string& script, Strings arguments) {
        arguments.insert(arguments.begin(),
                         {"/bin/sh", "-c", script, "sh", ZEB_VIEWER, "--reader", ZEB_FAKE_READER});
        return runCommand(arguments);
    }

    static std::string memoryWords(const std::string& size) {
        return command::MemoryLimit::canBeSet ? "needs more than " + size + " of memory"
                                              : command::MemoryLimit::withoutLimit;
    }

    TempDir files;
    std::string log = files.write("run.log", soundLog());
    std::string csv = files.path("runs.csv");
};

TEST_F(ViewerCommand, DrivesTheReaderInItsOrder) {
    const CommandResult result = view({"--level=-128", "--save-objects=" + files.path(""), log, "--calls",
                                       "--say", "first", "second", "--load=note"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "note\nfirst\nsecond\n");
    EXPECT_EQ(result.err, "createReader " + log +
                              " -128\nparseBackendArgs\nzeb-profile-viewer: objects go to " +
                              fs::canonical(files.path("")).string() +
                              "\nloadLog saving\ngenerateReports\ndeleteReader\n");
    EXPECT_EQ(view({log, "--level", "127"}).exitCode, 0);
    EXPECT_EQ(view({log, "--calls", "--load=refuse"}).err,
              "createReader " + log + " 127\nparseBackendArgs\nloadLog\ndeleteReader\nzeb-profile-viewer: " +
                  log + ": the log can't be read, though all of its chunks are sound\n");
}

TEST_F(ViewerCommand, RefusesWrongUsage) {
    const std::string seeHelp = "; see zeb-profile-viewer --help";
    const std::string once = "--csv: to be given once, with a value" + seeHelp;
    const std::pair<Strings, std::string> cases[] = {
        {{"--csv", "a.csv"}, "no LOG given" + seeHelp},
        {{log, "--csv"}, "--csv: needs a value" + seeHelp},
        {{log, "--quiet=yes"}, "--quiet: takes no value" + seeHelp},
        {{"--top", "5", log}, "--top: its value goes behind a \"=\": --top=5" + seeHelp},
        {{"--top", "5"}, "--top: its value goes behind a \"=\": --top=5" + seeHelp},
        {{"--save-objects", files.path(""), log},
         "--save-objects: its value goes behind a \"=\": --save-objects=" + files.path("") + seeHelp},
        {{log, "--csv", "a", "--csv", "b"}, once},
        {{log, "--csv", ""}, "--csv: needs a value" + seeHelp},
        {{log, "--csv", "-"},
         "--csv: standard output has the report, so the CSV report can't go there" + seeHelp},
        {{"--csv", "--save-objects", log}, "--csv: needs a value, and --save-objects is an option" + seeHelp},
        {{"--level", "128", log}, "--level: \"128\" is no number from -128 to 127" + seeHelp},
        {{"--level", "-129", log}, "--level: \"-129\" is no number from -128 to 127" + seeHelp},
        {{"--level", "2x", log}, "--level: \"2x\" is no number from -128 to 127" + seeHelp},
        {{"--level", "", log}, "--level: needs a value" + seeHelp},
        {{"--save-objects=a", log, "--save-objects=b"},
         "--save-objects: to be given once, with a value" + seeHelp},
        {{"--max-memory", "5T", log}, "--max-memory: \"5T\" is no size like 800M, 2G or 1000000" + seeHelp},
        {{"--save-objects", "/dev/zero"},
         "/dev/zero: the log is no regular file, so --save-objects can't check its object names first; "
         "--trust-object-names goes without"},
        {{log, "--callss"}, "--callss: unknown option, did you mean --calls?"},
        {{"--hlep"}, "--hlep: unknown option, did you mean --help?"},
        {{"--internal"}, "no LOG given" + seeHelp},
        {{"--extra_help"}, "no LOG given" + seeHelp},
        {{log, "--html", "-", "--json", "-"},
         "--html: standard output takes one form, and --json has it" + seeHelp},
        {{log, "--html", "a", "--trace", "a"}, "--html: goes to where --trace goes" + seeHelp},
        {{log, "--html", "a", "--csv", "a"}, "--html: goes to where --csv goes" + seeHelp},
        {{log, "--html", "-", "--csv", "a.csv"},
         "--csv: there is no report while a form goes to standard output" + seeHelp},
        {{log, "--levle=3"}, "--levle: unknown option, did you mean --level?"},
        {{log, "--frobnicate"}, "--frobnicate: unknown option" + seeHelp},
        {{log, "other.log"}, "other.log: a word too many, there is one LOG"},
        {{log, "--", "--calls"}, "--calls: a word too many, there is one LOG"},
        {{log, "--", "--csv="}, "--csv=: a word too many, there is one LOG"},
        {{log, "--csv", log}, log + ": the CSV file is the log itself"},
        {{log, "--args=throw"}, ZEB_FAKE_READER ": the reader failed on its options: the cat sat on it"},
    };
    for (const auto& [arguments, line] : cases) {
        const CommandResult result = view(arguments);
        expectFailure(result, 2, line);
        EXPECT_EQ(result.out, "");
    }
    for (const std::string name : {"--reader", "--csv", "--level", "--save-objects", "--max-memory"}) {
        expectFailure(view({name + "=", log}), 2, name + ": needs a value" + seeHelp);
    }
    expectFailure(runCommand({ZEB_VIEWER, "--reader", "", log}), 2, "--reader: needs a value" + seeHelp);
    const CommandResult refused = view({log, "--args=complain", "--unknown"});
    EXPECT_EQ(refused.exitCode, 2);
    EXPECT_EQ(refused.err, "the fake reader's own words\n");
}

TEST_F(ViewerCommand, NamesWhatKeepsTheLogFromBeingRead) {
    const auto length = fs::file_size(log) - 4;
    const std::string link = files.path("link.log");
    fs::create_symlink(log, link);
    const std::pair<Strings, std::string> cases[] = {
        {{files.path("line\nfeed.log")}, files.path("line?feed.log") + ": there is no such file"},
        {{files.path("")}, files.path("") + ": it is a directory, not a log"},
        {{"/proc/self/mem"}, "/proc/self/mem: the log can't be read: Input/output error"},
        {{"/dev/null"}, "/dev/null: the file is empty"},
        {{"--top", "missing"}, "missing: there is no such file"},
        {{log, "--load=memory", "--max-memory=3g"}, log + ": " + memoryWords("3g")},
        {{log, "--load=throw"}, log + ": the log can't be read: the cat sat on it"},
        {{log, "--load=odd"}, log + ": the log can't be read: unknown error"},
        // An error that the reader takes for the end of the log.
        {{link, "--load=fault"}, link + ": the log can't be read beyond byte 0: Input/output error"},
        {{log, "--load=shrink"},
         log + ": the log can't be read: chunk 1 at byte 0, " + std::to_string(length) +
             " bytes long, is cut off at the end of the file: only " + std::to_string(length - 1) +
             " bytes of it are there"},
    };
    for (const auto& [arguments, line] : cases) {
        expectFailure(view(arguments), 1, line);
    }
    const std::string pipe = "log=\"$4\"; cat \"$log\" | \"$1\" \"$2\" \"$3\" /dev/stdin --load=refuse";
    expectFailure(viewThrough(pipe, {log}), 1,
                  "/dev/stdin: the log can't be read: chunk 1 at byte 0, " + std::to_string(length) +
                      " bytes long, is cut off at the end of the file: only " + std::to_string(length - 1) +
                      " bytes of it are there");
}

// Nothing is written for a log whose producer has failed, though a reader takes no chunk for a good log.
TEST_F(ViewerCommand, TellsALogWithoutAChunk) {
    const std::string empty = "nothing came through the pipe; has the command that writes to it failed?";
    const std::pair<std::string, std::string> cases[] = {
        {": | \"$@\"", empty},
        {"printf xyz | \"$@\"", "through the pipe came only 3 bytes, and no log is that short"},
        {"\"$@\" <&-", "the file is empty"},
    };
    const Strings forms[] = {{"--csv", csv}, {"--json", "-"}};
    for (Strings arguments : forms) {
        arguments.insert(arguments.begin(), "-");
        for (const auto& [script, words] : cases) {
            const CommandResult result = viewThrough(script, arguments);
            expectFailure(result, 1, "/dev/stdin: " + words);
            EXPECT_EQ(result.out, "");
        }
    }
    const std::string shortLog = files.write("short.log", "xyz");
    expectFailure(view({shortLog, "--csv", csv}), 1,
                  shortLog + ": the file has only 3 bytes, and no log is that short");
    EXPECT_FALSE(fs::exists(csv));
}

TEST_F(ViewerCommand, TellsAReadErrorOfAPipe) {
    // The end of a pipe that takes bytes and gives none.
    EXPECT_EQ(viewThrough("{ \"$@\"; echo $? >&2; } | cat", {"/dev/fd/1"}).err,
              "zeb-profile-viewer: /dev/fd/1: the log can't be read: Bad file descriptor\n1\n");
}

TEST_F(ViewerCommand, EndsWithALineWhenItNeedsTooMuchMemory) {
    if (!command::MemoryLimit::canBeSet) {
        GTEST_SKIP() << "no limit under sanitizers";
    }
    expectFailure(view({log, "--max-memory=64M", "--load=grow"}), 1, log + ": needs more than 64M of memory");
    for (const char* const report : {"--report=grow", "--report=swallow"}) {
        expectFailure(view({log, "--max-memory=65536K", report, "--csv", csv}), 1,
                      log + ": the report needs more than 65536K of memory");
    }
    EXPECT_FALSE(fs::exists(csv));
    const std::string bent = files.write("bent.log", prefixOf(0xFFFFFF00U) + "few");
    expectFailure(view({bent, "--max-memory=64M", "--load=refuse"}), 1,
                  bent +
                      ": the log can't be read: chunk 1 at byte 0, 4294967040 bytes long, is cut off at "
                      "the end of the file: only 3 bytes of it are there");
    // A limit that is there already stays, whether the process could raise it or not.
    for (const char* const limit : {"-S -d", "-d", "-S -v"}) {
        expectFailure(viewThrough("ulimit " + std::string(limit) + " 102400; exec \"$@\"",
                                  {log, "--max-memory=1G", "--load=grow"}),
                      1, log + ": needs more than 100M of memory");
    }
}

TEST_F(ViewerCommand, SavesObjectsInTheirDirectoryAndFindsAllElseFromItsOwn) {
    fs::create_directory(files.path("objects"));
    const CommandResult result =
        viewThrough("cd " + files.path("") + "; exec \"$@\"",
                    {"--save-objects=objects", "--csv=runs.csv", "run.log", "--report=object"});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(fileText(files.path("objects/object.bin")), "bytes");
    EXPECT_EQ(fileText(csv), "csv \n");
    const std::string here = "mkdir " + files.path("here") + "; cd " + files.path("here") + "; exec \"$@\"";
    EXPECT_EQ(viewThrough(here, {"--save-objects", log, "--report=object"}).exitCode, 0);
    EXPECT_EQ(fileText(files.path("here/object.bin")), "bytes");
    for (const auto& [directory, cause] :
         {std::pair{files.path("no"), "No such file or directory"}, std::pair{log, "Not a directory"}}) {
        expectFailure(view({log, "--save-objects=" + directory, "--load=throw"}), 3,
                      directory + ": objects can't be saved there: " + cause);
    }
}

TEST_F(ViewerCommand, RefusesObjectNamesThatLeadOutUnlessTheyAreTrusted) {
    const std::string hostile = files.write("hostile.log", sharedEventsLog("../up\n.bin"));
    const std::string objects = "--save-objects=" + files.path("");
    expectFailure(view({hostile, objects, "--load=throw"}), 1,
                  hostile + ": chunk 1: the object \"../up?.bin\" would be saved outside of " +
                      fs::canonical(files.path("")).string() + "; --trust-object-names allows it");
    EXPECT_EQ(view({hostile, objects, "--trust-object-names"}).exitCode, 0);
    EXPECT_EQ(view({hostile}).exitCode, 0);
}

TEST_F(ViewerCommand, TellsAValueThatFailsTheReport) {
    const std::pair<std::string, std::string> acts[] = {{"throw", "the cat sat on it"},
                                                        {"odd", "unknown error"}};
    expectFailure(view({log, "--report=memory", "--max-memory", "2048M"}), 1,
                  log + ": the report " + memoryWords("2048M"));
    for (const auto& [act, cause] : acts) {
        const CommandResult result = view({log, "--csv", csv, "--report=" + act, "--say=first"});
        expectFailure(result, 5, log + ": the report failed: " + cause);
        EXPECT_EQ(result.out, "first\n");
        EXPECT_FALSE(fs::exists(csv));
    }
    expectFailure(view({log, "--report=refuse"}), 5, log + ": the reader has made no report");
}

TEST_F(ViewerCommand, NoticesThatStandardOutputCannotBeWritten) {
    const Strings reports[] = {{log, "--say=x", "--csv", csv},
                               {log, "--load=note"},
                               {log, "--report=print"},
                               {"--help"},
                               {"--version"}};
    const std::pair<std::string, std::string> cases[] = {
        {output::full, "No space left on device"},
        {output::closed, "Bad file descriptor"},
    };
    for (const auto& [output, cause] : cases) {
        for (const Strings& arguments : reports) {
            expectFailure(view(arguments, output), 3, "standard output: it can't be written: " + cause);
        }
    }
    EXPECT_FALSE(fs::exists(csv));
}

TEST_F(ViewerCommand, EndsWithoutAWordWhenNobodyReadsAnyMore) {
    for (const Strings& arguments : {Strings{log, "--say=x", "--csv", csv}, {"--help"}, {"--version"}}) {
        const CommandResult result = view(arguments, output::brokenPipe);
        EXPECT_EQ(result.exitCode, 141);
        EXPECT_EQ(result.err, arguments.front() == "--help" ? "help of the fake reader\n" : "");
    }
    EXPECT_EQ(fileText(csv), "csv \n") << "what goes to files is written all the same";
}

TEST_F(ViewerCommand, LeavesOutTheReportWhenItIsToBeQuiet) {
    const CommandResult result = view({log, "--quiet", "--load=note", "--say=x", "--csv", csv});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out + result.err, "");
    EXPECT_EQ(fileText(csv), "csv \n");
    EXPECT_EQ(view({"--quiet", "--version"}).out, view({"--version"}).out);
}

// A terminal, a file, and a terminal whose user wants the bytes.
TEST_F(ViewerCommand, KeepsControlCharactersFromATerminal) {
    const std::string text =
        "\x1B[31mred\xC2\x9B"
        "2J \xE2\x80\xAE\xC3\xA9";
    const command::FileDescriptor terminal(::posix_openpt(O_RDWR | O_NOCTTY));
    ASSERT_TRUE(terminal.isOpen() && ::grantpt(terminal.get()) == 0 && ::unlockpt(terminal.get()) == 0);
    const auto onTerminal = [&](const Strings& arguments) {
        const CommandResult result = view(arguments, ">" + std::string(::ptsname(terminal.get())));
        EXPECT_EQ(result.exitCode, 0) << result.err;
        std::string shown(1000, '\0');
        shown.resize(static_cast<std::size_t>(
            std::max<ssize_t>(::read(terminal.get(), shown.data(), shown.size()), 0)));
        return shown;
    };
    EXPECT_EQ(onTerminal({log, "--say", text}), "?[31mred?2J ?\xC3\xA9\r\n");
    EXPECT_EQ(onTerminal({log, "--report=half"}), "half ?");
    EXPECT_EQ(onTerminal({log, "--raw", "--say", text}), text + "\r\n");
    EXPECT_EQ(view({log, "--say", text}).out, text + "\n");
}

TEST_F(ViewerCommand, AppendsToTheCsvFileOrLeavesItAsItWas) {
    EXPECT_EQ(view({log, "--say=report", "--csv", "/dev/stdout"}).out, "report\ncsv \n");
    expectFailure(view({log, "--csv", "/dev/full"}), 3,
                  "/dev/full: the CSV file can't be written: No space left on device");
    // Told before the log is loaded.
    expectFailure(view({log, "--csv", files.path("no/runs.csv"), "--load=throw"}), 3,
                  files.path("no/runs.csv") + ": the CSV file can't be created in " + files.path("no") +
                      ": No such file or directory");
    expectFailure(view({log, "--csv", "-no/runs.csv"}), 3,
                  "-no/runs.csv: the CSV file can't be created in -no: No such file or directory");
    expectFailure(view({log, "--csv", csv, "--report=refuse"}), 3,
                  csv + ": the reader can't write the CSV report");
    EXPECT_FALSE(fs::exists(csv));
    const std::string old(1800, 'o');
    files.write("runs.csv", old);
    // Blocks of 512 bytes; the short report passes the limit in the file, the long one where it is made.
    for (const auto& [report, what] :
         {std::pair{"--report=", std::string("file can't be written: ")},
          {"--report=text",
           "report can't be written in " + files.directory().string() + ", where it is made first: "}}) {
        expectFailure(viewThrough("ulimit -f 2; exec \"$@\"", {log, "--csv", csv, report}), 3,
                      csv + ": the CSV " + what + "File too large");
        EXPECT_EQ(fileText(csv), old);
    }
    EXPECT_EQ(view({"--csv=" + csv, log}).exitCode, 0);
    EXPECT_EQ(fileText(csv), old + "csv \n");
}

TEST_F(ViewerCommand, ShowsItsHelpAndThatOfTheReader) {
    const CommandResult help = view({log, "--level=no", "--help", "--version"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_EQ(view({"-h"}).out, help.out);
    EXPECT_EQ(help.err, "help of the fake reader\n");
    for (const char* const part :
         {"Usage: zeb-profile-viewer [options] LOG [reader options]\n", "--reader NAME|PATH", "--csv FILE",
          "--level N", "  --save-objects[=DIR]  ", "Exit codes:\n  0    good\n", "Examples:\n"}) {
        EXPECT_NE(help.out.find(part), std::string::npos) << part;
    }
    expectFailure(runCommand({ZEB_VIEWER, "--help", "--reader", "./no.so"}), 0,
                  "note: no help of the reader: ./no.so: the reader plug-in can't be loaded: cannot open "
                  "shared object file: No such file or directory");
    EXPECT_TRUE(view({"--version"}).out.starts_with("zeb-profile-viewer v2.51.0.260929181845\nBuilt by "));
}

TEST_F(ViewerCommand, TellsWhyAPluginCannotBeLoaded) {
    const std::string text = files.write("text.so", "no library\n");
    const std::string noReader = ZEB_FAKE_READER ": the plug-in has made no reader";
    const std::pair<Strings, std::string> cases[] = {
        {{text, log}, text + ": the reader plug-in can't be loaded: file too short"},
        {{"libc.so.6", log}, "libc.so.6: no reader plug-in: it doesn't export createReader"},
        {{ZEB_FAKE_READER, "no-reader"}, noReader},
        {{ZEB_FAKE_READER, "throw"}, noReader + ": out of readers"},
    };
    for (const auto& [readerAndLog, line] : cases) {
        expectFailure(runCommand({ZEB_VIEWER, "--reader", readerAndLog[0], readerAndLog[1]}), 4, line);
    }
}

TEST_F(ViewerCommand, FindsNamedReadersBesideItselfAndInItsLibraryDirectory) {
    const std::string viewer = files.path("bin/zeb-profile-viewer");
    fs::create_directories(files.path("bin"));
    fs::create_directories(files.path("lib"));
    fs::copy_file(ZEB_VIEWER, viewer);
    const CommandResult missing = runCommand({viewer, "--reader", "libNoSuchReader.so", log});
    EXPECT_EQ(missing.exitCode, 4);
    EXPECT_TRUE(missing.err.starts_with(
        "zeb-profile-viewer: libNoSuchReader.so: the reader plug-in can't be loaded: cannot open shared "
        "object file: No such file or directory (looked in " +
        files.path("bin") + ", " + files.path("lib") + ", "))
        << missing.err;
    EXPECT_NE(runCommand({viewer, "--reader", "murk", log}).err.find(" (did you mean murl? looked in "),
              std::string::npos);
    fs::copy_file(ZEB_FAKE_READER, files.path("lib/libZebMurlProfilingReader.so"));
    fs::copy_file(ZEB_FAKE_READER, files.path("bin/libZebGenericProfilingReader.so"));
    for (const char* const option : {"--level=3", "--reader=murl", "--reader=generic"}) {
        const CommandResult result = runCommand({viewer, log, "--say=found", option});
        EXPECT_EQ(result.out, "found\n") << result.err;
    }
    // One that is there and can't be loaded is not passed over.
    const std::string broken = files.write("bin/libZebMurlProfilingReader.so", "no library\n");
    expectFailure(runCommand({viewer, log}), 4,
                  broken + ": the reader plug-in can't be loaded: file too short");
}

}  // namespace
}  // namespace zeb::viewer
