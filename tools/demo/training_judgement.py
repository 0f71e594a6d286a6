"""What the traces of a training session prove. Judged are the lines that arrived, each sentence that was spoken
(once, in order, and nothing else), the reply that was skipped and the one that was muted, that nothing of the voice
was taken for the salesperson's, and the record; times, CPU and memory are only reported."""

import re
import statistics
from collections.abc import Callable
from dataclasses import dataclass, field
from pathlib import Path

import numpy

from judgement import (
    LEAST_CORRELATION,
    judge_bytes,
    judge_stored,
    received_file,
    report_times,
    shared_rows,
    transcript_of,
)
from likeness import Ear
from voices import read_wav

# A comma ends a piece that is spoken once so many characters stand before it.
CHARACTERS_BEFORE_COMMA = 40
# What is heard later after a skipping was not skipped.
SKIPPED_WITHIN = 0.5
# A piece that lacks less than this was spoken to its end.
CUT_LEAST = 0.05
# The microphone is open again before the last sound that was cut off has faded in the room.
MOST_ECHO = 0.3


@dataclass
class Reply:
    """One reply of the buyer. Times are places in the recording, in seconds."""

    number: int
    begin: float
    is_muted: bool = False
    skipped_at: float | None = None
    # The moment of the key, as `Evidence.heard_at` counts.
    key_at: float | None = None
    text: str = ""
    is_shown: bool = False
    end: float = 0.0
    # What the program speaks in one go, each with its speech.
    pieces: list = field(default_factory=list)

    @property
    def name(self):
        return f"reply {self.number}" if self.number else "the opening"


@dataclass
class Evidence:
    lines: list
    replies: list
    # (sentence, when its last word had left the server), as `heard_at` counts.
    sentence_ends: list
    heard: numpy.ndarray
    # When what stands at a place of the recording was heard, in seconds.
    heard_at: Callable[[float], float]
    rate: int
    record: dict | None
    counters: dict
    received: Path
    shown: list
    scenario: str | None
    # Whether the history shows one session of this type: "Train", "Live".
    history: dict


def pieces(text):
    """A reply in the pieces that are spoken: up to a stop before a blank, or to a comma after 40 characters."""
    found, begin = [], 0
    for place, character in enumerate(text):
        behind = text[place + 1 : place + 2]
        is_stop = character in ".!?" and (not behind or behind.isspace())
        if is_stop or (character == "," and place - begin >= CHARACTERS_BEFORE_COMMA):
            found.append(text[begin : place + 1].strip())
            begin = place + 1
    found.append(text[begin:].strip())
    return [piece for piece in found if piece]


def judge(evidence):
    """The report, and one sentence for each thing that is not as it must be."""
    failures = []
    report = {}
    judge_texts(evidence, report, failures)
    judge_speech(evidence, report, failures)
    judge_microphone(evidence, report, failures)
    judge_stored(evidence, report, failures)
    judge_marks(evidence, report, failures)
    judge_bytes(evidence, ("mic",), report, failures)
    report_times(evidence.counters, ("mic",), report)
    return report, failures


def judge_texts(evidence, report, failures):
    transcript = transcript_of(evidence.record)
    for name, source, expected in (
        ("utterances", "mic", [line.text for line in evidence.lines]),
        ("replies", "system", [reply.text for reply in evidence.replies]),
    ):
        report[name] = [text for side, text in transcript if side == source]
        if report[name] != expected:
            failures.append(f"{name}: {len(report[name])} in the record, {len(expected)} in the session, "
                            "not the same texts in order")
    for reply in evidence.replies:
        if not reply.is_shown:
            failures.append(f"shown: {reply.name} was not on the screen")


def judge_speech(evidence, report, failures):
    """Every sound at the output is the next piece of a reply, from the first to the last."""
    ear = Ear(evidence.heard, evidence.rate)
    report["spoken"] = []
    report["first_sound_ms"] = []
    report["skipped_silent_after_ms"] = None
    for reply in evidence.replies:
        if ear.skip_to(reply.begin) > 0:
            failures.append(f"speech: something was heard before {reply.name}")
        spoken = [] if reply.is_muted else judge_pieces(evidence, reply, ear, report, failures)
        if ear.next_sound(before=reply.end) is not None:
            failures.append(f"speech: {reply.name} was muted, and is heard" if reply.is_muted else
                            f"speech: more was heard of {reply.name} than it has to say")
        ear.skip_to(reply.end)
        report["spoken"] += spoken
        latency = first_sound_latency(evidence, reply, spoken)
        if latency is not None:
            report["first_sound_ms"].append(latency)
    if ear.next_sound() is not None:
        failures.append("speech: something was heard after the last reply")
    report["speech_correlation"] = min((entry["correlation"] for entry in report["spoken"]), default=0.0)


