"""Measures how long the window takes from an input to the frame that answers it. Needs a private display."""

import argparse
import json
import math
import statistics
import subprocess
import sys
from pathlib import Path

import rows

FRAME_MILLISECONDS = 1000 / 60


def percentile(samples, share):
    ordered = sorted(samples)
    return ordered[max(0, math.ceil(len(ordered) * share) - 1)]


def text_of(samples):
    return f"{statistics.median(samples):.1f} / {percentile(samples, 0.99):.1f} / {max(samples):.1f} ms"


def rows_of(steps):
    peer = next(entry["ms"] for entry in steps if entry["step"] == "peer")
    found = []
    for entry in steps:
        if entry["step"] == "peer":
            continue
        ratio = rows.ratio_of(statistics.median(entry["ms"]), statistics.median(peer))
        late = sum(sample > FRAME_MILLISECONDS for sample in entry["ms"])
        what = f"Frame: {entry['step']}" + (f" (late {late} of {len(entry['ms'])})" if late else "")
        found.append(rows.Row(what, text_of(entry["ms"]), f"empty window {text_of(peer)}", ratio))
    return found


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--bin", required=True, type=Path)
    parser.add_argument("--rows", required=True)
    options = parser.parse_args()
    run = subprocess.run([str(options.bin / "peer/FrameTimes")], stdin=subprocess.DEVNULL, capture_output=True, text=True)
    if run.returncode != 0:
        print(f"FrameTimes failed:\n{run.stderr[-2000:]}")
        return 1
    rows.save(rows_of(json.loads(run.stdout)), options.rows)
    return 0


if __name__ == "__main__":
    sys.exit(main())
