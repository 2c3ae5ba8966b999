"""Tables of figures: joined over word sizes, and written down."""

import statistics


def number(value):
    """As people read it: three digits that count."""
    size = abs(value)
    if size >= 1000:
        return f"{value:,.0f}"
    if size >= 100:
        return f"{value:.0f}"
    return f"{value:.1f}" if size >= 10 else f"{value:.2f}"


def spread(rounds):
    """Median, and in brackets the least and the most."""
    return f"{number(statistics.median(rounds))} ({number(min(rounds))} – {number(max(rounds))})"


def join(runs):
    """One table for each id, with what each word size gave: rows -> sides -> bits -> rounds."""
    joined = {}
    for run in runs:
        for table in run["tables"]:
            whole = joined.setdefault(table["id"], {**table, "rows": {}, "bits": []})
            if run["bits"] not in whole["bits"]:
                whole["bits"].append(run["bits"])
            for row in table["rows"]:
                sides = whole["rows"].setdefault(row["name"], {"x": row["x"], "sides": {}})["sides"]
                for side in row["sides"]:
                    sides.setdefault(side["name"], {})[run["bits"]] = side["rounds"]
    return list(joined.values())


def floor_of(sides, side):
    """The name of what a side is compared with, if there is one: that of its kind, or the first."""
    kind = side.partition(", ")[2]
    floors = [name for name in sides if name.startswith("floor")]
    return next((name for name in floors if kind and name == f"floor, {kind}"),
                floors[0] if floors else None)


def ratio(sides, side, bits):
    """How many times the floor, round by round, in the middle; nothing for the floor itself."""
    floor = floor_of(sides, side)
    if floor is None or side.startswith("floor") or bits not in sides[floor] or bits not in sides[side]:
        return ""
    each = [a / b for a, b in zip(sides[side][bits], sides[floor][bits]) if b]
    return f"{statistics.median(each):.2f}" if each else ""


def cells(table):
    """Heading and rows, all of them texts."""
    heading = [table["along"] or "", ""]
    for bits in table["bits"]:
        heading += [f"{bits}-bit, {table['unit']}", "to the floor"]
    rows = []
    for name, row in table["rows"].items():
        shown = name
        for side, by_bits in row["sides"].items():
            line = [shown, side]
            for bits in table["bits"]:
                line += [spread(by_bits[bits]) if bits in by_bits else "",
                         ratio(row["sides"], side, bits)]
            rows.append(line)
            shown = ""
    used = [i for i in range(len(heading)) if i < 2 or any(row[i] for row in rows)]
    return [heading[i] for i in used], [[row[i] for i in used] for row in rows]


def as_text(table):
    """Lines for a terminal."""
    heading, rows = cells(table)
    widths = [max(len(line[i]) for line in [heading, *rows]) for i in range(len(heading))]

    def line(texts):
        left = [text.ljust(width) for text, width in zip(texts[:2], widths)]
        right = [text.rjust(width) for text, width in zip(texts[2:], widths[2:])]
        return "  ".join(left + right).rstrip()

    return [table["title"], line(heading), *[line(row) for row in rows]]


def as_markdown(table):
    """Lines for a document."""
    heading, rows = cells(table)
    rule = ["---"] * 2 + ["--:"] * (len(heading) - 2)
    return ["| " + " | ".join(line) + " |" for line in [heading, rule, *rows]]


def aims(runs):
    """All aims, those of one name beside each other."""
    return [aim for run in runs for aim in run["aims"]]


def aim_line(aim):
    """As the benchmarks print it."""
    unit = f" {aim['unit']}" if aim["unit"] else ""
    return (f"aim: {aim['name']}: {number(aim['figure'])}{unit} ({aim['limit']} "
            f"{aim['value']:g}{unit}): {'met' if aim['met'] else 'missed'}")


def aims_as_markdown(runs):
    """A table of the aims."""
    lines = ["| aim | limit | figure | |", "|---|--:|--:|---|"]
    for aim in aims(runs):
        unit = f" {aim['unit']}" if aim["unit"] else ""
        lines.append(f"| {aim['name']} | {aim['limit']} {aim['value']:g}{unit} | "
                     f"{spread(aim['rounds'])}{unit} | {'met' if aim['met'] else '**missed**'} |")
    return lines
