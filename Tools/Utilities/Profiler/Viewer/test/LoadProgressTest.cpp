#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>  // NOLINT(modernize-deprecated-headers): posix_openpt
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <thread>

#include "FileDescriptor.h"
#include "LoadProgress.h"
#include "support/TestChunks.h"

namespace zeb::viewer {
namespace {

// What stands on a terminal that takes the place of standard error during the call.
template <typename Call>
std::string onTerminal(Call call) {
    const FileDescriptor terminal(::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK));
    EXPECT_TRUE(terminal.isOpen() && ::grantpt(terminal.get()) == 0 && ::unlockpt(terminal.get()) == 0);
    const FileDescriptor user(::open(::ptsname(terminal.get()), O_RDWR | O_NOCTTY));
    const FileDescriptor before(::dup(STDERR_FILENO));
    ::dup2(user.get(), STDERR_FILENO);
    call();
    ::dup2(before.get(), STDERR_FILENO);
    std::string shown(4096, '\0');
    shown.resize(
        static_cast<std::size_t>(std::max<ssize_t>(::read(terminal.get(), shown.data(), shown.size()), 0)));
    return shown;
}

TEST(LoadProgress, IsShownOnATerminalAfterASecondAndGoesAway) {
    using namespace std::chrono_literals;
    const test::TempDir files;
    const std::string path = files.write("log", std::string(2'000'000, 'x'));
    const FileDescriptor reader(::open(path.c_str(), O_RDONLY));
    EXPECT_EQ(::lseek(reader.get(), 500'000, SEEK_SET), 500'000);
    const std::string shown = onTerminal([&path] {
        const LoadProgress progress(path);
        std::this_thread::sleep_for(1300ms);
    });
    EXPECT_NE(shown.find("25% of 2 MB, "), std::string::npos) << shown;
    EXPECT_NE(shown.find(" s left"), std::string::npos) << shown;
    EXPECT_TRUE(shown.ends_with("\r\x1B[K")) << shown;
    const std::string kept = onTerminal([&reader] {
        const LoadProgress progress(reader.get(), LoadProgress::Measure::growth);
        std::this_thread::sleep_for(1100ms);
    });
    EXPECT_NE(kept.find("2 MB read, "), std::string::npos) << kept;
    EXPECT_EQ(onTerminal([&path] { const LoadProgress progress(path); }), "") << "it took no second";
}

}  // namespace
}  // namespace zeb::viewer
