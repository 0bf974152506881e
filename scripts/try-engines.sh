#!/usr/bin/env bash
# Makes a fleet of logs, exports it, asks the engines of examples/fleet the same questions, and holds their answers
# against each other and against sums made from the JSON of the runs:
#
#   scripts/try-engines.sh [--no-install] [BUILD_DIRECTORY [LOGS]]
#
# An engine that is not there is installed, or with --no-install left out; it says which. Ends with 77 when none is there.
set -euo pipefail
install=yes
[ "${1-}" != --no-install ] || { install=no && shift; }
build_directory=${1:-build/release}
logs=${2:-2000}
source "$(dirname "$0")/setup.sh"
build_directory=$(cd "$build_directory" && pwd)
bin=$build_directory/bin

duckdb_home=$PWD/build/duckdb
if [ "$install" = yes ]; then
    packages+=(sqlite3)
    [ -z "$(apt-cache madison clickhouse-server 2>/dev/null)" ] || packages+=(clickhouse-server clickhouse-client)
    command -v npm >/dev/null || packages+=(npm)
    install_packages
    [ -d "$duckdb_home/node_modules/@duckdb/node-api" ] || npm install --silent --no-audit --no-fund --prefix "$duckdb_home" @duckdb/node-api >&2 ||
        echo "DuckDB can't be installed here" >&2
fi
engines=()
if command -v sqlite3 >/dev/null; then engines+=(sqlite); else echo "Left out: SQLite, there is no sqlite3"; fi
if [ -d "$duckdb_home/node_modules/@duckdb/node-api" ]; then engines+=(duckdb); else
    echo "Left out: DuckDB, scripts/try-engines.sh installs it"
fi
if command -v clickhouse-client >/dev/null && [ -x /usr/sbin/clickhouse-server ]; then engines+=(clickhouse); else
    echo "Left out: ClickHouse, there is no clickhouse-client or no /usr/sbin/clickhouse-server; Debian 12 has both"
fi
[ "${#engines[@]}" -gt 0 ] || exit 77

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
timed() {
    local name=$1 begin end
    shift
    begin=$(date +%s%N)
    "$@"
    end=$(date +%s%N)
    printf '%-36s %6d ms\n' "$name" $(((end - begin) / 1000000))
}

# Three days of four versions on three sites; the last version makes a layer slower.
make_logs() {
    local number site
    mkdir "$work/logs"
    for ((number = 0; number < logs; ++number)); do
        local options=(--seed "$number" --drift 4 --executions $((5 + number % 7)) --graphs $((1 + number % 2))
            --epoch-us $((1790812800000000 + number * 3 * 86400000000 / logs)) --backend-version "v2.5$((number % 4))")
        [ $((number % 4)) -ne 3 ] || options+=(--slower-layer conv_pw_5=40)
        [ $((number % 5)) -ne 0 ] || options+=(--async)
        "$bin/write-sample-log" "${options[@]}" "$work/logs/$number.zlog"
        site=$((number % 3))
        printf '%s\tsite=%s\tnote=%s\n' "$work/logs/$number.zlog" "site-$site" "$([ "$site" = 1 ] || echo "a \"note\", $number")"
    done >"$work/list"
    "$bin/write-sample-log" --kind methods "$work/logs/methods.zlog" # without data of the backend
    # A text that is empty, and one that is not there: runs as JSON, which alone can have the first.
    header='{"time_scale":1.0,"epoch_us":0,"steady_us":0,"generator":"g","generator_version":"","backend_version":"v2.50","adapter_updater":false}'
    run='"level":null,"asynchronous":false,"steps":[],"graphs":[],"other_methods":[],"findings":[]}'
    printf '{"schema":"zeb-profile-run/1","run_id":"%032d","log":"empty","header":%s,%s\n' 1 "$header" "$run" >"$work/empty.json"
    printf '{"schema":"zeb-profile-run/1","run_id":"%032d","log":"none","header":null,%s\n' 2 "$run" >"$work/none.json"
    printf '%s\n' "$work/logs/methods.zlog" "$work/empty.json" "$work/none.json" >>"$work/list"
}

# Two batches, which have a tenth of the runs in common; the first is of a version that had a column less.
export_all() {
    head -n $((logs * 6 / 10)) "$work/list" | "$bin/zeb-profile-export" --to "$work/fleet" --files-from - >"$work/batches"
    local graphs
    graphs=$(cat "$work/batches")/graphs.csv
    cut -d, -f 1-3,5- "$graphs" >"$work/graphs" && mv "$work/graphs" "$graphs"
    tail -n +$((logs / 2)) "$work/list" | "$bin/zeb-profile-export" --to "$work/fleet" --files-from - >>"$work/batches"
}

ask_sqlite() { examples/fleet/sqlite.sh "$work/fleet" "$work/fleet.db" >"$work/sqlite.answers"; }
ask_duckdb() {
    cp examples/fleet/{duckdb.mjs,schema.sql,questions.sql} "$work"
    ln -sf "$duckdb_home/node_modules" "$work/node_modules"
    node "$work/duckdb.mjs" "$work/fleet" "$work/parquet" >"$work/duckdb.answers"
}

ask_clickhouse() { examples/fleet/clickhouse.sh "$work/fleet" >"$work/clickhouse.answers"; }

timed "making $logs logs" make_logs
timed "exporting them as two batches" export_all
for engine in "${engines[@]}"; do
    timed "loading and asking $engine" "ask_$engine"
done
du -sh --apparent-size "$work/logs" "$work/fleet" $([ ! -d "$work/parquet" ] || echo "$work/parquet") | sed "s|$work/||"
for log in "$work"/logs/*.zlog; do
    "$bin/zeb-profile-viewer" --json - "$log"
done | cat - "$work"/{empty,none}.json >"$work/runs.json"
python3 scripts/check-answers.py "$work/runs.json" "$work/list" "${engines[@]/#/$work/}"
echo "The answers of ${engines[*]} agree with each other and with the JSON"
