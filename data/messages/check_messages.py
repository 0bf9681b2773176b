#!/usr/bin/env python3
"""Checks the message sources given as arguments and prints what is wrong, one line each with file and line.

Every number of set 2 stands in them exactly once; a text keeps to the syntax of arguments and column markers, and to
the room that message boxes and rows have; no word runs into the next column; rows of one kind have the same columns;
an underline pattern marks exactly the headings of its row, and the rows below stand under them. The exit status is 0
when nothing is wrong.
"""
import re
import sys

FIRST, LAST = 1, 1487
MAX_TEXT = 1000  # a message box formats into 1024 bytes, a row holds 1000
USAGE, MAX_USAGE = 611, 4095  # printed as it is
MAX_ARGUMENT = 11
INDENT = 8  # columns by which a level of a list is moved to the right

# Rows of one kind, whatever state they tell. The first has all columns; the others may leave some out.
SAME_COLUMNS = [
    [810, 811, 812, 813, 858],
    [814, *range(815, 822), *range(835, 840), 388, 822],
    [823, 824, 826, 827],
    [860, 853, 855, 856, 857, 861, 869],
    [843, 844, 841, 842],
    [848, 849, 850, 851],
    [1219, 1220, 1221, 1222, 1223, 1227],
    [651, 650],
    [1413, 1414, 1415],
]

# A heading, its underline, a row below it, and how many levels deeper that row is.
HEADINGS = [
    (829, 830, 834, 1),
    (832, 833, 840, 1),
    (846, 847, 852, 1),
    (972, 973, 970, 1),
    (76, 77, 79, 0),
    (287, 288, 289, 0),
    (1167, 1168, 1169, 0),
    (1303, 1304, 1305, 0),
    (1306, 1307, 1310, 0),
    (1329, 1330, 1331, 0),
    (1433, 1434, 1435, 0),
    (1440, 1434, 1435, 0),
    (1436, 1437, 1438, 0),
    (1441, 1437, 1438, 0),
]


def read(path, problems):
    """Yields (line, set, number, text) for the messages of a source file."""
    with open(path, encoding="utf-8") as source:
        lines = source.read().split("\n")
    current, i = None, 0
    while i < len(lines):
        first, line = i + 1, lines[i]
        while line.endswith("\\") and i + 1 < len(lines):
            i += 1
            line = line[:-1] + lines[i]
        i += 1
        if match := re.fullmatch(r"\$set (\d+)", line):
            current = int(match[1])
        elif match := re.fullmatch(r'(\d+) "((?:[^"\\]|\\.)*)"', line):
            text = re.sub(r"\\(.)", lambda m: "\n" if m[1] == "n" else m[1], match[2])
            yield first, current, int(match[1]), text
        elif line and line != '$quote "' and not line.startswith("$ "):
            problems.append(f"{path}:{first}: neither a message nor a comment, $set or $quote")


def segments(text):
    """The words of a row or pattern as (column, words), arguments left out."""
    words = re.sub(r"%(\d+)%?", "", re.sub(r"%t(\d+)%?", "\t\\1\t", text)).split("\t")
    return [(int(column), part) for column, part in zip(["0", *words[1::2]], words[0::2])]


def columns(text):
    return [column for column, _ in segments(text)][1:]


def spans(text):
    """Where the words of a heading or the dashes of a pattern begin and end."""
    return {(column, column + len(part)) for column, part in segments(text) if part}


def text_problems(number, text):
    limit = MAX_USAGE if number == USAGE else MAX_TEXT
    if len(text.encode()) > limit:
        yield f"longer than {limit} bytes"
    if text.endswith(" "):
        yield "ends with a blank"
    at = 0
    while (at := text.find("%", at)) >= 0:
        match = re.compile(r"%t\d+%?|%%|%(\d+)%?").match(text, at)
        if not match:
            yield f"a percent sign that means nothing at {text[at:at + 8]!r}"
            return
        at = match.end()
        if match[1] and not 1 <= int(match[1]) <= MAX_ARGUMENT:
            yield f"refers to argument {match[1]}"
        # A percent sign behind an argument belongs to it, so the marker would lose its own.
        if match[1] and re.compile(r"t\d").match(text, at) and match[0].endswith("%"):
            yield f"needs %{match[1]}% before its column marker"
    row = segments(text)
    for (column, part), (following, _) in zip(row, row[1:]):
        if following <= column:
            yield f"column {following} does not follow column {column}"
        elif part and column + len(part.rstrip()) >= following:
            yield f"{part!r} runs into column {following}"


def check(paths):
    problems, texts, places = [], {}, {}
    for path in paths:
        for line, current, number, text in read(path, problems):
            where, key = f"{path}:{line}: {number}", (current, number)
            if current is None:
                problems.append(f"{where} stands before any $set")
            if key in places:
                problems.append(f"{where} is also at {places[key]}")
            if current == 2 and not FIRST <= number <= LAST:
                problems.append(f"{where} is not between {FIRST} and {LAST}")
            problems += [f"{where}: {problem}" for problem in text_problems(number, text)]
            places[key], texts[key] = where, text
    if missing := [n for n in range(FIRST, LAST + 1) if (2, n) not in texts]:
        problems.append(f"missing from set 2: {', '.join(map(str, missing))}")
        return problems
    for full, *others in SAME_COLUMNS:
        allowed = columns(texts[2, full])
        for n in others:
            own = columns(texts[2, n])
            if not set(own) <= set(allowed) or own[-1:] != allowed[-1:]:
                problems.append(f"{places[2, n]}: columns {own}, but {full} has {allowed}")
    for heading, underline, row, deeper in HEADINGS:
        marked = spans(texts[2, underline])
        if not marked or not marked <= spans(texts[2, heading]) or re.sub(r"%t\d+%?|-", "", texts[2, underline]):
            problems.append(f"{places[2, underline]}: does not underline the headings of {heading}")
        below = {0, *(column + INDENT * deeper for column in columns(texts[2, row]))}
        if not {column for column, _ in marked} <= below:
            problems.append(f"{places[2, row]}: does not stand under the headings of {heading}")
    return problems


if __name__ == "__main__":
    found = check(sys.argv[1:])
    for problem in found:
        print(problem)
    sys.exit(1 if found else 0)
