"""Holds the answers of engines against those worked out from the JSON of the runs.

    check-answers.py RUNS LIST ENGINE...

RUNS has an object a line, LIST the labels of their logs, and ENGINE.answers a line of JSON for each question of
examples/fleet/questions.sql. Prints what differs by more than 1e-9.
"""
import json
import sys
from collections import defaultdict

runs_file, list_file, *engines = sys.argv[1:]
runs = [json.loads(line) for line in open(runs_file)]
sites = {}
for line in open(list_file):
    path, *labels = line.rstrip("\n").split("\t")
    sites[path] = dict(label.split("=", 1) for label in labels).get("site")


def mean(values):
    return sum(values) / len(values)


def quantile(values, share):
    """Between the two nearest values in proportion."""
    values = sorted(values)
    position = share * (len(values) - 1)
    lower = int(position)
    upper = min(lower + 1, len(values) - 1)
    return values[lower] + (position - lower) * (values[upper] - values[lower])


def version(run):
    return run["header"]["backend_version"] if run["header"] else None


medians = defaultdict(list)
layers = defaultdict(lambda: defaultdict(list))
durations = defaultdict(list)
rules = defaultdict(set)
dsp = defaultdict(int)
hours = defaultdict(list)
for run in runs:
    for finding in run["findings"] + [finding for graph in run["graphs"] for finding in graph["findings"]]:
        rules[finding["rule"]].add(run["run_id"])
    for graph in run["graphs"]:
        medians[version(run), graph["name"]].append(graph["spread"]["median_us"])
        for layer in graph["zeb_layers"]:
            layers[graph["name"], layer["name"]][version(run)].append(layer["dsp_us"] + layer["krel_us"])
        for layer in graph["oru_layers"]:
            if not layer["offloaded"]:
                dsp[layer["type_name"]] += layer["average_us"]
        columns = graph["executions"]
        for start, duration in zip(columns["start_us"], columns["duration_us"]):
            if sites[run["log"]] and duration:
                durations[sites[run["log"]]].append(duration)
            if run["header"] and start is not None:
                moment = run["header"]["epoch_us"] + start - run["header"]["steady_us"]
                hours[moment % 86_400_000_000 // 3_600_000_000].append(duration)

versions = sorted({version(run) for run in runs if run["level"]})
first, last = versions[0], versions[-1]
grown = [
    [*key, mean(times[first]), mean(times[last]), mean(times[last]) - mean(times[first])]
    for key, times in layers.items()
    if times[first] and times[last] and mean(times[last]) > mean(times[first])
]
expected = [
    sorted(([*key, len(values), mean(values)] for key, values in medians.items()), key=lambda row: (-row[3], row[:2]))[:10],
    sorted(grown, key=lambda row: (-row[4], row[:2]))[:10],
    [[site, quantile(values, 0.9)] for site, values in sorted(durations.items())],
    [[rule, len(found)] for rule, found in sorted(rules.items())],
    sorted(([name, 100 * us / sum(dsp.values())] for name, us in dsp.items()), key=lambda row: (-row[1], row[0])),
    [
        [hour, len(values), mean([value for value in values if value is not None])]
        for hour, values in sorted(hours.items())
    ],
    [[len(runs), sum(not run["header"] for run in runs), sum(run["header"]["generator_version"] == "" for run in runs if run["header"])]],
]


def number(value):
    """Engines write large numbers as texts."""
    try:
        return float(value)
    except (TypeError, ValueError):
        return value


def differ(one, other):
    one, other = number(one), number(other)
    if isinstance(one, float) and isinstance(other, float):
        return abs(one - other) > 1e-9 * max(abs(one), abs(other), 1)
    return one != other


faults = []
for engine in engines:
    text = open(engine + ".answers").read()
    answers, at = [], 0
    while text[at:].strip():
        at += len(text[at:]) - len(text[at:].lstrip())
        answer, at = json.JSONDecoder().raw_decode(text, at)
        answers.append(answer)
    if len(answers) != len(expected):
        faults.append(f"{engine} has {len(answers)} answers")
    for answer, wanted in zip(answers, expected):
        rows = [list(row.values()) for row in answer["rows"]]
        cells = [(one, other) for row, want in zip(rows, wanted) for one, other in zip(row, want)]
        if [len(row) for row in rows] != [len(row) for row in wanted] or any(differ(*cell) for cell in cells):
            faults.append(f"{engine}: {answer['question']}: {rows} in place of {wanted}")
print("\n".join(faults))
sys.exit(1 if faults else 0)
