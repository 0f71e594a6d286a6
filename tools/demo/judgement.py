"""What every demo is judged by: the record, the bytes that arrived, and what of it is told at the end."""

import json

from voices import read_wav

OUTPUT_FILES = ("*.png", "*.log", "*.json", "played-*.wav", "heard.wav", "received")
LEAST_CORRELATION = 0.9
PREFIXES = {"mic": "[Mic] ", "system": "[Audio] ", "tip": "[Coach] "}


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


def judge_stored(evidence, report, failures):
    """One session leaves one record."""
    record = evidence.record
    report["tips"] = evidence.counters["tips"]
    if report["tips"] < 1:
        failures.append("tips: none")
    report["tip_texts"] = [text for source, text in transcript_of(record) if source == "tip"]
    meddic = decoded(record["meddicData"]) if record else {}
    report["meddic_score"] = sum(1 for value in meddic.values() if value is True)
    report["record_stored"] = record is not None
    if record is None:
        failures.append("record_stored: no record in the store")
    elif record["records"] != 1:
        failures.append(f"record_stored: {record['records']} records of one session")
    report["record_seconds"] = record["durationSecs"] if record else None


def judge_bytes(evidence, sides, report, failures):
    lost = 0
    for side in sides:
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


def report_times(counters, sides, report):
    """What is told and not judged."""
    report["tip_latency_ms"] = round(counters["tip_to_screen"]["median_ms"], 2)
    report["tip_latency_p99_ms"] = round(counters["tip_to_screen"]["p99_ms"], 2)
    overheads = [counters[side]["overhead"] for side in sides]
    report["client_overhead_ms"] = {
        "median": round(max(overhead["median_ms"] for overhead in overheads), 3),
        "p99": round(max(overhead["p99_ms"] for overhead in overheads), 3),
    }
    first_frame = counters.get("first_frame_microseconds", -1)
    report["first_frame_ms"] = round(first_frame / 1000, 1) if first_frame >= 0 else None


def shared_rows(report):
    """Of the summary."""
    overhead = report["client_overhead_ms"]
    return [
        ("Record", f"stored, {report['record_seconds']} s" if report["record_stored"] else "not stored"),
        ("Latency", f"tip to screen {report['tip_latency_ms']} ms (median); "
                    f"audio through the program {overhead['median']} ms, p99 {overhead['p99']} ms"),
        ("Cost", f"{report['cpu_percent_of_core']} % of a core, {report['pss_mb']} MB"),
    ]


def verdict(rows, report):
    """The summary's rows, and what came out."""
    text = "\n".join(f"{name + ':':<12}{value}" for name, value in rows)
    if report.get("frames_refused"):
        text += f"\n\nThe sandbox refused {report['frames_refused']} frames: see sandbox.log."
    if report["failures"]:
        return text + "\n\nFAILED\n" + "\n".join(f"  {failure}" for failure in report["failures"])
    return text + "\n\nPASSED: every line arrived, in order and whole."
