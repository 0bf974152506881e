// The built plug-ins as a host meets them: loaded at run time, called by position in the virtual table, with
// nothing of the library's sources. All that is included of the project is its public headers.

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <clocale>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <locale>
#include <memory>
#include <mutex>
#include <new>
#include <sstream>
#include <stdexcept>
#include <thread>

#include "support/CommandLine.h"
#include "support/PluginLogs.h"
#include "support/TestFiles.h"
#include "zeb/profiling/ReaderExports.h"

namespace zeb::profiling {
namespace {

using commandline2::ArgLookupResult;
using commandline2::ParsedArgs;
using test::CommandLine;
using test::Strings;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool isSanitized = true;
#else
constexpr bool isSanitized = false;
#endif

// Places in the virtual table of a reader. A virtual destructor takes two: one that destroys, and one that
// gives the memory back as well.
enum ReaderSlot : std::size_t {
    generateReports,
    completeDestructor,
    deletingDestructor,
    printHeader,
    readNextMessage,
    loadLog,
    parseBackendArgs,
    printEvent,
    writeEventCsv
};
constexpr std::size_t lookupSlot = 2;

// Calls the operation in a place of an object's virtual table, as the Itanium C++ ABI has it.
template <typename Result, typename... Arguments>
Result call(void* object, std::size_t slot, Arguments... arguments) {
    void* const* const table = *static_cast<void***>(object);
    return reinterpret_cast<Result (*)(void*, Arguments...)>(table[slot])(
        object, std::forward<Arguments>(arguments)...);
}

class Library {
public:
    explicit Library(const char* path) : handle_(dlopen(path, RTLD_NOW | RTLD_LOCAL)) {
        if (handle_ == nullptr) {
            throw std::runtime_error(dlerror());
        }
    }
    ~Library() { dlclose(handle_); }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    [[nodiscard]] void* create(const std::string& log, int level = 127) const {
        const auto create = reinterpret_cast<decltype(&createReader)>(dlsym(handle_, "createReader"));
        return create(log, static_cast<VisibilityLevel>(level));
    }
    void destroy(void* reader) const {
        const auto destroy = reinterpret_cast<decltype(&deleteReader)>(dlsym(handle_, "deleteReader"));
        destroy(static_cast<IZebPluginLogReader*>(reader));
    }

private:
    void* handle_;
};

// The parameter is the plug-in's name.
class PluginTest : public testing::TestWithParam<std::string> {
protected:
    std::string report(void* reader, const std::string& csvPath = {}) {
        CaptureStdout();
        isReported = call<bool, const std::string&>(reader, generateReports, csvPath);
        return GetCapturedStdout();
    }

