#include "compare/LoadRun.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <new>
#include <optional>
#include <stdexcept>
#include <system_error>

#include "analysis/MakeRun.h"
#include "command/Failure.h"
#include "command/LogDiagnosis.h"
#include "forms/json/RunJson.h"

namespace zeb::compare {

namespace {

using analysis::Run;
using command::Failure;
using command::MemoryLimit;

Failure badLog(const std::string& path, const std::string& cause) {
    return {command::ExitCode::badLog, path, cause};
}

// A log begins with the length of its first chunk, and one of four bytes of text would have half a gigabyte.
bool holdsJson(const std::string& path) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) {
        return false;
    }
    std::array<char, 4> bytes{};
    std::ifstream file(path, std::ios::binary);
    if (!file.read(bytes.data(), bytes.size())) {
        return false;
    }
    const auto isText = [](unsigned char byte) { return std::isprint(byte) != 0 || std::isspace(byte) != 0; };
    const auto first =
        std::find_if(bytes.begin(), bytes.end(), [](unsigned char byte) { return std::isspace(byte) == 0; });
    return std::all_of(bytes.begin(), bytes.end(), isText) && (first == bytes.end() || *first == '{');
}

Run runFromJson(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw badLog(path, "the run can't be read: " + std::string(std::strerror(errno)));
    }
    try {
        Run run = forms::readRunJson(file);
        run.logFile = path;
        return run;
    } catch (const std::runtime_error& error) {
        throw badLog(path, "the run can't be read: " + std::string(error.what()));
    }
}

Run runFromLog(const std::string& path, const MemoryLimit& memory) {
    constexpr profiling::VisibilityLevel everything{127};
    try {
        std::optional<Run> run = analysis::makeRun(path, everything);
        if (!run) {
            throw badLog(path, command::whyRejected(path, memory, ">run.log"));
        }
        if (const auto trouble = command::whyEndedEarly(path)) {
            throw badLog(path, *trouble);
        }
        return *std::move(run);
    } catch (const std::invalid_argument& error) {
        throw badLog(path, "a value in the log is no number (" + std::string(error.what()) + ")");
    } catch (const std::out_of_range& error) {
        throw badLog(path, "a value in the log is no number that fits (" + std::string(error.what()) + ")");
    }
}

}  // namespace

Run loadRun(const std::string& path, MemoryLimit& memory) {
    if (const auto trouble = command::troubleWithPath(path)) {
        throw badLog(path, *trouble);
    }
    try {
        Run run = holdsJson(path) ? runFromJson(path) : runFromLog(path, memory);
        if (MemoryLimit::wasHit()) {
            throw std::bad_alloc();
        }
        return run;
    } catch (const std::bad_alloc&) {
        memory.releaseReserve();
        throw badLog(path, memory.cause());
    } catch (const std::length_error&) {
        memory.releaseReserve();
        throw badLog(path, memory.cause());
    }
}

}  // namespace zeb::compare
