"""Runs the benchmarks of single parts and puts each beside its peers.

A benchmark is named Thing/ours or Thing/peer:name, with its arguments behind: Thing/ours/1000.
"""

import argparse
import json
import subprocess
import sys
import tempfile
from pathlib import Path

import rows

UNITS = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}


def measure(program, selection):
    """Name to nanoseconds: the median of three runs."""
    with tempfile.NamedTemporaryFile(suffix=".json") as output:
        command = [str(program), f"--benchmark_out={output.name}", "--benchmark_out_format=json"]
        command += ["--benchmark_repetitions=3", "--benchmark_report_aggregates_only=true", "--benchmark_min_time=0.1"]
        if selection:
            command.append(f"--benchmark_filter={selection}")
        run = subprocess.run(command, stdin=subprocess.DEVNULL, capture_output=True, text=True)
        if run.returncode != 0:
            raise RuntimeError(f"{program.name} failed:\n{run.stdout[-2000:]}{run.stderr[-2000:]}")
        text = Path(output.name).read_text()
    # Nothing selected leaves the file empty.
    entries = json.loads(text)["benchmarks"] if text.strip() else []
    return {
        entry["run_name"]: entry["real_time"] * UNITS[entry["time_unit"]]
        for entry in entries
        if entry.get("aggregate_name") == "median"
    }


def thing_and_runner(name):
    """("Thing (1000)", "ours") of Thing/ours/1000; what follows a colon of its own is an option."""
    parts = name.split("/")
    for index, part in enumerate(parts):
        if part == "ours" or part.startswith("peer:"):
            arguments = [rest for rest in parts[index + 1 :] if rest.isdigit()]
            thing = "/".join(parts[:index])
            return thing + (f" ({', '.join(arguments)})" if arguments else ""), part.removeprefix("peer:")
    return name, "ours"


def rows_of(times):
    ours = {}
    peers = {}
    for name, nanoseconds in times.items():
        thing, runner = thing_and_runner(name)
        if runner == "ours":
            ours[thing] = nanoseconds
        else:
            peers.setdefault(thing, []).append((runner, nanoseconds))
    found = []
    for thing, nanoseconds in ours.items():
        text = rows.time_text(nanoseconds)
        if thing not in peers:
            found.append(rows.Row(thing, text))
        for peer, other in peers.get(thing, []):
            found.append(rows.Row(thing, text, f"{peer} {rows.time_text(other)}", rows.ratio_of(nanoseconds, other)))
    return found


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--filter", default="")
    parser.add_argument("--rows", required=True, help="the file for the rows")
    parser.add_argument("programs", nargs="*", type=Path)
    options = parser.parse_args()
    found = []
    failed = False
    for program in sorted(options.programs):
        print(f"    {program.name}", flush=True)
        try:
            found += rows_of(measure(program, options.filter))
        except RuntimeError as failure:
            print(failure, flush=True)
            failed = True
    rows.save(found, options.rows)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
