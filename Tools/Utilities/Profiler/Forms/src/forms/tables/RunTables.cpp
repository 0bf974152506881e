#include "forms/tables/RunTables.h"

#include <concepts>
#include <iterator>
#include <optional>
#include <string>
#include <type_traits>
#include <unordered_map>
#include <vector>

#include "forms/json/RunFields.h"

namespace zeb::forms {

namespace {

using analysis::Graph;
using analysis::Run;

constexpr std::string_view idName = "run_id";

template <typename Member>
concept Struct = requires(const Member& member) {
    fieldsOf(member, [](std::string_view, const auto&) {});
};
template <typename Member>
concept Scalar = std::integral<Member> || std::floating_point<Member> || std::is_enum_v<Member> ||
    std::same_as<Member, std::string>;

// What a member comes in: as itself, as one that may be missing, or as one that follows from others.
template <typename Member>
struct Held {
    using Type = Member;
    static const Type* in(const Member& member) { return &member; }
};
template <typename Member>
struct Held<std::optional<Member>> {
    using Type = Member;
    static const Type* in(const std::optional<Member>& member) { return member ? &*member : nullptr; }
};
template <typename Member>
struct Held<Derived<Member>> {
    using Type = Member;
    static const Type* in(const Derived<Member>& member) { return &member.value; }
};

// Structs that are no part of the row that they are in.
template <typename Member>
concept ApartFromRow = std::same_as<Member, analysis::Executions> || std::same_as<Member, analysis::Part>;

void putValue(CsvRows& rows, const std::string& text) {
    rows.putText(text);
}
void putValue(CsvRows& rows, bool value) {
    rows.putTruth(value);
}
void putValue(CsvRows& rows, double value) {
    rows.putNumber(value);
}
template <std::unsigned_integral Number>
void putValue(CsvRows& rows, Number value) {
    rows.putNumber(std::uint64_t{value});
}
template <typename Enum>
requires std::is_enum_v<Enum>
void putValue(CsvRows& rows, Enum value) {
    rows.putText(nameIn(value));
}

// The columns of a struct are its members that are single values, and those of its members; lists are tables
// of their own, or are left out. The id stands among a row's keys.
template <typename Type>
void putNames(CsvRows& rows, const std::string& prefix) {
    static const Type none{};
    fieldsOf(none, [&rows, &prefix]<typename Member>(std::string_view key, const Member& /*member*/) {
        using Kept = typename Held<Member>::Type;
        if constexpr (Scalar<Kept>) {
            if (key != idName) {
                rows.putName(prefix + std::string(key));
            }
        } else if constexpr (Struct<Kept> && !ApartFromRow<Kept>) {
            putNames<Kept>(rows, prefix + std::string(key) + '_');
        }
    });
}

// The same, with the values; nothing for all of a struct that is missing.
template <typename Type>
void putColumns(CsvRows& rows, const Type* value) {
    static const Type none{};
    fieldsOf(value == nullptr ? none : *value, [&rows, value]<typename Member>(std::string_view key,
                                                                               const Member& member) {
        using Kept = typename Held<Member>::Type;
        [[maybe_unused]] const Kept* const kept = value == nullptr ? nullptr : Held<Member>::in(member);
        if constexpr (Scalar<Kept>) {
            if (key != idName) {
                kept == nullptr ? rows.putNothing() : putValue(rows, *kept);
            }
        } else if constexpr (Struct<Kept> && !ApartFromRow<Kept>) {
            putColumns(rows, kept);
        }
    });
}

// What the rows of one table begin with, and hold.
struct TableForm {
    std::vector<std::string_view> keys;  ///< behind the id of the run
    void (*putNames)(CsvRows& rows);
    void (*putRows)(const Run& run, CsvRows& rows);
};

template <typename Type>
void putNamesOf(CsvRows& rows) {
    putNames<Type>(rows, "");
}

template <typename Element>
void putRow(const Run& run, std::initializer_list<std::size_t> keys, const Element& element, CsvRows& rows) {
    rows.putText(run.runId);
    for (const std::size_t key : keys) {
        rows.putNumber(std::uint64_t{key});
    }
    putColumns(rows, &element);
    rows.endRow();
}

void putLabels(const Run& run, CsvRows& rows) {
    for (const auto& [key, value] : run.labels) {
        rows.putText(run.runId);
        rows.putText(key);
        rows.putText(value);
        rows.endRow();
    }
}

void putGraphs(const Run& run, CsvRows& rows) {
    for (std::size_t graph = 0; graph < run.graphs.size(); ++graph) {
        putRow(run, {graph}, run.graphs[graph], rows);
    }
}

void putExecutions(const Run& run, CsvRows& rows) {
    for (std::size_t graph = 0; graph < run.graphs.size(); ++graph) {
        const analysis::Executions& executions = run.graphs[graph].executions;
        for (std::size_t row = 0; row < executions.count(); ++row) {
            rows.putText(run.runId);
            rows.putNumber(std::uint64_t{graph});
            rows.putNumber(std::uint64_t{row});
            fieldsOf(executions, [&rows, row](std::string_view /*key*/, const auto& column) {
                column[row] ? rows.putNumber(*column[row]) : rows.putNothing();
            });
            rows.endRow();
        }
    }
}

void putSteps(const Run& run, CsvRows& rows) {
    for (std::size_t row = 0; row < run.steps.size(); ++row) {
        putRow(run, {row}, run.steps[row], rows);
    }
}

void putZebLayers(const Run& run, CsvRows& rows) {
    for (std::size_t graph = 0; graph < run.graphs.size(); ++graph) {
        const auto& layers = run.graphs[graph].zebLayers;
        for (std::size_t row = 0; row < layers.size(); ++row) {
            putRow(run, {graph, row}, layers[row], rows);
        }
    }
}

// The row of the ZEB layer that an ORU layer belongs to, by the id of the ORU layer.
std::unordered_map<std::uint32_t, std::size_t> zebRowsOf(const Graph& graph) {
    std::unordered_map<std::uint32_t, std::size_t> zebRows;
    for (std::size_t row = 0; row < graph.zebLayers.size(); ++row) {
        for (const std::uint32_t id : graph.zebLayers[row].oruLayers) {
            zebRows.emplace(id, row);
        }
    }
    return zebRows;
}

void putOruLayers(const Run& run, CsvRows& rows) {
    for (std::size_t graph = 0; graph < run.graphs.size(); ++graph) {
        const auto zebRows = zebRowsOf(run.graphs[graph]);
        const auto& layers = run.graphs[graph].oruLayers;
        for (std::size_t row = 0; row < layers.size(); ++row) {
            rows.putText(run.runId);
            rows.putNumber(std::uint64_t{graph});
            rows.putNumber(std::uint64_t{row});
            const auto found = zebRows.find(layers[row].id);
            found == zebRows.end() ? rows.putNothing() : rows.putNumber(std::uint64_t{found->second});
            putColumns(rows, &layers[row]);
            rows.endRow();
        }
    }
}

void putFindings(const Run& run, const std::optional<std::size_t>& graph,
                 const std::vector<analysis::Finding>& findings, CsvRows& rows) {
    for (std::size_t row = 0; row < findings.size(); ++row) {
        rows.putText(run.runId);
        graph ? rows.putNumber(std::uint64_t{*graph}) : rows.putNothing();
        rows.putNumber(std::uint64_t{row});
        putColumns(rows, &findings[row]);
        rows.endRow();
    }
}

void putAllFindings(const Run& run, CsvRows& rows) {
    putFindings(run, std::nullopt, run.findings, rows);
    for (std::size_t graph = 0; graph < run.graphs.size(); ++graph) {
        putFindings(run, graph, run.graphs[graph].findings, rows);
    }
}

void putExecutionNames(CsvRows& rows) {
    static const analysis::Executions none;
    fieldsOf(none, [&rows](std::string_view key, const auto& /*column*/) { rows.putName(key); });
}

void putLabelNames(CsvRows& rows) {
    rows.putName("key");
    rows.putName("value");
}

const TableForm& formOf(Table table) {
    static const TableForm forms[] = {
        {{}, putNamesOf<Run>, [](const Run& run, CsvRows& rows) { putRow(run, {}, run, rows); }},
        {{}, putLabelNames, putLabels},
        {{"graph"}, putNamesOf<Graph>, putGraphs},
        {{"graph", "row"}, putExecutionNames, putExecutions},
        {{"row"}, putNamesOf<analysis::Step>, putSteps},
        {{"graph", "row"}, putNamesOf<analysis::ZebLayer>, putZebLayers},
        {{"graph", "row", "zeb_row"}, putNamesOf<analysis::OruLayer>, putOruLayers},
        {{"graph", "row"}, putNamesOf<analysis::Finding>, putAllFindings},
    };
    static_assert(std::size(forms) == std::size(allTables));
    return forms[static_cast<std::size_t>(table)];
}

}  // namespace

void putHead(Table table, CsvRows& rows) {
    rows.putName(idName);
    for (const std::string_view key : formOf(table).keys) {
        rows.putName(key);
    }
    formOf(table).putNames(rows);
    rows.endRow();
}

void putRows(Table table, const Run& run, CsvRows& rows) {
    formOf(table).putRows(run, rows);
}

}  // namespace zeb::forms
