"""Measures the whole program: its start, its memory, and what a call costs (from the demo's report).

Expects private surroundings.
"""

import argparse
import json
import os
import statistics
import subprocess
import sys
import time
from pathlib import Path

import rows

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "demo"))

from program import Program, wait_for  # noqa: E402

STARTS = 5
SETTLE_SECONDS = 2.0
IDLE_SECONDS = 10.0


def start_program(path, log):
    """First frame and store in milliseconds, memory in MB a little later."""
    program = Program([str(path)], log)
    try:
        counters = wait_for(
            "the first frame", 30,
            lambda: (found := program.counters_or_none()) and found["first_frame_microseconds"] >= 0 and found,
        )
        time.sleep(SETTLE_SECONDS)
        return counters["first_frame_microseconds"] / 1000, program.pss_mb()
    finally:
        program.end()


def start_bare_window(path):
    process = subprocess.Popen([str(path)], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True)
    try:
        first_frame = int(process.stdout.readline()) / 1000
        time.sleep(SETTLE_SECONDS)
        return first_frame, Program.pss_of(process.pid)
    finally:
        process.terminate()
        process.wait()
        process.stdout.close()


def bare_pipes(path, seconds=15):
    """Both sides from the sound server to a WebSocket by the least there can be: percent of a core that
    both take together, and the worse side's overhead in milliseconds."""
    sink = subprocess.Popen([str(path), "sink"], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True)
    try:
        url = sink.stdout.readline().strip()
        pipes = [
            subprocess.Popen([str(path), source, url, str(seconds)], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True)
            for source in ("mic", "spk.monitor")
        ]
        sides = [json.loads(pipe.communicate(timeout=seconds + 30)[0]) for pipe in pipes]
    finally:
        sink.terminate()
        sink.wait()
        sink.stdout.close()
    worst = {name: max(side["overhead_ms"][name] for side in sides) for name in ("median", "p99")}
    return sum(side["cpu_percent"] for side in sides), worst


def idle_cpu(command, log):
    """Percent of a core that it takes while nobody touches it."""
    program = Program([str(command)], log)
    try:
        time.sleep(2 * SETTLE_SECONDS)
        before = program.cpu_seconds()
        time.sleep(IDLE_SECONDS)
        return 100 * (program.cpu_seconds() - before) / IDLE_SECONDS
    finally:
        program.end()


def start_rows(programs, log):
    home = Path(os.environ["HOME"])
    settings = home / ".config/corvellan/bram.ini"
    settings.parent.mkdir(parents=True, exist_ok=True)
    settings.write_text("[General]\nserverMode=local\nonboardingCompleted=true\n")
    program, bare = programs / "corvellan-bram-sandbox", programs / "peer/BareWindow"
    # The first start of each warms the caches.
    start_program(program, log)
    start_bare_window(bare)
    ours = [start_program(program, log) for _ in range(STARTS)]
    peer = [start_bare_window(bare) for _ in range(STARTS)]
    found = []
    for what, unit, index in (("Start to first frame, warm", "ms", 0), ("Memory, idle (PSS)", "MB", 1)):
        figure = statistics.median(entry[index] for entry in ours)
        other = statistics.median(entry[index] for entry in peer)
        found.append(rows.Row(what, f"{figure:.0f} {unit}", f"empty window {other:.0f} {unit}", rows.ratio_of(figure, other)))
    cpu, other = idle_cpu(program, log), idle_cpu(bare, log)
    found.append(rows.Row("CPU, idle", f"{cpu:.2f} %", f"empty window {other:.2f} %", rows.ratio_of(cpu, other)))
    return found


def call_rows(report, programs):
    overhead = report["client_overhead_ms"]
    bare_cpu, bare_overhead = bare_pipes(programs / "peer/BareAudioPipe")
    cpu = report["cpu_percent_of_core"]
    found = [
        rows.Row("Call: memory (PSS)", f"{report['pss_mb']:.0f} MB"),
        rows.Row("Call: CPU, both sides and overlay", f"{cpu:.2f} %", f"bare pipes, both sides {bare_cpu:.2f} %",
                 rows.ratio_of(cpu, bare_cpu)),
        rows.Row("Call: tip to screen, median", f"{report['tip_latency_ms']} ms", "a frame at 60 Hz 16.7 ms",
                 rows.ratio_of(report["tip_latency_ms"], 16.7)),
    ]
    for name in ("median", "p99"):
        found.append(rows.Row(f"Call: audio through the program, {name}", f"{overhead[name]} ms",
                              f"bare pipe {bare_overhead[name]} ms", rows.ratio_of(overhead[name], bare_overhead[name])))
    return found


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--bin", required=True, type=Path)
    parser.add_argument("--report", type=Path, help="of a demo call just played")
    parser.add_argument("--rows", required=True)
    options = parser.parse_args()
    found = start_rows(options.bin, Path(options.rows).with_suffix(".log"))
    if options.report and options.report.exists():
        found += call_rows(json.loads(options.report.read_text()), options.bin)
    rows.save(found, options.rows)
    return 0


if __name__ == "__main__":
    sys.exit(main())
