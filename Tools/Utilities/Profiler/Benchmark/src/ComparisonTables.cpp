// Measures the comparison on logs of which the truth is known, and prints the tables of docs/compare.md:
//
//   comparison-tables [SEEDS [FIRST]]      100 seeds from 1 on
//
// A log is that of the sample network, with a drift and a seed of its own.

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <regex>
#include <string>
#include <tuple>
#include <vector>

#include "analysis/Comparison.h"
#include "analysis/Gate.h"
#include "analysis/MakeRun.h"
#include "samplelog/NetworkLog.h"

namespace {

using namespace zeb;
using analysis::GateOutcome;

constexpr std::uint64_t maxLogs = 60;

// What a side of the comparison is: a truth, and the drift of its logs.
struct Truth {
    std::uint32_t slowerPercent = 0;
    std::uint32_t layerPercent = 0;  // of conv_pw_3
    std::uint32_t driftPercent = 2;

    auto operator<=>(const Truth&) const = default;
};

class Logs {
public:
    explicit Logs(std::string path) : path_(std::move(path)) {}
    ~Logs() { std::filesystem::remove(path_); }
    Logs(const Logs&) = delete;
    Logs& operator=(const Logs&) = delete;

    // So many logs of a side, which have seeds that no other has.
    std::vector<analysis::RunSummary> take(const Truth& truth, std::uint64_t seed, bool isNew,
                                           std::uint64_t count) {
        std::vector<analysis::RunSummary> logs;
        for (std::uint64_t log = 0; log < count; ++log) {
            logs.push_back(logOf(truth, (seed * 2 + (isNew ? 1 : 0)) * maxLogs * 2 + log));
        }
        return logs;
    }

private:
    const analysis::RunSummary& logOf(const Truth& truth, std::uint64_t seed) {
        const auto [found, isNew] = made_.try_emplace({truth, seed});
        if (isNew) {
            samplelog::NetworkOptions options;
            options.seed = seed;
            options.driftMillionths = truth.driftPercent * 10'000;
            options.slowerMillionths = truth.slowerPercent * 10'000;
            if (truth.layerPercent != 0) {
                options.slowerLayer = samplelog::SlowerLayer{"conv_pw_3", truth.layerPercent * 10'000};
            }
            std::ofstream out(path_, std::ios::binary);
            writeNetworkLog(out, options);
            out.close();
            found->second =
                analysis::summarize(analysis::makeRun(path_, profiling::VisibilityLevel{127}).value());
        }
        return found->second;
    }

    std::string path_;
    std::map<std::pair<Truth, std::uint64_t>, analysis::RunSummary> made_;
};

class Tables {
public:
    Tables(std::uint64_t seeds, std::uint64_t first) : seeds_(seeds), first_(first) {}

    void print() {
        printPower();
        printGate();
        printLogsAsked();
    }

private:
    analysis::Comparison comparisonOf(const Truth& truth, std::uint64_t seed, std::uint64_t logs,
                                      std::uint64_t from = 0) {
        Truth same = truth;
        same.slowerPercent = same.layerPercent = 0;
        return analysis::compare(logs_.take(same, seed + from, false, logs),
                                 logs_.take(truth, seed + from, true, logs));
    }

    template <typename Is>
    std::string percentOf(const Truth& truth, std::uint64_t logs, Is is) {
        std::uint64_t count = 0;
        for (std::uint64_t seed = first_; seed < first_ + seeds_; ++seed) {
            count += is(comparisonOf(truth, seed, logs)) ? 1 : 0;
        }
        return std::to_string((count * 1000 / seeds_ + 5) / 10);
    }

    static const analysis::TotalChange& marlixOf(const analysis::Comparison& comparison) {
        return *comparison.graphs.at(0).find(analysis::Total::marlix);
    }

    static bool isSure(analysis::Verdict verdict) {
        return verdict == analysis::Verdict::slower || verdict == analysis::Verdict::faster;
    }

    static bool marks(const analysis::Comparison& comparison, const std::string& name) {
        for (const analysis::LayerChange& layer : comparison.graphs.at(0).layers) {
            if (isSure(layer.verdict) && (name.empty() || layer.name == name)) {
                return true;
            }
        }
        return false;
    }

