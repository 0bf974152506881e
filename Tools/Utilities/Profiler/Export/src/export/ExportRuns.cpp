#include "export/ExportRuns.h"

#include <malloc.h>

#include <exception>
#include <mutex>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "command/Failure.h"
#include "command/runs/LoadRun.h"
#include "export/ExportProgress.h"
#include "export/Turns.h"

namespace zeb::exports {

namespace {

using analysis::Run;
using command::ExitCode;
using command::Failure;

// What all workers share.
struct Work {
    command::InputList& inputs;
    const ExportOptions& options;
    RunIds& known;                 // in turn
    command::MemoryLimit& memory;  // its reserve in turn
    Batch& batch;                  // in turn
    ExportResult result;           // in turn
    ExportProgress progress;       // in turn
    Turns turns;
    std::mutex failureMutex;
    std::exception_ptr failure;  // the first that ends all
};

// Reads one log after the other, and puts its rows into the batch when its turn has come. Rows wait for it in
// one buffer a table; a worker whose buffer is full waits with them.
class Worker {
public:
    explicit Worker(Work& work) : work_(work) {
        for (const forms::Table table : work.options.tables) {
            rows_.emplace_back([this, table](std::string_view bytes) { take(table, bytes); });
        }
    }

    void run() {
        try {
            while (const auto input = work_.inputs.next()) {
                input_ = &*input;
                work();
            }
        } catch (const Turns::Ended&) {
        } catch (...) {
            const std::lock_guard lock(work_.failureMutex);
            work_.failure = work_.failure ? work_.failure : std::current_exception();
            work_.turns.end();
        }
    }

private:
    enum class Outcome : std::uint8_t { done, stepAside, memoryEnded };

    void work() {
        Outcome outcome = Outcome::stepAside;
        while (outcome == Outcome::stepAside) {
            const Turns::Work atWork(work_.turns);
            outcome = tryOnce();
        }
        if (outcome == Outcome::memoryEnded) {
            work_.turns.waitToBeAlone(input_->position);
            if (tryOnce() == Outcome::memoryEnded) {
                work_.memory.releaseReserve();
                reject(input_->path + ": " + work_.memory.cause());
            }
        }
        work_.progress.show(input_->position + 1);
        work_.turns.passOn();
    }

    // Leaves the turn to the caller where it is done.
    Outcome tryOnce() {
        isClaimed_ = false;
        try {
            putRun();
            return Outcome::done;
        } catch (const Turns::StepAside&) {
            clearRows();
            return Outcome::stepAside;
        } catch (const std::bad_alloc&) {
            return afterMemoryEnded();
        } catch (const std::length_error&) {
            return afterMemoryEnded();
        }
    }

    // Rows that are in the batch can't be taken back.
    Outcome afterMemoryEnded() {
        clearRows();
        if (isClaimed_) {
            throw Failure(ExitCode::badLog, input_->path, "the tables need more memory than there is");
        }
        return Outcome::memoryEnded;
    }

    void clearRows() {
        for (forms::CsvRows& rows : rows_) {
            rows.clear();
        }
    }

    void putRun() {
        std::optional<Run> run;
        try {
            run = command::readRun(input_->path, work_.memory, input_->labels);
        } catch (const Failure& failure) {
            work_.turns.waitAtWork(input_->position);
            reject(failure.what());
            return;
        }
        runId_ = run->runId;
        for (std::size_t position = 0; position < rows_.size(); ++position) {
            forms::putRows(work_.options.tables[position], *run, rows_[position]);
        }
        claim();
        for (forms::CsvRows& rows : rows_) {
            rows.flush();
        }
        work_.result.written += isWanted_ ? 1 : 0;
    }

    void take(forms::Table table, std::string_view bytes) {
        claim();
        if (isWanted_) {
            work_.batch.append(table, bytes);
        }
    }

    // In its turn a run is written unless it is known.
    void claim() {
        if (!isClaimed_) {
            work_.turns.waitAtWork(input_->position);
            isWanted_ = work_.known.add(runId_);
            isClaimed_ = true;
        }
    }

    void reject(const std::string& line) {
        ++work_.result.rejected;
        work_.progress.hide();
        command::printErrorLine(programName, line);
    }

    Work& work_;
    std::vector<forms::CsvRows> rows_;  // of the tables that are wanted
    const command::Input* input_ = nullptr;
    std::string runId_;
    bool isClaimed_ = false;  // it has its turn
    bool isWanted_ = false;
};

}  // namespace

ExportResult exportRuns(command::InputList& inputs, const ExportOptions& options, RunIds& known,
                        command::MemoryLimit& memory, Batch& batch) {
    // Else a thread's freed blocks stay its own, and the log that is read alone does not have them.
    constexpr int largeBlock = 1 << 17;
    ::mallopt(M_MMAP_THRESHOLD, largeBlock);
    Work work{inputs, options, known, memory, batch, {}, {}, {}, {}, {}};
    std::vector<std::thread> others;
    try {
        while (others.size() + 1 < options.jobs) {
            others.emplace_back([&work] { Worker(work).run(); });
        }
    } catch (const std::system_error&) {  // those that there are do it
    }
    Worker(work).run();
    for (std::thread& other : others) {
        other.join();
    }
    work.progress.hide();
    if (work.failure) {
        std::rethrow_exception(work.failure);
    }
    return work.result;
}

}  // namespace zeb::exports