    bool isMurl = GetParam() == "Murl";
    const char* path = isMurl ? ZEB_MURL_PLUGIN : ZEB_GENERIC_PLUGIN;
    test::TempDir directory;
    std::string log = directory.write("log", test::smallLog());
    Library library{path};
    bool isReported = false;
};

TEST_P(PluginTest, IsDrivenByPosition) {
    void* const reader = library.create(log);
    EXPECT_EQ(call<std::string>(reader, printHeader), "");
    EXPECT_FALSE(call<bool>(reader, readNextMessage));

    CommandLine options(CommandLine::Given{{"--unknown", {}}});
    EXPECT_TRUE((call<bool, ParsedArgs&>(reader, parseBackendArgs, options)));
    std::sort(options.asked.begin(), options.asked.end());
    EXPECT_EQ(options.asked,
              isMurl ? Strings({"--extra_help", "--help", "--internal", "--version"}) : Strings());

    EXPECT_TRUE((call<bool, bool>(reader, loadLog, false)));
    EXPECT_FALSE(call<bool>(reader, readNextMessage)) << "behind the last message";
    const std::string header = call<std::string>(reader, printHeader);
    EXPECT_EQ(header.substr(0, header.find('\n')), "Input Log File Location: " + log);
    EXPECT_NE(header.find("\ntool: 1.2\n"), std::string::npos);

    const std::string console = report(reader);
    EXPECT_EQ(console.substr(0, header.size() + 1), header + "\n");
    EXPECT_EQ(console.find("\nExecution Stats (Average):\n") != std::string::npos, isMurl) << console;
    EXPECT_NE(console.find("Graph 0 (net):\n    Marlix: 1234 us\n"), std::string::npos) << console;
    EXPECT_TRUE(isReported);
    EXPECT_EQ(report(reader, directory.path("csv")), console);
    EXPECT_NE(test::fileText(directory.path("csv")).find("tool version, 1.2\n"), std::string::npos);
    report(reader, directory.path("missing/csv"));
    EXPECT_FALSE(isReported);

    call<void>(reader, deletingDestructor);
}

TEST_P(PluginTest, HasADestructorThatLeavesTheMemoryToTheCaller) {
    void* const reader = library.create(log, 0);
    EXPECT_TRUE((call<bool, bool>(reader, loadLog, true)));
    EXPECT_EQ(report(reader).find("1234"), std::string::npos) << "messages from the level on are left out";
    call<void>(reader, completeDestructor);
    ::operator delete(reader);
}

TEST_P(PluginTest, CreatesReadersOfLogsThatAreNotThere) {
    library.destroy(nullptr);
    std::string missing = directory.path("missing");
    void* const reader = library.create(missing);
    missing.assign(missing.size(), 'x');  // the reader has a copy
    CaptureStdout();
    EXPECT_FALSE((call<bool, bool>(reader, loadLog, false)));
    EXPECT_EQ(GetCapturedStdout(), "");
    EXPECT_EQ(call<std::string>(reader, printHeader), "");
    library.destroy(reader);
}

// What `nm` shows of the names that a file defines.
Strings definedNames(const std::string& path) {
    const std::string command = std::string(ZEB_NM) + " -D --defined-only '" + path + "'";
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> output(popen(command.c_str(), "r"), pclose);
    Strings names;
    std::array<char, 4096> line{};
    while (std::fgets(line.data(), line.size(), output.get()) != nullptr) {
        const std::string_view text(line.data());
        const std::string_view name = text.substr(text.rfind(' ') + 1);
        if (!isSanitized || !name.starts_with("__")) {  // a sanitizer may add names of its own
            names.emplace_back(name.substr(0, name.size() - 1));
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

TEST_P(PluginTest, ExportsTwoFunctionsAndNothingElse) {
    EXPECT_EQ(definedNames(path), (Strings{"createReader", "deleteReader"}));
}

// A host with a locale of its own, for C++ and, where one can be made, for C: 1.234.567,5.
class HostLocale {
public:
    explicit HostLocale(const test::TempDir& directory)
        : before_(
              std::locale::global(std::locale(std::locale(), new Numbers))) {  // NOLINT: the locale owns it
        const std::string source = directory.write(
            "numbers",
            "LC_NUMERIC\ndecimal_point \",\"\nthousands_sep \".\"\ngrouping 3;3\nEND LC_NUMERIC\n");
        const std::string command = "localedef -c --no-archive -f ANSI_X3.4-1968 -i '" + source + "' '" +
                                    directory.path("comma") + "' 2>/dev/null";
        static_cast<void>(std::system(command.c_str()));
        ::setenv("LOCPATH", directory.directory().c_str(), 1);
        std::setlocale(LC_NUMERIC, "comma");
    }
    ~HostLocale() {
        std::setlocale(LC_NUMERIC, "C");
        ::unsetenv("LOCPATH");
        std::locale::global(before_);
    }
    HostLocale(const HostLocale&) = delete;
    HostLocale& operator=(const HostLocale&) = delete;

private:
    class Numbers final : public std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    std::locale before_;
};

TEST_P(PluginTest, WritesTheSameBytesWhateverTheHostsLocale) {
    for (const auto& bytes : test::sampleLogs()) {
        directory.write("log", bytes);
        const auto texts = [this](const char* csv) {
            void* const reader = library.create(log);
            call<bool, bool>(reader, loadLog, false);
            std::string all = call<std::string>(reader, printHeader) + report(reader, directory.path(csv));
            library.destroy(reader);
            return all + test::fileText(directory.path(csv));
        };
        const std::string expected = texts("csv");
        const HostLocale locale(directory);
        EXPECT_EQ(texts("csv in the locale"), expected);
        std::filesystem::remove(directory.path("csv"));
        std::filesystem::remove(directory.path("csv in the locale"));
    }
}

// Takes the place of standard output. It holds each piece of text up until another thread has written too, or
// for long enough to tell that none will.
class HeldOutput final : public std::streambuf {
public:
    HeldOutput() : replaced_(std::cout.rdbuf(this)) {}
    ~HeldOutput() override { std::cout.rdbuf(replaced_); }
    HeldOutput(const HeldOutput&) = delete;
    HeldOutput& operator=(const HeldOutput&) = delete;

    std::string text;

protected:
    std::streamsize xsputn(const char* piece, std::streamsize size) override {
        std::unique_lock lock(mutex_);
        text.append(piece, static_cast<std::size_t>(size));
        lastWriter_ = std::this_thread::get_id();
        written_.notify_all();
        written_.wait_for(lock, std::chrono::milliseconds(10),
                          [this] { return lastWriter_ != std::this_thread::get_id(); });
        return size;
    }

private:
    std::streambuf* replaced_;
    std::mutex mutex_;
    std::condition_variable written_;
    std::thread::id lastWriter_;
};

TEST(PluginThreads, PutEachTextOnStandardOutputInOnePiece) {
    const test::TempDir directory;
    const std::string log = directory.write("log", test::logWithALongLine(3U << 20U));
    const auto run = [&log](const char* path) {
        const Library library(path);
        void* const reader = library.create(log);
        call<bool, bool>(reader, loadLog, false);
        call<bool, const std::string&>(reader, generateReports, std::string());
        library.destroy(reader);
    };
    const auto outputOf = [&run](const Strings& plugins, int times) {
        HeldOutput output;
        std::vector<std::thread> threads;
        for (const std::string& plugin : plugins) {
            threads.emplace_back([&run, &plugin, times] {
                for (int time = 0; time < times; ++time) {
                    run(plugin.c_str());
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        return output.text;
    };
    std::string both = outputOf({ZEB_MURL_PLUGIN, ZEB_GENERIC_PLUGIN}, 2);
    std::string notes;
    for (const char* const plugin : {ZEB_MURL_PLUGIN, ZEB_GENERIC_PLUGIN}) {
        const std::string alone = outputOf({plugin}, 1);
        const std::size_t reportStart = alone.find("Input Log File Location");
        EXPECT_NE(reportStart, 0U) << "there are notes";
        for (int time = 0; time < 2; ++time) {
            notes += alone.substr(0, reportStart);
            const std::size_t at = both.find(alone.substr(reportStart));
            ASSERT_NE(at, std::string::npos) << "a report is torn apart";
            both.erase(at, alone.size() - reportStart);
        }
    }
    EXPECT_EQ(both, notes);
}

// A standard output that takes nothing, and the host wants to be told so.
class FullOutput final : public std::streambuf {
public:
    FullOutput() : replaced_(std::cout.rdbuf(this)) { std::cout.exceptions(std::ios::badbit); }
    ~FullOutput() override {
        std::cout.exceptions(std::ios::goodbit);
        std::cout.rdbuf(replaced_);
    }
    FullOutput(const FullOutput&) = delete;
    FullOutput& operator=(const FullOutput&) = delete;

private:
    std::streambuf* replaced_;
};

TEST_P(PluginTest, LeavesStandardOutputUnlockedWhenWritingToItThrows) {
    void* const reader = library.create(log);
    call<bool, bool>(reader, loadLog, false);
    {
        const FullOutput output;
        EXPECT_THROW((call<bool, const std::string&>(reader, generateReports, {})), std::ios_base::failure);
    }
    library.destroy(reader);
    std::thread([] {
        EXPECT_EQ(::ftrylockfile(stdout), 0);
        ::funlockfile(stdout);
    }).join();
}

std::size_t residentPages() {
    std::ifstream statistics("/proc/self/statm");
    std::size_t size = 0;
    std::size_t resident = 0;
    statistics >> size >> resident;
    return resident;
}

TEST(PluginLoading, LeavesNothingBehind) {
    const auto loadAndUnload = [](int times) {
        for (int time = 0; time < times; ++time) {
            for (const char* const path : {ZEB_MURL_PLUGIN, ZEB_GENERIC_PLUGIN}) {
                const Library library(path);
                library.destroy(library.create("no log"));
            }
        }
    };
    loadAndUnload(10);
    EXPECT_EQ(dlopen(ZEB_MURL_PLUGIN, RTLD_NOW | RTLD_NOLOAD), nullptr) << "it isn't unloaded";
    EXPECT_EQ(dlopen(ZEB_GENERIC_PLUGIN, RTLD_NOW | RTLD_NOLOAD), nullptr) << "it isn't unloaded";
    const std::size_t before = residentPages();
    loadAndUnload(isSanitized ? 10 : 1000);
    if (!isSanitized) {  // a sanitizer keeps freed memory for a while
        EXPECT_LE(residentPages(), before + 64);
    }
}

TEST(PluginErrors, ReachTheHostAsStandardExceptions) {
    const test::TempDir directory;
    const Library library(ZEB_MURL_PLUGIN);
    void* const reader = library.create(directory.write("log", test::logWithoutANumber()));
    EXPECT_TRUE((call<bool, bool>(reader, loadLog, false)));
    CaptureStdout();
    try {
        call<bool, const std::string&>(reader, generateReports, directory.path("csv"));
        ADD_FAILURE() << "no exception";
    } catch (const std::invalid_argument& error) {
        EXPECT_STREQ(error.what(), "invalid stoi argument");
    }
    EXPECT_EQ(GetCapturedStdout(), "");
    EXPECT_EQ(test::fileText(directory.path("csv")), "");
    library.destroy(reader);
}

// A reader that tells which of its operations was called.
class Probe final : public IZebPluginLogReader {
public:
    explicit Probe(std::ostream& out) : out_(out) {}
    ~Probe() override { note("destructor"); }

    bool generateReports(const std::string& path) override { return note("generateReports " + path); }
    std::string printHeader() override { return "header"; }
    bool readNextMessage() override { return note("readNextMessage"); }
    bool loadLog(bool saveObjects) override { return note(saveObjects ? "loadLog true" : "loadLog false"); }
    bool parseBackendArgs(ParsedArgs& args) override {
        return note(args.lookup("--x").found ? "parseBackendArgs" : "nothing found");
    }
    void printEvent(std::ostream& out, const EventList& /*events*/, std::uint64_t level) override {
        out << "printEvent " << level << ' ';
    }
    void writeEventCsv(std::ostream& out, const EventList& /*events*/, std::uint64_t timestamp,
                       const std::string& message) override {
        out << "writeEventCsv " << timestamp << ' ' << message << ' ';
    }

private:
    bool note(const std::string& name) {
        out_ << name << ' ';
        return true;
    }

    std::ostream& out_;
};

TEST(ReaderInterface, HasItsOperationsInTheirPlaces) {
    std::ostringstream out;
    const std::string text = "text";
    CommandLine options(CommandLine::Given{{"--x", {"1"}}});
    const auto listOfNothing = std::make_unique<char>();
    const auto& events = reinterpret_cast<const EventList&>(*listOfNothing);
    auto* const probe = new Probe(out);  // NOLINT: its virtual table destroys it
    call<bool, const std::string&>(probe, generateReports, text);
    EXPECT_EQ(call<std::string>(probe, printHeader), "header");
    call<bool>(probe, readNextMessage);
    call<bool, bool>(probe, loadLog, true);
    call<bool, ParsedArgs&>(probe, parseBackendArgs, options);
    call<void, std::ostream&, const EventList&, std::uint64_t>(probe, printEvent, out, events, 7);
    call<void, std::ostream&, const EventList&, std::uint64_t, const std::string&>(probe, writeEventCsv, out,
                                                                                   events, 8, text);
    call<void>(probe, deletingDestructor);
    EXPECT_EQ(out.str(),
              "generateReports text readNextMessage loadLog true parseBackendArgs printEvent 7 "
              "writeEventCsv 8 text destructor ");
}

TEST(ParsedArgsInterface, HasLookupBehindItsDestructor) {
    CommandLine options(CommandLine::Given{{"--x", {"1", "2"}}});
    const std::string name = "--x";
    const auto result = call<ArgLookupResult, const std::string&>(&options, lookupSlot, name);
    EXPECT_TRUE(result.found);
    ASSERT_EQ(result.values.size(), 2U);
    EXPECT_EQ(*result.values[1], "2");
}

INSTANTIATE_TEST_SUITE_P(Built, PluginTest, testing::Values("Murl", "Generic"),
                         [](const auto& plugin) { return plugin.param; });

}  // namespace
}  // namespace zeb::profiling
