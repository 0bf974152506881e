"""Exports logs and holds each value of each table against the JSON of the viewer, and the columns against the page.

    check_tables.py VIEWER EXPORT PAGE SCHEMA LOG...

SCHEMA has the types of the columns for engines. Prints what differs.
"""
import json
import re
import subprocess
import sys
import tempfile
from pathlib import Path

viewer, export, page, schema, *logs = sys.argv[1:]
faults = []

VALUE = re.compile(r'"((?:[^"]|"")*)"|([^",\r\n]*)')


def records(text):
    """The records of RFC 4180 by that RFC's grammar; a value is a text, or None where there is nothing at all."""
    at = 0
    while at < len(text):
        record = []
        while True:
            found = VALUE.match(text, at)
            quoted, plain = found.groups()
            record.append(quoted.replace('""', '"') if quoted is not None else plain or None)
            at = found.end()
            if text[at] == ",":
                at += 1
                continue
            assert text[at : at + 2] == "\r\n", f"no end of a record at {text[at:at + 20]!r}"
            at += 2
            break
        yield record


def plain(value):
    """A value of the JSON as the table has it."""
    if value is None or isinstance(value, str):
        return value
    return {True: "true", False: "false"}[value] if isinstance(value, bool) else json.dumps(value)


def same(cell, value):
    if isinstance(value, float) and cell is not None:
        return float(cell) == value
    return cell == plain(value)


def columns_of(value, prefix=""):
    """The single values of an object and of the objects in it."""
    columns = {}
    for key, member in value.items():
        if key == "inference" or isinstance(member, list):
            continue
        if isinstance(member, dict):
            columns |= columns_of(member, prefix + key + "_")
        else:
            columns[prefix + key] = member
    return columns


def expected(run):
    """The rows of all tables that the JSON of a run tells, without their keys where those are its own."""
    graphs = list(enumerate(run["graphs"]))
    tables = {
        "runs": [columns_of({key: run[key] for key in ("run_id", "log", "header", "level", "asynchronous", "init_us")})],
        "labels": [{"key": "site", "value": "lab"}],
        "graphs": [{"graph": at} | columns_of(graph) for at, graph in graphs],
        "executions": [
            {"graph": at, "row": row} | {key: column[row] for key, column in graph["executions"].items()}
            for at, graph in graphs
            for row in range(len(graph["executions"]["duration_us"]))
        ],
        "steps": [{"row": row} | columns_of(step) for row, step in enumerate(run["steps"])],
        "findings": [{"graph": None, "row": row} | columns_of(finding) for row, finding in enumerate(run["findings"])],
    }
    for name in ("zeb_layers", "oru_layers", "findings"):
        tables.setdefault(name, []).extend(
            {"graph": at, "row": row} | columns_of(element)
            for at, graph in graphs
            for row, element in enumerate(graph[name])
        )
    zeb_rows = {
        (at, layer): row
        for at, graph in graphs
        for row, zeb in reversed(list(enumerate(graph["zeb_layers"])))
        for layer in zeb["oru_layers"]
    }
    for row in tables["oru_layers"]:
        row["zeb_row"] = zeb_rows.get((row["graph"], row["id"]))
    for rows in tables.values():
        for row in rows:
            row["run_id"] = run["run_id"]
    return tables


def check_table(name, text, rows):
    head, *cells = records(text)
    if len(cells) != len(rows):
        faults.append(f"{name}: {len(cells)} rows in place of {len(rows)}")
    for cell, row in zip(cells, rows):
        told = dict(zip(head, cell))
        if len(cell) != len(head):
            faults.append(f"{name}: a row of {len(cell)} columns")
        # What is missing as a whole has no members in the JSON.
        missing = {column for column in told if column not in row and any(column.startswith(key + "_") for key in row)}
        if set(told) - missing != {key for key in row if key in told} or set(row) - set(told) - {"header", "breakdown"}:
            faults.append(f"{name}: the columns {head}, the JSON has {sorted(row)}")
            return
        for column, value in told.items():
            if not same(value, row.get(column)):
                faults.append(f"{name}: {column} is {value!r}, the JSON has {row.get(column)!r}")
    described = re.search(rf"^## {name}\.csv$(.*?)(?=^## |\Z)", Path(page).read_text(), re.M | re.S)
    columns = re.findall(r"^\| `(\w+)` \|", described.group(1), re.M) if described else []
    if columns != head:
        faults.append(f"{name}: the page has the columns {columns}, the table {head}")
    typed = re.search(rf"EXISTS {name} \((.*?)\);", Path(schema).read_text(), re.S)
    columns = re.findall(r"(\w+)\"? [A-Z]+", typed.group(1)) if typed else []
    if columns != head:
        faults.append(f"{name}: the schema has the columns {columns}, the table {head}")


with tempfile.TemporaryDirectory() as place:
    command = [export, "--to", place, "--label", "site=lab", *logs]
    batch = Path(subprocess.run(command, check=True, capture_output=True, text=True).stdout.strip())
    everything = {}
    for log in logs:
        line = subprocess.run([viewer, "--json", "-", log], check=True, capture_output=True).stdout
        for name, rows in expected(json.loads(line)).items():
            everything.setdefault(name, []).extend(rows)
    files = sorted(path.stem for path in batch.iterdir())
    if files != sorted(everything):
        faults.append(f"the tables are {files}")
    for name, rows in everything.items():
        check_table(name, (batch / (name + ".csv")).read_bytes().decode(), rows)

print("\n".join(faults[:20]))
sys.exit(1 if faults else 0)
