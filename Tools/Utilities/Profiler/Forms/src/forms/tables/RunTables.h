#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "analysis/Run.h"
#include "forms/tables/CsvRows.h"

/// Runs as rows of flat tables. Their columns are the members that a run's JSON has, a member of a member
/// under both names, behind the keys that join the tables. docs/tables.md tells each.
namespace zeb::forms {

enum class Table : std::uint8_t { runs, labels, graphs, executions, steps, zebLayers, oruLayers, findings };

struct NamedTable {
    Table table;
    std::string_view name;
};
/// All of them, each at the position of its number.
inline constexpr NamedTable allTables[] = {
    {Table::runs, "runs"},
    {Table::labels, "labels"},
    {Table::graphs, "graphs"},
    {Table::executions, "executions"},
    {Table::steps, "steps"},
    {Table::zebLayers, "zeb_layers"},
    {Table::oruLayers, "oru_layers"},
    {Table::findings, "findings"},
};

/// Puts the names of a table's columns, as a row.
void putHead(Table table, CsvRows& rows);

/// Puts the rows that a run has in a table.
void putRows(Table table, const analysis::Run& run, CsvRows& rows);

}  // namespace zeb::forms
