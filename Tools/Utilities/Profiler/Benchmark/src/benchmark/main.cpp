#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "benchmark/Processes.h"
#include "benchmark/Shapes.h"
#include "benchmark/Subjects.h"
#include "benchmark/Table.h"

namespace {

using namespace zeb::bench;
namespace fs = std::filesystem;

struct Options {
    std::string directory;
    std::size_t rounds = 7;
    bool quick = false;
    bool full = false;
    std::string flatc;                ///< empty: leave it out
    std::string schema;               ///< for flatc
    std::vector<std::string> python;  ///< command in front of the log's path; empty: leave it out
    bool forms = false;               ///< measure the forms, and not the reader
    std::vector<std::string> shapes;  ///< empty: all
};

std::size_t sizeOf(const Shape& shape, const Options& options) {
    if (options.full) {
        return shape.full;
    }
    return options.quick ? shape.quick : shape.normal;
}

MeasuredLog logOf(const Shape& shape, std::size_t size, const Options& options) {
    const std::string file = std::string(shape.name) + "-" + std::to_string(size) + ".zlog";
    return {(fs::path(options.directory) / file).string(), size};
}

void makeLog(const Shape& shape, const MeasuredLog& log) {
    std::ofstream out(log.path, std::ios::binary);
    writeLog(out, shape, log.size);
    out.close();
    if (!out) {
        throw std::runtime_error("cannot write " + log.path);
    }
}

Figures measureLog(const MeasuredLog& log, const Shape& shape, const Options& options) {
    const bool hasLayers = shape.name == layersShape;
    Figures figures;
    figures[Figure::logSize] = static_cast<double>(fs::file_size(log.path));
    for (const Subject& subject : options.forms ? formSubjects() : readerSubjects()) {
        if ((hasLayers || !subject.layersOnly) && (shape.hasCopyFloor || !subject.isCopyFloor)) {
            runApart([&](Figures& measured) { subject.measure(log, measured); }, figures);
        }
    }
    return figures;
}

// Other programs are slow and steady enough to be measured once.
void measureOthers(const MeasuredLog& log, const Options& options, Figures& figures) {
    if (!options.flatc.empty()) {
        figures[Figure::flatc] =
            timeOfProgram({options.flatc, "--json", "--no-warnings", "--raw-binary", "--size-prefixed", "-o",
                           options.directory, options.schema, "--", log.path});
    }
    if (!options.python.empty()) {
        std::vector<std::string> command = options.python;
        command.push_back(log.path);
        figures[Figure::python] = timeOfProgram(command);
    }
}

ShapeResult measureShape(const Shape& shape, const Options& options) {
    std::cerr << shape.title << " ..." << std::flush;
    // In a process of its own too: the measured ones inherit the memory of this one.
    const auto make = [&](std::size_t size) {
        MeasuredLog log = logOf(shape, size, options);
        Figures none;
        runApart([&](Figures& /*measured*/) { makeLog(shape, log); }, none);
        return log;
    };
    const MeasuredLog small = make(sizeOf(shape, options) / 4);
    const MeasuredLog large = make(sizeOf(shape, options));
    Figures others;
    if (shape.name == oneChunkShape && !options.forms) {
        measureOthers(large, options, others);
    }
    ShapeResult result{shape.title, {}};
    for (std::size_t round = 0; round < options.rounds; ++round) {
        std::cerr << ' ' << round + 1 << std::flush;
        result.rounds.push_back({measureLog(small, shape, options), measureLog(large, shape, options)});
        for (const Figure figure : {Figure::flatc, Figure::python}) {
            result.rounds.back().large[figure] = others[figure];
        }
    }
    std::cerr << '\n';
    fs::remove(small.path);
    fs::remove(large.path);
    return result;
}

bool isAskedFor(const Shape& shape, const Options& options) {
    const auto& asked = options.shapes;
    if (!(options.forms ? shape.isForForms : shape.isForReader)) {
        return false;
    }
    return asked.empty() || std::find(asked.begin(), asked.end(), shape.name) != asked.end();
}

void run(const Options& options) {
    fs::create_directories(options.directory);
    std::vector<ShapeResult> results;
    for (const Shape& shape : allShapes()) {
        if (isAskedFor(shape, options)) {
            results.push_back(measureShape(shape, options));
        }
    }
    (options.forms ? printFormTable : printReaderTable)(std::cout, results);
}

}  // namespace

int main(int argc, char** argv) {
    try {
        Options options;
        std::vector<std::string> names;
        for (const Shape& shape : allShapes()) {
            names.emplace_back(shape.name);
        }
        CLI::App app("Measures how the reader does on logs of many shapes, and prints one table.");
        app.add_option("shape", options.shapes, "Shapes to measure, all without one")
            ->check(CLI::IsMember(names));
        app.add_option("--directory", options.directory, "Where the logs are made")->required();
        app.add_option("--rounds", options.rounds, "Rounds that the medians are taken over")
            ->check(CLI::PositiveNumber);
        app.add_flag("--quick", options.quick, "Smaller logs");
        app.add_flag("--full", options.full, "Larger logs, the one chunk of 400 MB");
        app.add_flag("--forms", options.forms, "The forms of a run instead of the reader");
        app.add_option("--flatc", options.flatc, "Measures this flatc too");
        app.add_option("--schema", options.schema, "The log's schema, for flatc");
        app.add_option("--python", options.python, "Measures this command too, with a log behind it")
            ->expected(2)
            ->allow_extra_args(false);
        CLI11_PARSE(app, argc, argv);
        run(options);
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "profile-log-bench: " << error.what() << '\n';
        return 1;
    }
}
