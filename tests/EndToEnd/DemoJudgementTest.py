"""The demo's judgement must notice whatever went wrong in a call."""

import json
import tempfile
import unittest
from pathlib import Path

import numpy

from madeup import RATE, noise

import call_judgement
import likeness
import voices


class Call:
    """A call in which everything went well, until a test spoils it."""

    def __init__(self, folder):
        self.folder = Path(folder)
        self.lines = [
            voices.Line("mic", 0.5, "What made you look at this now?", noise(1.2, 1), RATE),
            voices.Line("system", 2.5, "We lose four hours a week.", noise(1.5, 2), RATE),
            voices.Line("mic", 5.0, "How do you measure that?", noise(1.0, 3), RATE),
        ]
        self.transcript = [
            "[Mic] What made you look at this now?",
            "[Audio] We lose four hours a week.",
            "[Coach] Ask what that costs.",
            "[Mic] How do you measure that?",
        ]
        self.heard = {}
        for side in voices.SIDES:
            # What arrives is late, quieter and a little noisy.
            track = noise(8.0, 9) * 0.02
            for line in self.lines:
                if line.side == side:
                    first = int((line.start + 0.3) * RATE)
                    track[first : first + len(line.speech)] += 0.7 * line.speech
            self.heard[side] = track
        self.counters = {
            side: {"frames_captured": 1, "bytes_sent": 1000, "bytes_lost": 0, "overhead": {"median_ms": 0.1, "p99_ms": 0.2}}
            for side in voices.SIDES
        }
        self.counters |= {"tips": 1, "tip_to_screen": {"median_ms": 5.0, "p99_ms": 9.0}}
        self.records = 1

    def failures(self):
        for side, samples in self.heard.items():
            voices.write_wav(self.folder / f"{side}.wav", samples, RATE)
        record = {
            "transcript": json.dumps(self.transcript),
            "meddicData": '{"metrics":true,"economic_buyer":false}',
            "durationSecs": 12,
            "records": self.records,
        }
        evidence = call_judgement.Evidence(
            self.lines, record if self.records else None, self.counters, self.folder, ["Stage: Discovery"]
        )
        self.report, failures = call_judgement.judge(evidence)
        return [failure.split(":")[0] for failure in failures]


class DemoJudgementTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.call = Call(folder.name)

    def test_passes_a_good_call(self):
        self.assertEqual(self.call.failures(), [])
        self.assertEqual(self.call.report["meddic_score"], 1)
        self.assertEqual(self.call.report["stage_final"], "Discovery")
        self.assertGreater(self.call.report["audio_correlation_mic"], 0.98)

    def test_notices_a_missing_line(self):
        del self.call.transcript[1]
        self.assertEqual(self.call.failures(), ["utterances_system"])

    def test_notices_a_changed_word(self):
        self.call.transcript[0] = "[Mic] What made you look at this?"
        self.assertEqual(self.call.failures(), ["utterances_mic"])

    def test_notices_a_line_on_the_wrong_side(self):
        self.call.transcript[1] = "[Mic] We lose four hours a week."
        self.assertEqual(self.call.failures(), ["utterances_mic", "utterances_system"])

    def test_notices_two_sides_in_the_wrong_order(self):
        self.call.transcript[0:2] = reversed(self.call.transcript[0:2])
        self.assertEqual(self.call.failures(), ["order"])

    def test_allows_either_order_of_lines_that_end_together(self):
        self.call.lines[0].start = 2.7
        self.call.transcript[0:2] = reversed(self.call.transcript[0:2])
        self.assertNotIn("order", self.call.failures())

    def test_notices_a_call_without_record(self):
        self.call.records = 0
        self.assertIn("record_stored", self.call.failures())

    def test_notices_two_records_of_one_call(self):
        self.call.records = 2
        self.assertEqual(self.call.failures(), ["record_stored"])

    def test_notices_bytes_that_the_program_lost(self):
        self.call.counters["system"]["bytes_lost"] = 2
        self.assertEqual(self.call.failures(), ["bytes_lost"])

    def test_notices_bytes_that_never_arrived(self):
        self.call.counters["mic"]["bytes_sent"] = 2 * len(self.call.heard["mic"]) + 2
        self.assertEqual(self.call.failures(), ["bytes_lost"])
        self.assertEqual(self.call.report["bytes_lost"], 2)

    def test_notices_a_hole_in_the_audio(self):
        first = int(5.4 * RATE)
        self.call.heard["mic"][first : first + RATE // 2] = 0
        self.assertEqual(self.call.failures(), ["audio_correlation_mic"])

    def test_notices_a_piece_of_audio_that_slipped(self):
        # 10 ms are gone from the middle of the line: what follows comes too early.
        heard = self.call.heard["system"]
        cut = int(3.4 * RATE)
        self.call.heard["system"] = numpy.concatenate([heard[:cut], heard[cut + RATE // 100 :]])
        self.assertEqual(self.call.failures(), ["audio_correlation_system"])

    def test_notices_sides_that_were_swapped(self):
        self.call.heard["mic"], self.call.heard["system"] = self.call.heard["system"], self.call.heard["mic"]
        self.assertEqual(self.call.failures(), ["audio_correlation_mic", "audio_correlation_system"])


class LikenessTest(unittest.TestCase):
    def test_resampling_keeps_the_wave(self):
        time = numpy.arange(22_050) / 22_050
        resampled = likeness.resampled(numpy.sin(2 * numpy.pi * 440 * time), 22_050, RATE)
        expected = numpy.sin(2 * numpy.pi * 440 * numpy.arange(RATE) / RATE)
        self.assertLess(numpy.max(numpy.abs(resampled[100:-100] - expected[100:-100])), 1e-3)

    def test_finds_speech_to_the_sample(self):
        heard = numpy.concatenate([numpy.zeros(777), noise(0.5, 4), numpy.zeros(500)])
        correlation, place = likeness.best_match(noise(0.5, 4), heard)
        self.assertEqual(place, 777)
        self.assertAlmostEqual(correlation, 1.0, places=6)

    def test_unlike_sounds_are_unlike(self):
        correlation, _ = likeness.best_match(noise(0.5, 5), noise(2.0, 6))
        self.assertLess(correlation, 0.3)


class VoicesTest(unittest.TestCase):
    def test_lines_of_one_side_keep_their_distance(self):
        lines = [
            voices.Line("mic", 0.0, "a", noise(2.0, 1), RATE),
            voices.Line("system", 1.0, "b", noise(1.0, 1), RATE),
            voices.Line("mic", 3.0, "c", noise(1.0, 1), RATE),
        ]
        self.assertEqual(voices.lay_out(lines), 1)
        self.assertEqual([line.start for line in lines], [0.0, 1.0, 2.0 + voices.SILENCE_BETWEEN_LINES])

    def test_speech_is_measured_without_its_silence(self):
        quiet = numpy.zeros(RATE // 2)
        speech = voices.trimmed(numpy.concatenate([quiet, noise(1.0, 7), quiet]), RATE)
        self.assertAlmostEqual(len(speech) / RATE, 1.0, delta=0.02)


if __name__ == "__main__":
    unittest.main()
