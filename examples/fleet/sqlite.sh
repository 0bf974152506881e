#!/usr/bin/env bash
# Loads the batches of a directory that a SQLite database does not have yet, and answers questions.sql:
#
#   examples/fleet/sqlite.sh DIR DATABASE
#
# A run that several batches have is taken from the first. A version that adds columns takes a new database. Prints a line of
# JSON for each question. It takes Debian's sqlite3.
set -euo pipefail
directory=$(cd "$1" && pwd)
database=$2
here=$(dirname "${BASH_SOURCE[0]}")
tables=(runs labels graphs executions steps zeb_layers oru_layers findings)

sql() { sqlite3 -bail "$database" "$@"; }

sql <"$here/schema.sql"
sql "CREATE TABLE IF NOT EXISTS batches (name TEXT PRIMARY KEY);
     CREATE UNIQUE INDEX IF NOT EXISTS runs_by_id ON runs (run_id);"

# What is inserted from a table with such a head: columns go by their names, since versions add some. An import has empty
# texts for what is nothing. Numbers can't be empty; among texts, those of the header are nothing where the header is, and the
# two named below are never empty.
insert_of() {
    sql "SELECT 'INSERT INTO main.$1 (' || group_concat('\"' || name || '\"') || ') SELECT ' || group_concat(CASE
             WHEN name IN ('level', 'part_of') THEN 'nullif(' || name || ', '''')'
             WHEN name LIKE 'header%' AND type = 'TEXT' THEN 'iif(header_epoch_us = '''', NULL, ' || name || ')'
             WHEN type = 'BOOLEAN' THEN 'CASE ' || name || ' WHEN ''true'' THEN 1 WHEN ''false'' THEN 0 END'
             WHEN type = 'TEXT' THEN '\"' || name || '\"'
             ELSE 'nullif(' || name || ', '''')' END) || ' FROM temp.new_$1'
         FROM pragma_table_info('$1') WHERE instr(',$2,', ',' || name || ',')"
}
declare -A inserts

for batch in "$directory"/[0-9]*/; do
    batch=$(basename "$batch")
    [ -f "$directory/$batch/runs.csv" ] || { echo "$batch has no runs.csv, and is left out" >&2 && continue; }
    [ -z "$(sql "SELECT 1 FROM batches WHERE name = '$batch'")" ] || continue
    {
        echo "BEGIN;"
        for table in "${tables[@]}"; do
            [ -f "$directory/$batch/$table.csv" ] || continue
            echo ".import --csv --schema temp '$directory/$batch/$table.csv' new_$table"
        done
        echo "DELETE FROM temp.new_runs WHERE run_id IN (SELECT run_id FROM main.runs);"
        for table in "${tables[@]}"; do
            [ -f "$directory/$batch/$table.csv" ] || continue
            head=$(head -n 1 "$directory/$batch/$table.csv" | tr -cd 'a-z0-9_,')
            [ -n "${inserts[$table $head]-}" ] || inserts[$table $head]=$(insert_of "$table" "$head")
            echo "${inserts[$table $head]} WHERE run_id IN (SELECT run_id FROM temp.new_runs);"
        done
        echo "INSERT INTO batches VALUES ('$batch');"
        echo "COMMIT;"
    } | sql
done

sql "CREATE INDEX IF NOT EXISTS labels_by_run ON labels (run_id);
     CREATE INDEX IF NOT EXISTS graphs_by_run ON graphs (run_id);
     CREATE INDEX IF NOT EXISTS zeb_layers_by_run ON zeb_layers (run_id, graph);"
question=
statement=
ask() {
    local rows
    [ -n "$question" ] || return 0
    rows=$(sqlite3 -bail -json "$database" "$statement")
    printf '{"question": "%s", "rows": %s}\n' "$question" "${rows:-[]}"
}
while IFS= read -r line; do
    case $line in
        "--: "*) ask && question=${line#--: } && statement= ;;
        *) statement+=$line$'\n' ;;
    esac
done <"$here/questions.sql"
ask
