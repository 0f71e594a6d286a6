"""What the traces of a call prove. Judged are utterances, sides, order, the record, lost bytes and the
likeness of the audio; times, CPU and memory are only reported."""

from dataclasses import dataclass
from pathlib import Path

import likeness
from judgement import (
    LEAST_CORRELATION,
    judge_bytes,
    judge_stored,
    received_file,
    report_times,
    shared_rows,
    transcript_of,
)
from voices import SIDES, read_wav

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
    judge_texts(evidence, report, failures)
    judge_stored(evidence, report, failures)
    report["stage_final"] = final_stage(evidence)
    judge_bytes(evidence, SIDES, report, failures)
    judge_audio(evidence, report, failures)
    report_times(evidence.counters, SIDES, report)
    return report, failures


def in_order_of_end(lines):
    return sorted(lines, key=lambda line: line.end)


def judge_texts(evidence, report, failures):
    transcript = transcript_of(evidence.record)
    expected = {side: [line.text for line in in_order_of_end(evidence.lines) if line.side == side] for side in SIDES}
    for side in SIDES:
        heard = [text for source, text in transcript if source == side]
        report[f"utterances_{side}"] = heard
        if heard != expected[side]:
            failures.append(f"utterances_{side}: {len(heard)} heard, {len(expected[side])} spoken, not the same texts in order")
    judge_order(evidence.lines, [entry for entry in transcript if entry[0] in SIDES], failures)


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


def final_stage(evidence):
    """As the overlay showed it last, before the call was ended."""
    for name in evidence.shown:
        if name.startswith("Stage: "):
            return name.removeprefix("Stage: ")
    return None


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
    return [
        ("Utterances", f"{len(report['utterances_mic'])} of the salesperson, {len(report['utterances_system'])} of the customer"),
        ("Tips", f"{report['tips']}; stage {report['stage_final']}, {report['meddic_score']} of 6 criteria"),
        ("Audio", f"{report['bytes_lost']} bytes lost; likeness at worst "
                  f"{report['audio_correlation_mic']:.3f} and {report['audio_correlation_system']:.3f}"),
        *shared_rows(report),
    ]
