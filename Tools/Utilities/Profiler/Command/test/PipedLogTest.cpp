// Logs that come once.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>  // NOLINT(modernize-deprecated-headers): posix_openpt
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <string>

#include "command/FileDescriptor.h"
#include "command/LogDiagnosis.h"
#include "command/PipedLog.h"
#include "support/FailureOf.h"
#include "support/TestChunks.h"

namespace zeb::command {
namespace {

std::string pathOf(const FileDescriptor& file) {
    return "/proc/self/fd/" + std::to_string(file.get());
}

TEST(PipedLog, IsWhateverGivesItsBytesOnce) {
    const test::TempDir files;
    const FileDescriptor terminal(::posix_openpt(O_RDWR | O_NOCTTY));
    ASSERT_EQ(::grantpt(terminal.get()) + ::unlockpt(terminal.get()), 0);
    const FileDescriptor socket(::socket(AF_INET, SOCK_STREAM, 0));
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe(ends.data()), 0);
    const FileDescriptor pipe(ends[0]);
    const FileDescriptor writer(ends[1]);
    for (const std::string& once : {std::string(::ptsname(terminal.get())), pathOf(socket), pathOf(pipe)}) {
        EXPECT_TRUE(comesOnce(once)) << once;
    }
    for (const std::string& often :
         {files.write("file", "x"), std::string("/dev/zero"), files.path("none")}) {
        EXPECT_FALSE(comesOnce(often)) << often;
    }
}

TEST(PipedLog, TellsAReadErrorAndNotTheEnd) {
    const FileDescriptor socket(::socket(AF_INET, SOCK_STREAM, 0));
    ASSERT_TRUE(socket.isOpen());
    PipedLog log(pathOf(socket));
    EXPECT_EQ(test::failureOf([&] { log.prepare(); }),
              "1 " + pathOf(socket) + ": the log can't be read: Transport endpoint is not connected");
}

}  // namespace
}  // namespace zeb::command
