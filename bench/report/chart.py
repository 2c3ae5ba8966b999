"""Charts of tables: bars for rows beside each other, lines for what grows."""

import math
import statistics
from xml.sax.saxutils import escape

import tables

COLOURS = ["#1b6ca8", "#e07b39", "#4a9c5d", "#8e5ea2", "#7f7f7f", "#c94f6d"]
FLOORS = ["#9aa5b1", "#5f6b7a", "#c9ced4"]
FONT = 'font-family="sans-serif"'
PANEL = 420
LEFT = 20


class Drawing:
    """An SVG in the making."""

    def __init__(self, width, height):
        self.width, self.height, self.parts = width, height, []

    def text(self, x, y, text, size=12, anchor="start", colour="#222"):
        self.parts.append(f'<text x="{x:.1f}" y="{y:.1f}" font-size="{size}" {FONT} fill="{colour}" '
                          f'text-anchor="{anchor}">{escape(text)}</text>')

    def line(self, x1, y1, x2, y2, colour="#ddd", width=1.0):
        self.parts.append(f'<line x1="{x1:.1f}" y1="{y1:.1f}" x2="{x2:.1f}" y2="{y2:.1f}" '
                          f'stroke="{colour}" stroke-width="{width}"/>')

    def box(self, x, y, width, height, colour):
        self.parts.append(f'<rect x="{x:.1f}" y="{y:.1f}" width="{max(width, 0.5):.1f}" '
                          f'height="{height:.1f}" fill="{colour}"/>')

    def dot(self, x, y, colour):
        self.parts.append(f'<circle cx="{x:.1f}" cy="{y:.1f}" r="3" fill="{colour}"/>')

    def save(self, path):
        with open(path, "w", encoding="utf-8") as file:
            file.write(f'<svg xmlns="http://www.w3.org/2000/svg" width="{self.width}" '
                       f'height="{self.height}" viewBox="0 0 {self.width} {self.height}">\n'
                       f'<rect width="100%" height="100%" fill="#ffffff"/>\n'
                       + "\n".join(self.parts) + "\n</svg>\n")


def sides_of(table):
    """The names of all sides, in the order in which they come."""
    names = []
    for row in table["rows"].values():
        names += [name for name in row["sides"] if name not in names]
    return names


def colours_of(table):
    """What we do in colours, what it is compared with in grey shades."""
    colours = {}
    left = {True: list(FLOORS), False: list(COLOURS)}
    for name in sides_of(table):
        shades = left[name.startswith("floor")]
        colours[name] = shades[0]
        shades.append(shades.pop(0))
    return colours


def ticks(low, high):
    """Round numbers between two, each ten times the one before."""
    return [10.0 ** power for power in range(math.floor(math.log10(low)),
                                             math.ceil(math.log10(high)) + 1)]


def legend(drawing, table, colours, y):
    """Which colour is what. Returns where it ends."""
    x = LEFT
    for name, colour in colours.items():
        width = 28 + 6.6 * len(name)
        if x + width > drawing.width:
            x, y = LEFT, y + 18
        drawing.box(x, y - 9, 10, 10, colour)
        drawing.text(x + 15, y, name)
        x += width
    return y + 14


def bar_panel(drawing, table, bits, colours, x, y, most):
    """Bars of one word size; a thin line from the least round to the most."""
    drawing.text(x, y, f"{bits}-bit, {table['unit']}", 12, colour="#555")
    y += 10
    room = PANEL - 90
    for name, row in table["rows"].items():
        y += 16
        drawing.text(x, y, name, 11)
        y += 5
        for side, by_bits in row["sides"].items():
            if bits not in by_bits:
                continue
            rounds = by_bits[bits]
            middle = statistics.median(rounds)
            drawing.box(x, y, middle / most * room, 11, colours[side])
            drawing.line(x + min(rounds) / most * room, y + 5.5, x + max(rounds) / most * room,
                         y + 5.5, "#333")
            end = max(middle, max(rounds)) / most * room
            drawing.text(x + end + 5, y + 10, tables.number(middle), 10)
            y += 14
    return y


def draw_bars(table, path):
    """A panel for each word size."""
    colours = colours_of(table)
    lines = sum(21 + 14 * len(row["sides"]) for row in table["rows"].values())
    drawing = Drawing(LEFT * 2 + PANEL * len(table["bits"]), 90 + 18 * len(colours) + lines)
    drawing.text(LEFT, 24, f"{table['title']}", 15)
    top = legend(drawing, table, colours, 46) + 10
    rounds = [value for row in table["rows"].values() for by_bits in row["sides"].values()
              for values in by_bits.values() for value in values]
    most = max([*rounds, 1e-9])
    ends = [bar_panel(drawing, table, bits, colours, LEFT + i * PANEL, top, most)
            for i, bits in enumerate(table["bits"])]
    drawing.height = int(max(ends)) + 16
    drawing.save(path)


def line_panel(drawing, table, bits, colours, x, y, scale):
    """Lines of one word size; both scales are logarithmic."""
    (x_low, x_high, y_low, y_high) = scale
    width, height = PANEL - 80, 230

    def place(value, low, high, size):
        return (math.log10(value) - math.log10(low)) / (math.log10(high) - math.log10(low)) * size

    drawing.text(x + 45, y, f"{bits}-bit, {table['unit']}", 12, colour="#555")
    bottom = y + 12 + height
    for tick in ticks(y_low, y_high):
        at = bottom - place(tick, y_low, y_high, height)
        drawing.line(x + 45, at, x + 45 + width, at)
        drawing.text(x + 40, at + 4, f"{tick:,.10g}", 10, "end")
    for row in table["rows"].values():
        at = x + 45 + place(row["x"], x_low, x_high, width)
        drawing.line(at, bottom, at, bottom + 4, "#888")
        drawing.text(at, bottom + 16, f"{row['x']:,.0f}", 10, "middle")
    drawing.text(x + 45 + width / 2, bottom + 32, table["along"], 11, "middle", "#555")
    for side, colour in colours.items():
        points = [(x + 45 + place(row["x"], x_low, x_high, width), bottom -
                   place(max(statistics.median(row["sides"][side][bits]), y_low), y_low, y_high,
                         height))
                  for row in table["rows"].values()
                  if side in row["sides"] and bits in row["sides"][side]]
        for before, after in zip(points, points[1:]):
            drawing.line(*before, *after, colour, 2)
        for point in points:
            drawing.dot(*point, colour)
    return bottom + 40


def draw_lines(table, path):
    """A panel for each word size, with the same scales."""
    colours = colours_of(table)
    middles = [statistics.median(rounds) for row in table["rows"].values()
               for by_bits in row["sides"].values() for rounds in by_bits.values()]
    middles = [value for value in middles if value > 0] or [1.0]
    places = [row["x"] for row in table["rows"].values()]
    scale = (min(places), max([*places, min(places) * 10]),
             10.0 ** math.floor(math.log10(min(middles))),
             10.0 ** (math.floor(math.log10(max(middles))) + 1))
    drawing = Drawing(LEFT * 2 + PANEL * len(table["bits"]), 400)
    drawing.text(LEFT, 24, table["title"], 15)
    top = legend(drawing, table, colours, 46) + 10
    ends = [line_panel(drawing, table, bits, colours, LEFT + i * PANEL, top, scale)
            for i, bits in enumerate(table["bits"])]
    drawing.height = int(max(ends)) + 6
    drawing.save(path)


def draw(table, path):
    """Writes the chart of a table."""
    (draw_lines if table["along"] else draw_bars)(table, path)
