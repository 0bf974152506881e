#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <sstream>
#include <string>

#include "reader/ZebProfileLogReader.h"
#include "support/TestLog.h"

namespace zeb::test {

/// @return what a writer puts into a stream
inline samplelog::Bytes written(const std::function<void(std::ostream&)>& write) {
    std::ostringstream out;
    write(out);
    const std::string text = out.str();
    return {text.begin(), text.end()};
}

/// A log as the generic reader sees it. Loading has to succeed and to say nothing.
class LoadedLog {
public:
    explicit LoadedLog(const samplelog::Bytes& log)
        : reader_(files_.write("run.zlog", log), profiling::VisibilityLevel{127}) {
        testing::internal::CaptureStdout();
        EXPECT_TRUE(reader_.loadLog(false));
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    }

    [[nodiscard]] const profiling::EventStore& store() const { return reader_.store(); }
    [[nodiscard]] const profiling::LogHeaderDetails& header() const { return reader_.header(); }

private:
    TempDir files_;
    profiling::ZebProfileLogReader reader_;
};

}  // namespace zeb::test
