// What the viewer makes of a log besides the report: --top, --json, --trace and --html.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "command/FormFile.h"
#include "command/MemoryLimit.h"
#include "samplelog/MethodsLog.h"
#include "samplelog/NetworkLog.h"
#include "support/Command.h"
#include "support/FailureOf.h"
#include "support/SystemFaults.h"
#include "support/TestChunks.h"
#include "viewer/RunForms.h"

namespace zeb::viewer {
namespace {

using namespace command::test;

namespace fs = std::filesystem;

class RunFormsTest : public testing::Test {
protected:
    static CommandResult view(Strings arguments, const std::string& output = output::captured) {
        arguments.insert(arguments.begin(), ZEB_VIEWER);
        return runCommand(arguments, output);
    }
    template <typename Write>
    std::string write(const std::string& name, Write writeLog) const {
        std::ostringstream bytes;
        writeLog(bytes);
        return files.write(name, bytes.str());
    }
    static std::string textOf(const std::string& path) {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    std::size_t filesThere() const {
        return static_cast<std::size_t>(std::distance(fs::directory_iterator(files.directory()), {}));
    }

    TempDir files;
    std::string log =
        write("run.log", [](std::ostream& out) { samplelog::writeNetworkLog(out, {.executions = 3}); });
    std::string json = files.path("run.json");
    std::string trace = files.path("trace.json");
};

TEST_F(RunFormsTest, StandBehindTheReportOfWhicheverReader) {
    for (const char* const reader : {"--reader=murl", "--reader=generic"}) {
        const CommandResult report = view({log, reader});
        const CommandResult withForms = view({log, reader, "--top=2", "--json", json, "--trace", trace});
        EXPECT_EQ(withForms.exitCode, 0);
        EXPECT_EQ(withForms.err, "");
        ASSERT_TRUE(withForms.out.starts_with(report.out));
        EXPECT_TRUE(withForms.out.substr(report.out.size()).starts_with("\nGraph mobilenet_v1_224\n"));
        EXPECT_NE(withForms.out.find("Costliest ZEB layers (2 of 32)"), std::string::npos);
        EXPECT_TRUE(textOf(json).starts_with("{\"schema\":\"zeb-profile-run/1\",\"log\":\"" + log + "\""));
        EXPECT_TRUE(textOf(trace).starts_with("{"));
    }
    const CommandResult top = view({log, "--top", "--sort", "name", "--filter", "DW_1"});
    EXPECT_NE(top.out.find("ZEB layers (5 of 32)\n"), std::string::npos) << top.out;
    EXPECT_EQ(view({"--json", "-", log}).out, textOf(json));
    EXPECT_EQ(view({"--trace", "-", log}).out, textOf(trace));
}

TEST_F(RunFormsTest, HaveTheLabelsOfTheRun) {
    const Strings given = {log,
                           "--label=site=lab",
                           "--label",
                           "a=b=c",
                           "--label=site=lab",
                           "--label",
                           "none=",
                           "--json",
                           "-",
                           "--html",
                           files.path("page"),
                           "--markdown",
                           files.path("text")};
    const std::string labels = R"("labels":{"a":"b=c","none":"","site":"lab"},)";
    EXPECT_NE(view(given).out.find(labels), std::string::npos);
    EXPECT_NE(textOf(files.path("page")).find(labels), std::string::npos);
    EXPECT_NE(textOf(files.path("text")).find("\nLabels: `a=b=c`, `none=`, `site=lab`\n"), std::string::npos)
        << textOf(files.path("text"));
}

TEST_F(RunFormsTest, RefuseWhatMakesNoSenseTogether) {
    const std::string alone = "there is no report while a form goes to standard output";
    const std::pair<Strings, std::string> cases[] = {
        {{"--sort", "name"}, "--sort: needs --top beside it"},
        {{"--filter", "a"}, "--filter: needs --top beside it"},
        {{"--trace-from", "1"}, "--trace-from: needs --trace beside it"},
        {{"--trace-to=1"}, "--trace-to: needs --trace beside it"},
        {{"--label", "a=1"}, "--label: needs --json, --html or --markdown beside it"},
        {{"--label", "a=1", "--trace=t"}, "--label: needs --json, --html or --markdown beside it"},
        {{"--label", "a", "--json=-"}, "--label: \"a\" is no KEY=VALUE"},
        {{"--label", "a=1", "--label=a=2", "--json=-"},
         "--label: the label \"a\" has two values, \"1\" and \"2\""},
        {{"--trace=t", "--trace-to=-1"}, "--trace-to: \"-1\" is no number of milliseconds"},
        {{"--trace=t", "--trace-to=nan"}, "--trace-to: \"nan\" is no number of milliseconds"},
        {{"--top=0"}, "--top: \"0\" is no number of layers"},
        {{"--top", "--sort=size"}, "--sort: \"size\" is none of time, order and name"},
        {{"--json=-", "--top"}, "--top: " + alone},
        {{"--json=-", "--csv=c"}, "--csv: " + alone},
        {{"--trace=-", "--save-objects"}, "--save-objects: " + alone},
        {{"--json=-", "--trace=-"}, "--trace: standard output takes one form, and --json has it"},
        {{"--json=-", "--internal"}, "--internal: no reader is asked while a form goes to standard output"},
    };
    for (auto [arguments, line] : cases) {
        arguments.insert(arguments.begin(), log);
        const CommandResult result = view(arguments);
        expectFailure(result, 2, line + "; see zeb-profile-viewer --help");
        EXPECT_EQ(result.out, "");
    }
    expectFailure(view({log, "--top", "--sort=tiem"}), 2,
                  "--sort: \"tiem\" is none of time, order and name, did you mean time?");
    expectFailure(view({log, "--json", log}), 2, log + ": the file is the log itself");
}

// One file by other spellings, by links, and before it is there.
TEST_F(RunFormsTest, RefuseTwoOutputsToOneFile) {
    fs::create_directory(files.path("directory"));
    fs::create_symlink("directory", files.path("link"));
    fs::create_symlink("directory/new", files.path("to-new"));
    files.write("old.csv", "gathered\n");
    fs::create_hard_link(files.path("old.csv"), files.path("hard.csv"));
    const std::pair<std::string, std::string> same[] = {
        {"old.csv", "./old.csv"},    {"old.csv", "directory/../old.csv"}, {"old.csv", "hard.csv"},
        {"new", "directory/../new"}, {"directory/new", "link/new"},       {"to-new", "link/new"},
    };
    for (const auto& [one, other] : same) {
        expectFailure(view({log, "--csv", files.path(one), "--json", files.path(other)}), 2,
                      "--json: goes to where --csv goes; see zeb-profile-viewer --help");
        expectFailure(view({log, "--json", files.path(one), "--html", files.path(other)}), 2,
                      "--html: goes to where --json goes; see zeb-profile-viewer --help");
    }
    EXPECT_EQ(textOf(files.path("old.csv")), "gathered\n");
    EXPECT_FALSE(fs::exists(files.path("new")));
    const std::string output = files.write("output", "");
    expectFailure(view({log, "--json", output}, ">>" + output), 2,
                  output + ": standard output goes there; \"-\" is its name as a file");
    EXPECT_EQ(view({log, "--json", json, "--html", files.path("directory/run.json")}).exitCode, 0);
}

TEST_F(RunFormsTest, NameTheDirectoryThatTakesNoFile) {
    expectFailure(view({log, "--json", files.path("none/run.json")}), 3,
                  files.path("none/run.json") + ": the file can't be created in " + files.path("none") +
                      ": No such file or directory");
}

TEST_F(RunFormsTest, LeaveFilesWholeOrAsTheyWere) {
    const std::string damaged = files.write("damaged.log", std::string_view("\x08\0\0\0damaged!", 12));
    files.write("run.json", "old");
    ::chmod(json.c_str(), 0640);
    EXPECT_EQ(view({damaged, "--json", json}).exitCode, 1);
    EXPECT_EQ(view({damaged, "--json", "-"}).exitCode, 1);
    EXPECT_EQ(textOf(json), "old");
    const std::size_t before = filesThere();
    EXPECT_EQ(view({log, "--json", json, "--trace", files.path("none/t")}).exitCode, 3);
    EXPECT_EQ(textOf(json), "old");
    EXPECT_EQ(filesThere(), before) << "no file beside it";

    // A link stays a link, the file its mode.
    const std::string link = files.path("link.json");
    fs::create_symlink("run.json", link);
    EXPECT_EQ(view({log, "--json", link}).exitCode, 0);
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_TRUE(textOf(json).starts_with("{"));
    struct stat status {};
    EXPECT_EQ(::stat(json.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0640U);

    // What is no file is written straight.
    EXPECT_EQ(view({log, "--json", "/dev/null"}).exitCode, 0);
    EXPECT_EQ(view({log, "--json", files.path("")}).exitCode, 3);
}

TEST_F(RunFormsTest, LeaveTheOldFileOnAFullDiskAndAtALimit) {
    const std::string old(100, 'o');
    for (const auto& row : runForms()) {
        const std::string form(row.option);
        SCOPED_TRACE(form);
        const std::string noSpace = "the file can't be written: No space left on device";
        expectFailure(view({log, form, "/dev/full"}), 3, "/dev/full: " + noSpace);
        expectFailure(view({log, form, "-"}, output::full), 3, "standard output: " + noSpace);
        const std::string file = files.write("old", old);
        const std::size_t before = filesThere();
        // Blocks of 512 bytes.
        for (const std::string blocks : {"2", "4"}) {
            expectFailure(runCommand({"/bin/sh", "-c", "ulimit -f " + blocks + "; exec \"$@\"", "sh",
                                      ZEB_VIEWER, "--quiet", log, form, file}),
                          3, file + ": the file can't be written: File too large");
            EXPECT_EQ(textOf(file), old);
            EXPECT_EQ(filesThere(), before) << "no file beside it";
        }
        EXPECT_EQ(view({"--quiet", log, form, file}).exitCode, 0);
        EXPECT_EQ(textOf(file), view({log, form, "-"}).out);
    }
}

// The fake reader needs none of it.
TEST_F(RunFormsTest, TellThatTheyNeedTooMuchMemory) {
    if (!command::MemoryLimit::canBeSet) {
        GTEST_SKIP() << "no limit under sanitizers";
    }
    const std::string large = write(
        "large.log", [](std::ostream& out) { samplelog::writeNetworkLog(out, {.executions = 20'000}); });
    const std::string file = files.write("form", "old");
    const Strings forms[] = {{"--top"}, {"--json", file}, {"--trace", file}, {"--html", file}, {"--json=-"}};
    for (Strings arguments : forms) {
        arguments.insert(arguments.end(), {large, "--reader", ZEB_FAKE_READER, "--max-memory=3M"});
        expectFailure(view(arguments), 1,
                      large + ": to tell the figures of the run needs more than 3M of memory");
        EXPECT_EQ(textOf(file), "old");
    }
}

// What the name of the file stands for could be replaced all the same.
TEST_F(RunFormsTest, LeaveAFileThatIsWriteProtected) {
    files.write("run.json", "old");
    ASSERT_EQ(::chmod(files.path("").c_str(), 0777) + ::chmod(json.c_str(), 0444), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        static_cast<void>(::setuid(65534));  // of no use to an ordinary user, who is not needed
        const std::string told =
            failureOf([this] { command::FormFile(json, {}).write([](std::ostream& out) { out << "new"; }); });
        ::_exit(told.starts_with("3 ") ? 3 : 0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(WEXITSTATUS(status), 3);
    EXPECT_EQ(textOf(json), "old");
}

// Where reading stops, the system's error and the end look alike.
TEST_F(RunFormsTest, TellAReadErrorOfTheLog) {
    ViewerOptions options;
    options.log = options.logPath = log;
    command::MemoryLimit memory(options.maxMemory);
    const std::string size = std::to_string(fs::file_size(log));
    badByte = std::stoll(size);
    const std::string told = failureOf([&] { static_cast<void>(RunForms(options).readRun(memory)); });
    badByte.reset();
    EXPECT_EQ(told, "1 " + log + ": the log can't be read beyond byte " + size + ": Input/output error");
}

TEST_F(RunFormsTest, TellAValueThatIsNoNumber) {
    const std::string odd = write("odd.log", [](std::ostream& out) {
        const samplelog::Event level{
            "Execute Profiling Level", std::string("deep"), samplelog::none, 0, {}, {}, {}};
        const auto bytes = samplelog::encodeLog(
            {}, {samplelog::Message{samplelog::MethodType::Execute, "net", {0, 9}, 0, {level}, 0}});
        out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    });
    expectFailure(view({odd, "--json", "-"}), 5,
                  odd + ": the figures of the run can't be told: invalid stoi argument");
    const std::string methods = write("methods.log", samplelog::writeMethodsLog);
    EXPECT_EQ(view({methods, "--top", "--json", json}).exitCode, 0);
}

}  // namespace
}  // namespace zeb::viewer