def judge_pieces(evidence, reply, ear, report, failures):
    spoken = []
    for piece in reply.pieces:
        begin = ear.next_sound(before=reply.end)
        is_late = reply.skipped_at is not None and (begin is None or begin >= reply.skipped_at)
        if is_late:
            break
        if begin is None:
            failures.append(f'speech: "{piece.text}" of {reply.name} was not heard')
            continue
        end = None
        if reply.skipped_at is not None and begin + piece.seconds > reply.skipped_at:
            end = ear.end_of_sound(before=min(reply.end, reply.skipped_at + SKIPPED_WITHIN))
            report["skipped_silent_after_ms"] = round(1000 * (evidence.heard_at(end) - reply.key_at), 1)
        sound = ear.take(piece.speech, piece.rate, end)
        spoken.append({"reply": reply.number, "text": piece.text, "correlation": round(sound.correlation, 4),
                       "start": round(sound.start, 3), "end": round(sound.end, 3)})
        if sound.correlation <= LEAST_CORRELATION:
            failures.append(f'speech: what was heard in place of "{piece.text}" of {reply.name} is like it by '
                            f"{sound.correlation:.3f}, and must be above {LEAST_CORRELATION}")
        if end is not None:
            spoken[-1]["cut"] = begin + piece.seconds - end > CUT_LEAST
            break
    if reply.skipped_at is not None and len(spoken) == len(reply.pieces) and not spoken[-1].get("cut"):
        failures.append(f"skipped: {reply.name} was heard to its end")
    return spoken


def first_sound_latency(evidence, reply, spoken):
    """Milliseconds from the end of the reply's first sentence to its first sound, where they are one piece."""
    if not spoken:
        return None
    first = spoken[0]
    ends = [place for text, place in evidence.sentence_ends if text == first["text"] and reply.begin <= place < reply.end]
    return round(1000 * (evidence.heard_at(first["start"]) - ends[0]), 1) if ends else None


def judge_microphone(evidence, report, failures):
    """Of all that the microphone heard, the lines arrived, and nothing else to speak of."""
    path = received_file(evidence.received, "mic")
    heard, rate = read_wav(path) if path else (numpy.zeros(0), evidence.rate)
    ear = Ear(heard, rate)
    correlations, strange = [], 0.0
    for line in evidence.lines:
        found, between = ear.find(line.speech, line.rate)
        correlations.append(round(found.correlation, 4))
        strange += between
    strange += ear.skip_to(float("inf"))
    report["audio_correlation_mic_each"] = correlations
    report["audio_correlation_mic"] = min(correlations, default=0.0)
    report["voice_in_microphone_seconds"] = round(strange, 2)
    if report["audio_correlation_mic"] <= LEAST_CORRELATION:
        failures.append(f"audio_correlation_mic: {report['audio_correlation_mic']}, and must be above {LEAST_CORRELATION}")
    if strange > MOST_ECHO:
        failures.append(f"voice_in_microphone: {strange:.2f} s beside the lines reached the provider")


def judge_marks(evidence, report, failures):
    """The record is known as one of a training session."""
    record = evidence.record or {}
    report["scenario"] = record.get("scenario")
    if record and report["scenario"] != evidence.scenario:
        failures.append(f"scenario: {report['scenario']} in the record, {evidence.scenario} was chosen")
    report["marked_as_training"] = bool(record.get("wasTrainMode"))
    if record and not report["marked_as_training"]:
        failures.append("marked_as_training: the record counts as a call")
    report["history"] = evidence.history
    if evidence.history != {"Live": False, "Train": True}:
        failures.append(f"history: {evidence.history}")
    scores = [int(found[1]) for name in evidence.shown if (found := re.search(r"\bScore (-?\d+)$", name))]
    report["score"] = scores[0] if scores else None
    if not scores:
        failures.append("score: none was shown")


def summary(report):
    latency = report["first_sound_ms"]
    silent = report["skipped_silent_after_ms"]
    spoken = f"first sound {statistics.median(latency):.0f} ms after a sentence's end (median); " if latency else ""
    spoken += f"silent {silent:.0f} ms after SPACE" if silent is not None else "skipped between two sentences"
    return [
        ("Lines", f"{len(report['utterances'])} of the salesperson, likeness at worst {report['audio_correlation_mic']:.3f}"),
        ("Replies", f"{len(report['replies'])}, in {len(report['spoken'])} pieces that were heard, likeness at worst "
                    f"{report['speech_correlation']:.3f}"),
        ("Speech", spoken),
        ("Echo", f"{report['voice_in_microphone_seconds']} s of the voice reached the provider, "
                 f"{report['bytes_lost']} bytes were lost"),
        ("Game", f"score {report['score']}; {report['tips']} tips, {report['meddic_score']} of 6 criteria"),
        *shared_rows(report),
    ]
