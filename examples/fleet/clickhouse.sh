#!/usr/bin/env bash
# Spreads the batches of a directory over two ClickHouse servers, and answers clickhouse.sql through tables that are
# distributed over both:
#
#   examples/fleet/clickhouse.sh DIR
#
# The servers listen on loopback addresses, keep their data in a folder that is taken away, and end with the script, however
# that ends. A run that several batches have is taken from the first. Prints a line of JSON for each question. It takes
# Debian 12's clickhouse-server and clickhouse-client, version 18.16.
set -euo pipefail
directory=$(cd "$1" && pwd)
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
tables=(runs labels graphs executions steps zeb_layers oru_layers findings)
port=9000
network=127.$((RANDOM % 254 + 1)).$((RANDOM % 256)) # so that several scripts may run at once
hosts=("$network.1" "$network.2")

place=$(mktemp -d)
servers=()
stop_all() {
    [ "${#servers[@]}" -eq 0 ] || kill "${servers[@]}" 2>/dev/null || true
    wait || true
    rm -rf "$place"
}
trap stop_all EXIT
trap 'exit 129' HUP
trap 'exit 130' INT
trap 'exit 143' TERM

start_server() {
    local host=$1 home=$place/$1
    mkdir -p "$home/data" "$home/tmp" "$home/formats"
    cat >"$home/config.xml" <<XML
<yandex>
    <logger><level>warning</level><log>$home/log</log><errorlog>$home/errors</errorlog></logger>
    <listen_host>$host</listen_host>
    <tcp_port>$port</tcp_port>
    <path>$home/data/</path>
    <tmp_path>$home/tmp/</tmp_path>
    <format_schema_path>$home/formats/</format_schema_path>
    <users_config>$home/users.xml</users_config>
    <default_profile>default</default_profile>
    <default_database>default</default_database>
    <mark_cache_size>67108864</mark_cache_size>
    <remote_servers><fleet>
        <shard><replica><host>${hosts[0]}</host><port>$port</port></replica></shard>
        <shard><replica><host>${hosts[1]}</host><port>$port</port></replica></shard>
    </fleet></remote_servers>
</yandex>
XML
    cat >"$home/users.xml" <<XML
<yandex>
    <profiles><default>
        <max_memory_usage>4000000000</max_memory_usage>
        <distributed_product_mode>local</distributed_product_mode>
        <join_use_nulls>1</join_use_nulls>
    </default></profiles>
    <users><default>
        <password></password>
        <networks><ip>127.0.0.0/8</ip></networks>
        <profile>default</profile>
        <quota>default</quota>
    </default></users>
    <quotas><default></default></quotas>
</yandex>
XML
    # A server whose script is gone goes too.
    setpriv --pdeathsig KILL /usr/sbin/clickhouse-server --config-file="$home/config.xml" >"$home/output" 2>&1 &
    servers+=($!)
}

sql() { # on a host
    clickhouse-client --host "$1" --port "$port" --multiquery --query "$2"
}

await_server() {
    for ((attempt = 0; attempt < 300; ++attempt)); do
        sql "$1" "SELECT 1" >/dev/null 2>&1 && return
        sleep 0.1
    done
    echo "the server on $1 does not answer: $(tail -n 3 "$place/$1/output" "$place/$1/errors" 2>/dev/null)" >&2
    exit 1
}

# Each table as it is: "name:TYPE name:TYPE ...".
columns_of() {
    tr '\n' ' ' <"$here/schema.sql" | grep -o "EXISTS $1 ([^)]*)" | sed 's/^[^(]*(//; s/)$//; s/"//g' | tr ',' '\n' |
        sed 's/^ *//; s/ *$//; s/ /:/' | paste -sd' '
}

