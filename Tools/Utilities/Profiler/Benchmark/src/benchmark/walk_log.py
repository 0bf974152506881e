"""Visits every message and event of a log with the accessors that flatc generates for Python, which have to be
found in PYTHONPATH: what a quick script over a log costs."""

import struct
import sys

from zeb.profiling.schema.LogChunk import LogChunk


def chunks(path):
    with open(path, "rb") as log:
        while len(prefix := log.read(4)) == 4:
            yield log.read(struct.unpack("<I", prefix)[0])


def walk_event(event):
    total = event.Type() + event.Unit() + len(event.Name() or b"")
    if event.ValueSelector() == 2:
        total += event.UintValue()
    return total + sum(walk_event(event.SubEvents(index)) for index in range(event.SubEventsLength()))


def walk_message(message):
    timing = message.Timing()
    total = message.Time().Timestamp() + (timing.EndTime() or 0) + len(message.Text() or b"")
    return total + sum(walk_event(message.Events(index)) for index in range(message.EventsLength()))


total = 0
for data in chunks(sys.argv[1]):
    chunk = LogChunk.GetRootAs(data)
    total += sum(walk_message(chunk.Messages(index)) for index in range(chunk.MessagesLength()))
print(total)