    void printPower() {
        std::cout
            << "| Logs a side | the interval holds the truth | no change is called one | a layer is marked "
               "without a cause | 3 % slower is found | 5 % | 10 % | a layer 10 % slower is marked |\n"
               "|---|---|---|---|---|---|---|---|\n";
        for (const std::uint64_t logs : {4U, 5U, 8U, 20U}) {
            const auto isFound = [](const auto& comparison) { return isSure(marlixOf(comparison).verdict); };
            std::cout << "| " << logs << " | "
                      << percentOf({5, 0, 2}, logs,
                                   [](const auto& comparison) {
                                       return marlixOf(comparison).interval->holds(0.05);
                                   })
                      << " | " << percentOf({}, logs, isFound) << " | "
                      << percentOf({}, logs, [](const auto& comparison) { return marks(comparison, ""); })
                      << " | " << percentOf({3, 0, 2}, logs, isFound) << " | "
                      << percentOf({5, 0, 2}, logs, isFound) << " | " << percentOf({10, 0, 2}, logs, isFound)
                      << " | "
                      << percentOf({0, 10, 2}, logs,
                                   [](const auto& comparison) { return marks(comparison, "conv_pw_3"); })
                      << " |\n"
                      << std::flush;
        }
        std::cout << '\n';
    }

    void printGate() {
        std::cout
            << "| True change | Logs a side | not slower than allowed | can't tell | slower than allowed |\n"
               "|---|---|---|---|---|\n";
        for (const std::uint32_t slower : {0U, 2U, 4U, 5U, 6U, 10U}) {
            for (const std::uint64_t logs : {5U, 20U}) {
                std::cout << "| " << slower << " % | " << logs;
                for (const GateOutcome outcome :
                     {GateOutcome::pass, GateOutcome::unsure, GateOutcome::slower}) {
                    std::cout << " | " << percentOf({slower, 0, 2}, logs, [outcome](const auto& comparison) {
                        return judge(comparison, {.maxGrowth = 0.05}).outcome == outcome;
                    });
                }
                std::cout << " |\n" << std::flush;
            }
        }
        std::cout << '\n';
    }

    // Takes the number of logs that a gate asks for, with seeds that it has not seen.
    void printLogsAsked() {
        std::cout << "| Drift | True change | can't tell with 5 logs a side | asks for 50 at most | of these "
                     "decide with "
                     "so many |\n|---|---|---|---|---|\n";
        for (const std::uint32_t drift : {2U, 4U}) {
            for (const std::uint32_t slower : {0U, 10U}) {
                const Truth truth{slower, 0, drift};
                std::uint64_t unsure = 0;
                std::uint64_t asked = 0;
                std::uint64_t decided = 0;
                for (std::uint64_t seed = first_; seed < first_ + seeds_; ++seed) {
                    const auto result = judge(comparisonOf(truth, seed, 5), {.maxGrowth = 0.05});
                    unsure += result.outcome == GateOutcome::unsure ? 1 : 0;
                    std::smatch number;
                    if (result.outcome == GateOutcome::unsure &&
                        std::regex_search(result.reasons.at(0), number, std::regex("About ([0-9]+) logs"))) {
                        ++asked;
                        constexpr std::uint64_t unseen = 1'000'000;
                        decided += judge(comparisonOf(truth, seed, std::stoull(number[1]), unseen),
                                         {.maxGrowth = 0.05})
                                               .outcome != GateOutcome::unsure
                                       ? 1
                                       : 0;
                    }
                }
                std::cout << "| " << drift << " % | " << slower << " % | " << unsure << " | " << asked
                          << " | " << decided << " |\n"
                          << std::flush;
            }
        }
    }

    std::uint64_t seeds_;
    std::uint64_t first_;
    Logs logs_{(std::filesystem::temp_directory_path() / "comparison-tables.zlog").string()};
};

}  // namespace

int main(int argc, char** argv) {
    const std::uint64_t seeds = argc > 1 ? std::strtoull(argv[1], nullptr, 10) : 100;
    const std::uint64_t first = argc > 2 ? std::strtoull(argv[2], nullptr, 10) : 1;
    Tables(std::max<std::uint64_t>(seeds, 1), first).print();
}
