#include "command/runs/LoadRun.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <new>
#include <optional>
#include <stdexcept>

#include "analysis/MakeRun.h"
#include "command/AllocationFailure.h"
#include "command/Failure.h"
#include "command/LogDiagnosis.h"
#include "command/PipedLog.h"
#include "forms/json/RunJson.h"

namespace zeb::command {

namespace {

using analysis::Run;

Failure badLog(const std::string& path, const std::string& cause) {
    return {ExitCode::badLog, path, cause};
}

Run runFromJson(const PipedLog& log) {
    std::ifstream file(log.path(), std::ios::binary);
    if (!file) {
        throw badLog(log.given(), "the run can't be read: " + std::string(std::strerror(errno)));
    }
    try {
        return forms::readRunJson(file);
    } catch (const std::runtime_error& error) {
        throw badLog(log.given(), "the run can't be read: " + std::string(error.what()));
    }
}

Run runFromLog(const PipedLog& log, const MemoryLimit& memory) {
    constexpr profiling::VisibilityLevel everything{127};
    try {
        std::optional<Run> run = analysis::makeRun(log.path(), everything, analysis::EventTrees::leftOut);
        if (!run) {
            throw badLog(log.given(), whyRejected(log.path(), memory, ">run.log"));
        }
        if (const auto trouble = whyEndedEarly(log.path())) {
            throw badLog(log.given(), *trouble);
        }
        return *std::move(run);
    } catch (const std::invalid_argument& error) {
        throw badLog(log.given(), "a value in the log is no number (" + std::string(error.what()) + ")");
    } catch (const std::out_of_range& error) {
        throw badLog(log.given(),
                     "a value in the log is no number that fits (" + std::string(error.what()) + ")");
    }
}

Run readPrepared(const PipedLog& log, const MemoryLimit& memory, const Labels& labels) {
    static_cast<void>(takeAllocationFailure());
    Run run = beginningOf(log.path()) == Beginning::json ? runFromJson(log) : runFromLog(log, memory);
    run.logFile = log.given();
    if (const auto trouble = addLabels(run.labels, labels)) {
        throw badLog(log.given(), *trouble);
    }
    if (takeAllocationFailure()) {
        throw std::bad_alloc();
    }
    return run;
}

}  // namespace

Run readRun(const std::string& path, const MemoryLimit& memory, const Labels& labels) {
    PipedLog log(path);
    log.prepare();
    return readPrepared(log, memory, labels);
}

Run loadRun(const std::string& path, MemoryLimit& memory, const Labels& labels) {
    PipedLog log(path);
    log.prepare();
    try {
        return readPrepared(log, memory, labels);
    } catch (const std::bad_alloc&) {
        memory.releaseReserve();
        throw badLog(log.given(), memory.cause());
    } catch (const std::length_error&) {
        memory.releaseReserve();
        throw badLog(log.given(), memory.cause());
    }
}

}  // namespace zeb::command
