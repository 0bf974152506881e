#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>  // NOLINT(modernize-deprecated-headers): posix_openpt
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <thread>

#include "command/FileDescriptor.h"
#include "command/LoadProgress.h"
#include "support/TestChunks.h"

namespace zeb::command {
namespace {

// A terminal that takes the place of standard error for as long as it lives.
class Terminal {
public:
    Terminal() : terminal_(::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK)), before_(::dup(STDERR_FILENO)) {
        EXPECT_TRUE(terminal_.isOpen() && ::grantpt(terminal_.get()) == 0 &&
                    ::unlockpt(terminal_.get()) == 0);
        user_ = FileDescriptor(::open(::ptsname(terminal_.get()), O_RDWR | O_NOCTTY));
        ::dup2(user_.get(), STDERR_FILENO);
    }
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;
    ~Terminal() { ::dup2(before_.get(), STDERR_FILENO); }

    // What it has been told so far.
    const std::string& text() {
        std::string part(4096, '\0');
        const ssize_t count = ::read(terminal_.get(), part.data(), part.size());
        text_.append(part, 0, static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        return text_;
    }
    // Waits for a part of it, however slow the machine is.
    bool shows(const std::string& part) {
        using namespace std::chrono_literals;
        for (int tries = 0; tries < 3000 && text().find(part) == std::string::npos; ++tries) {
            std::this_thread::sleep_for(10ms);
        }
        return text_.find(part) != std::string::npos;
    }

private:
    FileDescriptor terminal_;
    FileDescriptor before_;
    FileDescriptor user_{-1};
    std::string text_;
};

TEST(LoadProgress, IsShownOnATerminalAfterASecondAndGoesAway) {
    const test::TempDir files;
    const std::string path = files.write("log", std::string(2'000'000, 'x'));
    const FileDescriptor reader(::open(path.c_str(), O_RDONLY));
    EXPECT_EQ(::lseek(reader.get(), 500'000, SEEK_SET), 500'000);
    Terminal terminal;
    {
        LoadProgress::showFor("viewer");
        const LoadProgress progress(path);
        EXPECT_EQ(terminal.text(), "") << "it took no second";
        EXPECT_TRUE(terminal.shows("viewer: 25% of 2 MB, "));
        EXPECT_TRUE(terminal.shows(" s left"));
    }
    EXPECT_TRUE(terminal.text().ends_with("\r\x1B[K")) << terminal.text();
    const LoadProgress progress(reader.get(), LoadProgress::Measure::growth);
    EXPECT_TRUE(terminal.shows("2 MB read, "));
}

TEST(LoadProgress, IsNotShownWhereNobodyLooks) {
    using namespace std::chrono_literals;
    const test::TempDir files;
    const std::string path = files.write("log", "bytes");
    const std::string shown = files.write("shown", "");
    const command::FileDescriptor reader(::open(path.c_str(), O_RDONLY));
    const command::FileDescriptor before(::dup(STDERR_FILENO));
    const command::FileDescriptor file(::open(shown.c_str(), O_WRONLY));
    ::dup2(file.get(), STDERR_FILENO);
    {
        const LoadProgress progress(path);
        std::this_thread::sleep_for(1300ms);  // on a terminal it would be there after a second
    }
    ::dup2(before.get(), STDERR_FILENO);
    EXPECT_EQ(test::fileText(shown), "");
}

}  // namespace
}  // namespace zeb::command
