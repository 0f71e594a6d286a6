"""Rows of the table that ./bench prints: what, figure, peer, ratio."""

import json
from dataclasses import asdict, dataclass
from pathlib import Path


@dataclass
class Row:
    what: str
    figure: str
    peer: str = ""
    ratio: str = ""


def ratio_of(figure, peer):
    if not peer:
        return ""
    ratio = figure / peer
    return f"{ratio:.2f}" if ratio < 10 else f"{ratio:,.0f}"


def time_text(nanoseconds):
    for unit, size in (("s", 1e9), ("ms", 1e6), ("µs", 1e3)):
        if nanoseconds >= size:
            return f"{nanoseconds / size:.3g} {unit}" if nanoseconds / size < 100 else f"{nanoseconds / size:.0f} {unit}"
    return f"{nanoseconds:.3g} ns"


def save(rows, path):
    Path(path).write_text(json.dumps([asdict(row) for row in rows], ensure_ascii=False))


def load(path):
    path = Path(path)
    return [Row(**row) for row in json.loads(path.read_text())] if path.exists() else []


def table(rows):
    cells = [("What", "Figure", "Peer", "Ratio")] + [(row.what, row.figure, row.peer, row.ratio) for row in rows]
    widths = [max(len(line[column]) for line in cells) for column in range(4)]
    lines = ["  ".join(cell.ljust(width) for cell, width in zip(line, widths)).rstrip() for line in cells]
    return "\n".join([lines[0], "  ".join("-" * width for width in widths), *lines[1:]])
