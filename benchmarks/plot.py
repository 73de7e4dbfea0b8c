"""Draws curves of cost against size, both axes logarithmic, as an SVG file."""

import html
import math

WIDTH, HEIGHT, MARGIN = 720, 420, 70
COLOURS = ("#1b6ca8", "#c8553d", "#3b7a57", "#7a4b94")


class Axis:
    """One logarithmic axis over whole decades."""

    def __init__(self, values, start, end):
        self.low = math.floor(math.log10(min(values)))
        self.high = max(math.ceil(math.log10(max(values))), self.low + 1)
        self.start, self.end = start, end

    def at(self, value):
        share = (math.log10(value) - self.low) / (self.high - self.low)
        return self.start + share * (self.end - self.start)

    def decades(self):
        return [10.0 ** power for power in range(self.low, self.high + 1)]


def text(x, y, words, anchor="middle"):
    return f'<text x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}">{html.escape(words)}</text>'


def stroke(x1, y1, x2, y2, colour):
    return f'<line x1="{x1:.1f}" y1="{y1:.1f}" x2="{x2:.1f}" y2="{y2:.1f}" stroke="{colour}"/>'


def grid(across, up):
    parts = []
    for value in across.decades():
        x = across.at(value)
        parts += [stroke(x, up.start, x, up.end, "#dddddd"), text(x, up.start + 20, f"{value:,.0f}")]
    for value in up.decades():
        y = up.at(value)
        parts += [stroke(across.start, y, across.end, y, "#dddddd"), text(across.start - 8, y + 4, f"{value:,.0f}", "end")]
    return parts


def draw(curves):
    """curves: {name: [(size, nanoseconds an item)]}."""
    points = [point for curve in curves.values() for point in curve]
    across = Axis([size for size, _ in points], MARGIN, WIDTH - MARGIN)
    up = Axis([cost for _, cost in points], HEIGHT - MARGIN, MARGIN)
    parts = grid(across, up)
    for index, (name, curve) in enumerate(curves.items()):
        colour = COLOURS[index % len(COLOURS)]
        path = " ".join(f"{across.at(size):.1f},{up.at(cost):.1f}" for size, cost in curve)
        parts.append(f'<polyline points="{path}" fill="none" stroke="{colour}" stroke-width="2"/>')
        parts.append(f'<g fill="{colour}">{text(MARGIN + 130 * index, MARGIN - 40, name, "start")}</g>')
    parts.append(text(WIDTH / 2, HEIGHT - 20, "items"))
    parts.append(text(MARGIN, MARGIN - 15, "nanoseconds for one item", "start"))
    return parts


def write(path, curves):
    body = "\n".join(draw(curves))
    path.write_text(
        f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {HEIGHT}" font-family="sans-serif" font-size="13">\n'
        f'<rect width="{WIDTH}" height="{HEIGHT}" fill="white"/>\n{body}\n</svg>\n', encoding="utf-8")
