"""The judgement of a training session must notice whatever went wrong in it."""

import json
import tempfile
import unittest
from pathlib import Path

import numpy

from madeup import RATE, noise

import training_judgement
import voices
from training_judgement import Reply, pieces

# As long as the opening and three replies take, each with its line before it.
SECONDS = 24.0
SKIPPED_AT = 14.0


class Session:
    """A session in which everything went well, until a test spoils it."""

    def __init__(self, folder):
        self.folder = Path(folder)
        self.lines = [
            voices.Line("mic", 0.0, "What went wrong?", noise(1.2, 1), RATE),
            voices.Line("mic", 0.0, "How much did it cost?", noise(1.5, 2), RATE),
            voices.Line("mic", 0.0, "Who signs?", noise(1.0, 3), RATE),
        ]
        self.replies = [
            self.reply(0, 0.0, 4.0, "Grace here. What is it?"),
            self.reply(1, 4.0, 10.0, "Two cases are open. It is painful."),
            self.reply(2, 10.0, 17.0, "Two percent of our margin. That is documented.", skipped_at=SKIPPED_AT, key_at=SKIPPED_AT),
            self.reply(3, 17.0, SECONDS, "Our finance chief.", is_muted=True),
        ]
        # (reply, piece): when it is heard. The last one is cut off 30 ms after the key.
        self.places = {(0, 0): 1.0, (0, 1): 2.5, (1, 0): 7.0, (1, 1): 8.5, (2, 0): 13.4}
        self.heard = numpy.zeros(int(SECONDS * RATE))
        for (number, piece), place in self.places.items():
            self.say(place, self.replies[number].pieces[piece].speech)
        self.silence(SKIPPED_AT + 0.03, 17.0)
        self.microphone = noise(SECONDS, 9) * 0.002
        for line, place in zip(self.lines, (5.0, 11.0, 18.0)):
            self.arrive(place, line.speech)
        self.sentence_ends = [("Grace here.", 0.9), ("Two cases are open.", 6.95)]
        self.record = {
            "transcript": json.dumps([
                "[Audio] Grace here. What is it?",
                "[Mic] What went wrong?",
                "[Coach] Open question on pain: +10. Score 10.",
                "[Audio] Two cases are open. It is painful.",
                "[Mic] How much did it cost?",
                "[Audio] Two percent of our margin. That is documented.",
                "[Mic] Who signs?",
                "[Audio] Our finance chief.",
            ]),
            "meddicData": '{"metrics":true,"economic_buyer":false}',
            "durationSecs": 24,
            "records": 1,
            "scenario": "retail_renewal",
            "wasTrainMode": 1,
        }
        self.counters = {"mic": {"frames_captured": 1, "bytes_sent": 1000, "bytes_lost": 0,
                                 "overhead": {"median_ms": 0.1, "p99_ms": 0.2}},
                         "tips": 1, "tip_to_screen": {"median_ms": 5.0, "p99_ms": 9.0}}
        self.shown = ["Discovery → Score 10"]
        self.history = {"Live": False, "Train": True}

    @staticmethod
    def reply(number, begin, end, text, **more):
        made = Reply(number=number, begin=begin, end=end, text=text, is_shown=True, **more)
        made.pieces = [voices.Line("system", 0.0, piece, noise(1.1, 10 * number + place + 20), RATE)
                       for place, piece in enumerate(pieces(text))]
        return made

    def say(self, place, speech):
        first = int(place * RATE)
        self.heard[first : first + len(speech)] += 0.7 * speech

    def silence(self, begin, end):
        self.heard[int(begin * RATE) : int(end * RATE)] = 0

    def arrive(self, place, speech):
        first = int(place * RATE)
        self.microphone[first : first + len(speech)] += speech

    def failures(self):
        voices.write_wav(self.folder / "mic.wav", self.microphone, RATE)
        self.report, failures = training_judgement.judge(training_judgement.Evidence(
            lines=self.lines, replies=self.replies, sentence_ends=self.sentence_ends, heard=self.heard, rate=RATE,
            heard_at=lambda place: place,
            record=self.record, counters=self.counters, received=self.folder, shown=self.shown,
            scenario="retail_renewal", history=self.history))
        return [failure.split(":")[0] for failure in failures]


class TrainingJudgementTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.session = Session(folder.name)

    def test_passes_a_good_session(self):
        self.assertEqual(self.session.failures(), [])
        report = self.session.report
        self.assertEqual([entry["text"] for entry in report["spoken"]],
                         ["Grace here.", "What is it?", "Two cases are open.", "It is painful.", "Two percent of our margin."])
        self.assertGreater(report["speech_correlation"], 0.98)
        self.assertAlmostEqual(report["skipped_silent_after_ms"], 30, delta=11)
        self.assertEqual(len(report["first_sound_ms"]), 2)
        for measured, real in zip(report["first_sound_ms"], (100, 50)):
            self.assertAlmostEqual(measured, real, delta=1)
        self.assertEqual(report["score"], 10)

    def test_notices_a_sentence_that_was_not_spoken(self):
        self.session.silence(8.4, 10.0)
        self.assertEqual(self.session.failures(), ["speech"])

    def test_notices_a_lost_sentence_in_the_middle(self):
        self.session.silence(0.9, 2.3)
        self.assertIn("speech", self.session.failures())

    def test_notices_a_sentence_that_was_spoken_twice(self):
        self.session.silence(8.4, 10.0)
        self.session.say(8.2, self.session.replies[1].pieces[0].speech)
        self.session.say(9.4, self.session.replies[1].pieces[1].speech)
        self.assertIn("speech", self.session.failures())

    def test_notices_a_last_sentence_that_was_spoken_twice(self):
        self.session.say(2.5 + 1.3, self.session.replies[0].pieces[1].speech)
        self.session.replies[0].end = self.session.replies[1].begin = 5.2
        self.assertEqual(self.session.failures(), ["speech"])

    def test_notices_two_sentences_in_the_wrong_order(self):
        one, two = self.session.replies[1].pieces
        self.session.silence(6.9, 10.0)
        self.session.say(7.0, two.speech)
        self.session.say(8.5, one.speech)
        self.assertIn("speech", self.session.failures())

    def test_notices_another_text_than_the_one_shown(self):
        self.session.silence(6.9, 8.3)
        self.session.say(7.0, noise(1.1, 99))
        self.assertEqual(self.session.failures(), ["speech"])

    def test_notices_a_hole_in_a_sentence(self):
        self.session.silence(7.3, 7.6)
        self.assertEqual(self.session.failures(), ["speech"])

    def test_notices_a_voice_that_space_does_not_end(self):
        self.session.say(15.2, self.session.replies[2].pieces[1].speech)
        self.assertIn("speech", self.session.failures())

    def speak_on_over_the_key(self, place):
        """The skipped reply's last piece begins there, and is heard to its end."""
        reply = self.session.replies[2]
        self.session.silence(11.0, 17.0)
        self.session.say(place - 1.3, reply.pieces[0].speech)
        self.session.say(place, reply.pieces[1].speech)

    def test_notices_a_voice_that_speaks_on(self):
        self.speak_on_over_the_key(13.8)
        self.assertEqual(self.session.failures(), ["speech"])

    def test_notices_a_reply_that_was_never_skipped(self):
        self.speak_on_over_the_key(13.2)
        self.assertEqual(self.session.failures(), ["skipped"])

    def test_notices_a_muted_reply_that_is_heard(self):
        self.session.say(20.0, self.session.replies[3].pieces[0].speech)
        self.assertEqual(self.session.failures(), ["speech"])

    def test_notices_a_reply_that_was_not_shown(self):
        self.session.replies[3].is_shown = False
        self.assertEqual(self.session.failures(), ["shown"])

    def test_notices_the_voice_in_the_microphone(self):
        self.session.arrive(7.0, self.session.replies[1].pieces[0].speech)
        self.assertEqual(self.session.failures(), ["voice_in_microphone"])

    def test_allows_the_echo_of_a_voice_that_was_cut_off(self):
        self.session.arrive(14.1, noise(0.1, 50))
        self.assertEqual(self.session.failures(), [])
        self.assertAlmostEqual(self.session.report["voice_in_microphone_seconds"], 0.1, delta=0.02)

    def test_notices_a_line_that_did_not_arrive(self):
        first = int(11.0 * RATE)
        self.session.microphone[first : first + int(1.5 * RATE)] = 0
        self.assertIn("audio_correlation_mic", self.session.failures())

    def test_notices_a_line_that_was_not_understood(self):
        self.session.record["transcript"] = self.session.record["transcript"].replace("[Mic] Who signs?", "[Mic] Who sings?")
        self.assertEqual(self.session.failures(), ["utterances"])

    def test_notices_a_reply_that_the_record_lacks(self):
        self.session.record["transcript"] = self.session.record["transcript"].replace("[Audio] Our finance chief.", "")
        self.assertEqual(self.session.failures(), ["replies"])

    def test_notices_a_record_that_counts_as_a_call(self):
        self.session.record["wasTrainMode"] = 0
        self.session.history = {"Live": True, "Train": False}
        self.assertEqual(self.session.failures(), ["marked_as_training", "history"])

    def test_notices_another_scenario_in_the_record(self):
        self.session.record["scenario"] = "cold_call"
        self.assertEqual(self.session.failures(), ["scenario"])

    def test_notices_a_session_without_record(self):
        self.session.record = None
        self.assertIn("record_stored", self.session.failures())

    def test_notices_a_game_without_score(self):
        self.session.shown = ["Discovery"]
        self.assertEqual(self.session.failures(), ["score"])

    def test_notices_bytes_that_never_arrived(self):
        self.session.counters["mic"]["bytes_sent"] = 2 * len(self.session.microphone) + 2
        self.assertEqual(self.session.failures(), ["bytes_lost"])


class PiecesTest(unittest.TestCase):
    def test_a_stop_cuts_before_a_blank_only(self):
        self.assertEqual(pieces("It is 3.14 percent. Why! Is it so?"), ["It is 3.14 percent.", "Why!", "Is it so?"])

    def test_a_comma_cuts_behind_forty_characters(self):
        self.assertEqual(pieces("a" * 40 + ", b"), ["a" * 40 + ",", "b"])
        self.assertEqual(pieces("a" * 39 + ", b"), ["a" * 39 + ", b"])

    def test_what_is_left_is_a_piece(self):
        self.assertEqual(pieces("One. two "), ["One.", "two"])


if __name__ == "__main__":
    unittest.main()
