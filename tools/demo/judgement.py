"""What the demo's traces prove. Judged are utterances, sides, order, the record, lost bytes and the
likeness of the audio; times, CPU and memory are only reported."""

import json
from dataclasses import dataclass
from pathlib import Path

import likeness
from voices import SIDES, read_wav

OUTPUT_FILES = ("*.png", "*.log", "*.json", "played-*.wav", "received")
LEAST_CORRELATION = 0.9
PREFIXES = {"mic": "[Mic] ", "system": "[Audio] ", "tip": "[Coach] "}
# The order of two lines that end this close together depends on where the pieces of audio are cut.
SAME_MOMENT = 0.6


@dataclass
class Evidence:
    lines: list
    record: dict | None
    counters: dict
    received: Path
    shown: list


def judge(evidence):
    """The report, and one sentence for each thing that is not as it must be."""
    failures = []
    report = {}
    judge_record(evidence, report, failures)
    judge_bytes(evidence, report, failures)
    judge_audio(evidence, report, failures)
    counters = evidence.counters
    report["tip_latency_ms"] = round(counters["tip_to_screen"]["median_ms"], 2)
    report["tip_latency_p99_ms"] = round(counters["tip_to_screen"]["p99_ms"], 2)
    overheads = [counters[side]["overhead"] for side in SIDES]
    report["client_overhead_ms"] = {
        "median": round(max(overhead["median_ms"] for overhead in overheads), 3),
        "p99": round(max(overhead["p99_ms"] for overhead in overheads), 3),
    }
    first_frame = counters.get("first_frame_microseconds", -1)
    report["first_frame_ms"] = round(first_frame / 1000, 1) if first_frame >= 0 else None
    return report, failures


def in_order_of_end(lines):
    return sorted(lines, key=lambda line: line.end)


def judge_record(evidence, report, failures):
    record = evidence.record
    transcript = transcript_of(record)
    expected = {side: [line.text for line in in_order_of_end(evidence.lines) if line.side == side] for side in SIDES}
    for side in SIDES:
        heard = [text for source, text in transcript if source == side]
        report[f"utterances_{side}"] = heard
        if heard != expected[side]:
            failures.append(f"utterances_{side}: {len(heard)} heard, {len(expected[side])} spoken, not the same texts in order")
    judge_order(evidence.lines, [entry for entry in transcript if entry[0] in SIDES], failures)

    report["tips"] = evidence.counters["tips"]
    if report["tips"] < 1:
        failures.append("tips: none")
    report["tip_texts"] = [text for source, text in transcript if source == "tip"]
    report["stage_final"] = final_stage(evidence)
    meddic = decoded(record["meddicData"]) if record else {}
    report["meddic_score"] = sum(1 for value in meddic.values() if value is True)
    report["record_stored"] = record is not None
    if record is None:
        failures.append("record_stored: no record in the store")
    elif record["records"] != 1:
        failures.append(f"record_stored: {record['records']} records of one call")
    report["record_seconds"] = record["durationSecs"] if record else None


def judge_order(lines, heard, failures):
    """Across the sides, lines must come as they ended; those that end together may come either way."""
    places = {}
    for place, entry in enumerate(heard):
        places.setdefault(entry, []).append(place)
    previous = None
    for line in in_order_of_end(lines):
        found = places.get((line.side, line.text))
        if not found:
            return  # The judgement of the texts has told it already.
        place = found.pop(0)
        if previous and place < previous[0] and line.end - previous[1] > SAME_MOMENT:
            failures.append(f'order: "{line.text}" came before a line that ended {line.end - previous[1]:.1f} s earlier')
            return
        if previous is None or place > previous[0]:
            previous = (place, line.end)


def transcript_of(record):
    """(side or "tip", text) for each line of the stored transcript."""
    entries = []
    for line in decoded(record["transcript"]) if record else []:
        for source, prefix in PREFIXES.items():
            if line.startswith(prefix):
                entries.append((source, line[len(prefix) :]))
    return entries


def decoded(value):
    return json.loads(value) if value else {}


def final_stage(evidence):
    """As the overlay showed it last, before the call was ended."""
    for name in evidence.shown:
        if name.startswith("Stage: "):
            return name.removeprefix("Stage: ")
    return None


def judge_bytes(evidence, report, failures):
    lost = 0
    for side in SIDES:
        counted = evidence.counters[side]
        report[f"frames_captured_{side}"] = counted["frames_captured"]
        report[f"bytes_sent_{side}"] = counted["bytes_sent"]
        if counted["bytes_sent"] <= 0:
            failures.append(f"bytes_sent_{side}: nothing was sent")
        # What was sent until the counters were read is less than what the provider has kept by now.
        missing = max(0, counted["bytes_sent"] - received_bytes(evidence.received, side))
        lost += counted["bytes_lost"] + missing
    report["bytes_lost"] = lost
    if lost:
        failures.append(f"bytes_lost: {lost}")


def received_file(folder, side):
    path = folder / f"{side}.wav"
    return path if path.exists() else None


def received_bytes(folder, side):
    path = received_file(folder, side)
    return 2 * len(read_wav(path)[0]) if path else 0


def judge_audio(evidence, report, failures):
    for side in SIDES:
        lines = [line for line in evidence.lines if line.side == side]
        path = received_file(evidence.received, side)
        found = []
        if path:
            heard, rate = read_wav(path)
            found = likeness.line_correlations(lines, heard, rate)
        each = [round(correlation, 4) for correlation, _ in found]
        lowest = min(each, default=0.0)
        report[f"audio_correlation_{side}"] = lowest
        report[f"audio_correlation_{side}_each"] = each
        if lowest <= LEAST_CORRELATION:
            failures.append(f"audio_correlation_{side}: {lowest}, and must be above {LEAST_CORRELATION}")


def summary(report):
    overhead = report["client_overhead_ms"]
    rows = [
        ("Utterances", f"{len(report['utterances_mic'])} of the salesperson, {len(report['utterances_system'])} of the customer"),
        ("Tips", f"{report['tips']}; stage {report['stage_final']}, {report['meddic_score']} of 6 criteria"),
        ("Record", f"stored, {report['record_seconds']} s" if report["record_stored"] else "not stored"),
        ("Audio", f"{report['bytes_lost']} bytes lost; likeness at worst "
                  f"{report['audio_correlation_mic']:.3f} and {report['audio_correlation_system']:.3f}"),
        ("Latency", f"tip to screen {report['tip_latency_ms']} ms (median); "
                    f"audio through the program {overhead['median']} ms, p99 {overhead['p99']} ms"),
        ("Cost", f"{report['cpu_percent_of_core']} % of a core, {report['pss_mb']} MB"),
    ]
    text = "\n".join(f"{name + ':':<12}{value}" for name, value in rows)
    if report.get("frames_refused"):
        text += f"\n\nThe sandbox refused {report['frames_refused']} frames: see sandbox.log."
    if report["failures"]:
        return text + "\n\nFAILED\n" + "\n".join(f"  {failure}" for failure in report["failures"])
    return text + "\n\nPASSED: every line arrived on its side, in order and whole."
