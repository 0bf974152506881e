"""Prints what a trace shows, a line a track, or fails where a viewer would drop or distort something.

usage: check_trace.py TRACE [ARGUMENT...]: with the values of those arguments of the slices, if they have them
"""
import json
import sys

LARGEST_EXACT = 2**53
MAX_TRACKS = 64


def object_of(pairs):
    keys = [key for key, _ in pairs]
    assert len(keys) == len(set(keys)), f'a key twice: {keys}'
    return dict(pairs)


def events_of(text):
    whole = json.loads(text, object_pairs_hook=object_of)
    lines = text.split('\n')
    by_line = [json.loads(line.rstrip(',')) for line in lines[1:-2]]
    assert by_line == whole['traceEvents'], 'not an event a line'
    return whole['traceEvents'], whole['otherData']


def check_event(event, process_names, track_names):
    assert isinstance(event['name'], str) and event['ph'] in ('X', 'M'), event
    track = event['pid'], event['tid']
    if event['ph'] == 'M':
        names, key = {'process_name': (process_names, event['pid']), 'thread_name': (track_names, track)}.get(
            event['name'], (None, None))
        if names is not None:
            assert key not in names, f'named twice: {event}'
            names[key] = event['args']['name']
        return
    assert event['pid'] in process_names and track in track_names, f'not named before: {event}'
    for key in ('ts', 'dur'):
        assert type(event[key]) is int and event[key] >= 0, event
    assert event['ts'] + event['dur'] <= LARGEST_EXACT, event


def check_nesting(slices, is_disjoint):
    """As viewers stack them: by start, and as they come where they start together."""
    stack = []
    for event in sorted(slices, key=lambda each: each['ts']):
        end = event['ts'] + event['dur']
        while stack and stack[-1]['ts'] + stack[-1]['dur'] <= event['ts']:
            stack.pop()
        if stack:
            assert end <= stack[-1]['ts'] + stack[-1]['dur'], f'overlap: {stack[-1]} {event}'
        if event['name'] == 'queue wait':
            assert event['args']['placed'] == 'assumed', event
            assert len(stack) == 1 and stack[0]['ts'] == event['ts'], f'not at the start: {stack} {event}'
        elif is_disjoint:
            assert not stack, f'executions stacked: {stack} {event}'
        stack.append(event)


def main(path, arguments):
    with open(path, encoding='utf-8', newline='') as file:
        events, other = events_of(file.read())
    process_names, track_names, slices = {}, {}, {}
    for event in events:
        check_event(event, process_names, track_names)
        if event['ph'] == 'X':
            slices.setdefault((event['pid'], event['tid']), []).append(event)
    assert set(slices) <= set(track_names)
    groups = {}
    for track, name in track_names.items():
        group = name.split(', track ')[0]
        groups[track[0], group] = groups.get((track[0], group), 0) + 1
    assert all(count <= MAX_TRACKS for count in groups.values()), groups
    for track in sorted(track_names):
        check_nesting(slices.get(track, []), track_names[track].startswith('Executions of '))
        shown = [str(each['args'][key]) for each in slices.get(track, []) for key in arguments if key in each['args']]
        print(f'{process_names[track[0]]} | {track_names[track]}: {len(slices.get(track, []))}',
              *shown)
    measured = sum(1 for track in slices if track[0] == 1 for each in slices[track] if each['name'] != 'queue wait')
    assert measured == other['slices'], f"{measured} slices, {other['slices']} told"
    print(*(f'{key} {other[key]}' for key in other if key.startswith('messages') and other[key] != 0))


main(sys.argv[1], sys.argv[2:])
