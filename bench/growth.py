#!/usr/bin/env python3
"""Writes the document about growth from the figures of the benchmark.

usage: growth.py FIGURES.json [DOCUMENT.md PLOT.svg]

Prints the table. With a document, replaces its table and its sentence about the memory of an image instead, and draws the
plot: the time of each operation over the number of images in the clinic, both on logarithmic axes.
"""

import json
import math
import sys

TABLE = "| |", "\n\n"
MEMORY = "A loaded image takes ", ".\n"
COLOURS = ["#1b6ca8", "#c0392b", "#1e8449", "#8e44ad", "#b9770e", "#117a8b", "#7b241c", "#34495e"]
WIDTH, HEIGHT, LEFT, TOP, RIGHT, BOTTOM = 860, 420, 80, 20, 300, 50


def grouped(number):
    return f"{number:,}"


def table(sizes):
    lines = ["| |" + "".join(f" {grouped(size['images'])} |" for size in sizes), "|---|" + "---:|" * len(sizes)]
    for row, operation in enumerate(sizes[0]["operations"]):
        times = "".join(f" {size['operations'][row]['us'] / 1000:.2f} ms |" for size in sizes)
        lines.append(f"| {operation['what']} |{times}")
    lines.append("| memory of the process, at most |" + "".join(f" {size['peak_kB'] / 1024:.0f} MB |" for size in sizes))
    return "\n".join(lines)


def memory(size):
    return (f"A loaded image takes {size['image_bytes']:.0f} bytes of the heap with its place and its key in the "
            f"collection; its texts have {size['text_bytes']:.0f} bytes")


def replaced(text, start, end, new):
    at = text.index(start)
    return text[:at] + new + text[text.index(end, at):]


def plot(sizes):
    first, last = math.log10(sizes[0]["images"]), math.log10(sizes[-1]["images"])
    times = [operation["us"] / 1000 for size in sizes for operation in size["operations"]]
    low, high = math.floor(math.log10(min(times))), math.ceil(math.log10(max(times)))

    def x(images):
        return LEFT + (math.log10(images) - first) / (last - first) * (WIDTH - LEFT - RIGHT)

    def y(milliseconds):
        return HEIGHT - BOTTOM - (math.log10(milliseconds) - low) / (high - low) * (HEIGHT - TOP - BOTTOM)

    out = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {HEIGHT}" font-family="sans-serif" '
           f'font-size="13">', f'<rect width="{WIDTH}" height="{HEIGHT}" fill="white"/>']
    for size in sizes:
        at = x(size["images"])
        out.append(f'<line x1="{at:.1f}" y1="{TOP}" x2="{at:.1f}" y2="{HEIGHT - BOTTOM}" stroke="#dddddd"/>')
        out.append(f'<text x="{at:.1f}" y="{HEIGHT - BOTTOM + 18}" text-anchor="middle">{grouped(size["images"])}</text>')
    for power in range(low, high + 1):
        at = y(10**power)
        out.append(f'<line x1="{LEFT}" y1="{at:.1f}" x2="{WIDTH - RIGHT}" y2="{at:.1f}" stroke="#dddddd"/>')
        out.append(f'<text x="{LEFT - 8}" y="{at + 4:.1f}" text-anchor="end">{10.0**power:g} ms</text>')
    out.append(f'<text x="{(LEFT + WIDTH - RIGHT) / 2}" y="{HEIGHT - 10}" text-anchor="middle">images in the clinic</text>')
    ends = sorted(range(len(sizes[0]["operations"])), key=lambda row: -sizes[-1]["operations"][row]["us"])
    label_at = TOP
    for row in ends:
        colour = COLOURS[row % len(COLOURS)]
        points = [(x(size["images"]), y(size["operations"][row]["us"] / 1000)) for size in sizes]
        out.append(f'<polyline fill="none" stroke="{colour}" stroke-width="2" points="' +
                   " ".join(f"{a:.1f},{b:.1f}" for a, b in points) + '"/>')
        out += [f'<circle cx="{a:.1f}" cy="{b:.1f}" r="3" fill="{colour}"/>' for a, b in points]
        label_at = max(label_at + 17, points[-1][1] + 4)
        out.append(f'<text x="{WIDTH - RIGHT + 12}" y="{label_at:.1f}" fill="{colour}">'
                   f'{sizes[0]["operations"][row]["what"]}</text>')
    return "\n".join(out + ["</svg>"]) + "\n"


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        sizes = json.load(file)
    if len(sys.argv) == 2:
        print(table(sizes))
        return
    with open(sys.argv[2], encoding="utf-8") as file:
        text = file.read()
    text = replaced(text, *TABLE, table(sizes))
    text = replaced(text, *MEMORY, memory(sizes[-1]))
    with open(sys.argv[2], "w", encoding="utf-8") as file:
        file.write(text)
    with open(sys.argv[3], "w", encoding="utf-8") as file:
        file.write(plot(sizes))


main()
