#include "benchmark/Table.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iomanip>
#include <span>
#include <sstream>

namespace zeb::bench {

namespace {

using Cell = double (*)(const Round&);

struct Column {
    std::string_view title;
    int decimals;
    Cell cell;
};

template <Figure Dividend, Figure Divisor>
double ratio(const Round& round) {
    return round.large[Dividend] / round.large[Divisor];
}

double exponent(double small, double large) {
    return std::log(large / small) / std::log(4.0);
}

template <Figure Of>
double growth(const Round& round) {
    return exponent(round.small[Of], round.large[Of]);
}

double reportTime(const Figures& figures) {
    return figures[Figure::backendReport] + figures[Figure::genericReport];
}

double csvTime(const Figures& figures) {
    return figures[Figure::backendCsv] + figures[Figure::genericCsv];
}

constexpr double million = 1e6;

constexpr std::array<Column, 21> readerColumns = {{
    {"MB", 1, [](const Round& round) { return round.large[Figure::logSize] / million; }},
    {"MB/s", 0,
     [](const Round& round) { return round.large[Figure::logSize] / million / round.large[Figure::load]; }},
    {"load/read", 1, ratio<Figure::load, Figure::read>},
    {"load/verify", 2, ratio<Figure::load, Figure::verify>},
    {"load/copy", 2, ratio<Figure::load, Figure::copy>},
    {"decode/copy", 2, ratio<Figure::decode, Figure::copy>},
    {"aggregate/copy", 2, ratio<Figure::aggregate, Figure::copy>},
    {"destroy/copy", 3, ratio<Figure::loadDestruction, Figure::copy>},
    {"destroy copy/copy", 3, ratio<Figure::copyDestruction, Figure::copy>},
    {"flatc/load", 1, ratio<Figure::flatc, Figure::load>},
    {"python/load", 0, ratio<Figure::python, Figure::load>},
    {"mem/B", 2, ratio<Figure::loadMemory, Figure::logSize>},
    {"copy mem/B", 2, ratio<Figure::copyMemory, Figure::logSize>},
    {"growth copy", 2, growth<Figure::copy>},
    {"load", 2, growth<Figure::load>},
    {"report", 2,
     [](const Round& round) { return exponent(reportTime(round.small), reportTime(round.large)); }},
    {"csv", 2, [](const Round& round) { return exponent(csvTime(round.small), csvTime(round.large)); }},
    {"report ms", 1, [](const Round& round) { return reportTime(round.large) * 1e3; }},
    {"csv ms", 1, [](const Round& round) { return csvTime(round.large) * 1e3; }},
    {"report/format", 2, ratio<Figure::backendReport, Figure::reportFloor>},
    {"csv/format", 2, ratio<Figure::backendCsv, Figure::csvFloor>},
}};

double medianOf(const std::vector<Round>& rounds, Cell cell) {
    std::vector<double> values;
    for (const Round& round : rounds) {
        if (const double value = cell(round); std::isfinite(value)) {
            values.push_back(value);
        }
    }
    if (values.empty()) {
        return std::nan("");
    }
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

std::string textOf(double value, int decimals) {
    if (std::isnan(value)) {
        return "-";
    }
    std::ostringstream text;
    text << std::fixed << std::setprecision(decimals) << value;
    return text.str();
}

struct Form {
    std::string_view title;
    std::array<Column, 5> columns;
};

template <Figure Time, Figure Memory>
constexpr Form formOf(std::string_view title) {
    return {title,
            {{{"log MB", 1, [](const Round& round) { return round.large[Figure::logSize] / million; }},
              {"growth", 2, growth<Time>},
              {"ms", 0, [](const Round& round) { return round.large[Time] * 1e3; }},
              {"peak MB", 0, [](const Round& round) { return round.large[Memory] / million; }},
              {"mem growth", 2, growth<Memory>}}}};
}

constexpr std::array<Form, 6> forms = {formOf<Figure::top, Figure::topMemory>("top"),
                                       formOf<Figure::json, Figure::jsonMemory>("json"),
                                       formOf<Figure::html, Figure::htmlMemory>("html"),
                                       formOf<Figure::trace, Figure::traceMemory>("trace"),
                                       formOf<Figure::markdown, Figure::markdownMemory>("markdown"),
                                       formOf<Figure::compare, Figure::compareMemory>("compare")};

int widthOf(const Column& column) {
    return std::max<int>(6, static_cast<int>(column.title.size()));
}

void printTitles(std::ostream& out, int titleWidth, std::span<const Column> columns) {
    out << "| " << std::left << std::setw(titleWidth) << "shape" << std::right;
    for (const Column& column : columns) {
        out << " | " << std::setw(widthOf(column)) << column.title;
    }
    out << " |\n|-" << std::string(static_cast<std::size_t>(titleWidth), '-');
    for (const Column& column : columns) {
        out << "-|-" << std::string(static_cast<std::size_t>(widthOf(column)) - 1, '-') << ':';
    }
    out << "-|\n";
}

void printRow(std::ostream& out, int titleWidth, const std::string& title, std::span<const Column> columns,
              const std::vector<Round>& rounds) {
    out << "| " << std::left << std::setw(titleWidth) << title << std::right;
    for (const Column& column : columns) {
        out << " | " << std::setw(widthOf(column)) << textOf(medianOf(rounds, column.cell), column.decimals);
    }
    out << " |\n";
}

}  // namespace

void printReaderTable(std::ostream& out, const std::vector<ShapeResult>& results) {
    constexpr int titleWidth = 12;
    printTitles(out, titleWidth, readerColumns);
    for (const ShapeResult& result : results) {
        printRow(out, titleWidth, std::string(result.title), readerColumns, result.rounds);
    }
}

void printFormTable(std::ostream& out, const std::vector<ShapeResult>& results) {
    constexpr int titleWidth = 23;
    printTitles(out, titleWidth, forms.front().columns);
    for (const Form& form : forms) {
        for (const ShapeResult& result : results) {
            printRow(out, titleWidth, std::string(form.title).append(", ").append(result.title), form.columns,
                     result.rounds);
        }
    }
}

}  // namespace zeb::bench