# All may be nothing but the id of the run. A server has rows of its own; the name without "own" has those of both.
statements_of() {
    local table=$1 types="" column
    for column in ${columns[$table]}; do
        local name=${column%%:*} type
        case ${column#*:} in
            TEXT) type=String ;;
            DOUBLE) type=Float64 ;;
            BOOLEAN) type=UInt8 ;;
            *) type=UInt64 ;;
        esac
        [ "$name" = run_id ] || type="Nullable($type)"
        types+=", \`$name\` $type"
    done
    echo "CREATE TABLE own_$table (${types#, }) ENGINE = MergeTree ORDER BY run_id;"
    echo "CREATE TABLE $table AS own_$table ENGINE = Distributed(fleet, default, own_$table);"
}

# What is inserted from a table with such a head: columns go by their names, since versions add some. An import has empty texts
# for what is nothing. Numbers can't be empty; among texts, those of the header are nothing where the header is, and the two
# named below are never empty.
insert_of() {
    local table=$1 head=$2 column names="" values=""
    for column in ${columns[$table]}; do
        local name=\`${column%%:*}\` value
        [[ ,$head, == *,${column%%:*},* ]] || continue
        case $column in
            level:* | part_of:*) value="nullIf($name, '')" ;;
            header*:TEXT) value="if(header_epoch_us = '', NULL, $name)" ;;
            *:TEXT) value=$name ;;
            *:BOOLEAN) value="if($name = '', NULL, toUInt8($name = 'true'))" ;;
            *:DOUBLE) value="if($name = '', NULL, toFloat64OrZero($name))" ;;
            *) value="if($name = '', NULL, toUInt64OrZero($name))" ;;
        esac
        names+=", $name"
        values+=", $value"
    done
    echo "INSERT INTO own_$table (${names#, }) SELECT ${values#, } FROM new_$table"
}

load_batch() {
    local batch=$1 host=$2 table head taken="" drop="DROP TABLE fresh;"
    for table in "${tables[@]}"; do
        [ -f "$batch/$table.csv" ] || continue
        head=$(head -n 1 "$batch/$table.csv" | tr -cd 'a-z0-9_,')
        sql "$host" "CREATE TABLE new_$table (\`${head//,/\` String, \`}\` String) ENGINE = Memory"
        clickhouse-client --host "$host" --port "$port" --query "INSERT INTO new_$table FORMAT CSVWithNames" <"$batch/$table.csv"
        taken+="$(insert_of "$table" "$head") WHERE run_id IN (SELECT run_id FROM fresh);"
        drop+="DROP TABLE new_$table;"
    done
    taken="CREATE TABLE fresh ENGINE = Memory AS SELECT run_id FROM new_runs WHERE run_id GLOBAL NOT IN (SELECT run_id FROM runs);$taken"
    sql "$host" "$taken$drop"
}

for host in "${hosts[@]}"; do
    start_server "$host"
done
declare -A columns
create=
for table in "${tables[@]}"; do
    columns[$table]=$(columns_of "$table")
    create+=$(statements_of "$table")
done
for host in "${hosts[@]}"; do
    await_server "$host"
    sql "$host" "$create"
done
turn=0
for batch in "$directory"/[0-9]*/; do
    [ -f "$batch/runs.csv" ] || { echo "$batch has no runs.csv, and is left out" >&2 && continue; }
    load_batch "$batch" "${hosts[$((turn++ % 2))]}"
done

question=
statement=
ask() {
    local rows
    [ -n "$question" ] || return 0
    rows=$(clickhouse-client --host "${hosts[0]}" --port "$port" --output_format_json_quote_64bit_integers 0 \
        --query "${statement%;*} FORMAT JSONEachRow" | paste -sd,)
    printf '{"question": "%s", "rows": [%s]}\n' "$question" "$rows"
}
while IFS= read -r line; do
    case $line in
        "--: "*) ask && question=${line#--: } && statement= ;;
        --*) ;;
        *) statement+=$line$'\n' ;;
    esac
done <"$here/clickhouse.sql"
ask
