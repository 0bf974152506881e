// Loads all batches of a directory into DuckDB and answers questions.sql:
//
//     node examples/fleet/duckdb.mjs DIR [PARQUET_DIR]
//
// A run that several batches have is taken from the first. Prints a line of JSON for each question; with PARQUET_DIR it also
// writes the executions there as Parquet, a folder a day. Times go to standard error. It takes npm's @duckdb/node-api.
import { readFileSync } from "node:fs";
import { DuckDBInstance } from "@duckdb/node-api";

const [directory, parquetDirectory] = process.argv.slice(2);
const fileBeside = (name) => readFileSync(new URL(name, import.meta.url), "utf8");
const quoted = (text) => `'${text.replaceAll("'", "''")}'`;

let began = performance.now();
const tellTime = (what) => {
    console.error(`DuckDB ${what}: ${Math.round(performance.now() - began)} ms`);
    began = performance.now();
};

const instance = await DuckDBInstance.create();
const duck = await instance.connect();
const rowsOf = async (statement) => (await duck.runAndReadAll(statement)).getRowObjectsJson();

await duck.run(fileBeside("schema.sql"));
const tables = (await rowsOf("SELECT table_name FROM duckdb_tables()")).map((row) => row.table_name);
tables.sort((one, other) => (other === "runs") - (one === "runs")); // which tell what of the others counts
for (const table of tables) {
    // What stands in quotes is a text, also if it is empty; nothing at all is NULL. Columns go by their names, since versions
    // add some.
    const reading = (types) => `read_csv(${quoted(`${directory}/[0-9]*/${table}.csv`)}, header = true, delim = ',', quote = '"',
        escape = '"', nullstr = '', allow_quoted_nulls = false, union_by_name = true, filename = true, ${types})`;
    const there = (await rowsOf(`DESCRIBE SELECT * FROM ${reading("all_varchar = true")}`)).map((row) => row.column_name);
    const columns = (await rowsOf(`SELECT column_name, data_type FROM duckdb_columns() WHERE table_name = '${table}'`))
        .filter((row) => there.includes(row.column_name));
    const read = reading(`types = {${columns.map((row) => `'${row.column_name}': '${row.data_type}'`).join(", ")}}`);
    if (table === "runs") {
        await duck.run(`CREATE TABLE taken AS SELECT run_id, min(parse_dirpath(filename)) AS batch FROM ${read} GROUP BY run_id`);
    }
    await duck.run(`INSERT INTO ${table} BY NAME SELECT ${columns.map((row) => `t."${row.column_name}"`).join(", ")} FROM ${read} t
        JOIN taken ON taken.run_id = t.run_id AND taken.batch = parse_dirpath(t.filename)`);
}

tellTime("loads the tables");
for (const part of fileBeside("questions.sql").split("--: ").slice(1)) {
    const end = part.indexOf("\n");
    const rows = await rowsOf(part.slice(end));
    console.log(JSON.stringify({ question: part.slice(0, end), rows }));
}

tellTime("answers");
if (parquetDirectory) {
    await duck.run(`COPY (
            SELECT e.*, r.header_backend_version,
                strftime(make_timestamp(CAST(r.header_epoch_us AS BIGINT)), '%Y-%m-%d') AS day
            FROM executions e JOIN runs r ON r.run_id = e.run_id ORDER BY e.run_id, e.graph, e.row)
        TO ${quoted(parquetDirectory)} (FORMAT parquet, COMPRESSION zstd, PARTITION_BY (day), OVERWRITE_OR_IGNORE)`);
    tellTime("writes Parquet");
    await rowsOf(`SELECT day, count(*), avg(duration_us)
        FROM read_parquet(${quoted(`${parquetDirectory}/*/*.parquet`)}, hive_partitioning = true) GROUP BY day`);
    tellTime("asks the Parquet files about each day");
}
