"""Holds a training session in real time and judges it.

The salesperson's lines are synthesised and played into the default source whenever the buyer is silent; what the
program speaks in the buyer's place is recorded at the default output. One reply is skipped with SPACE, one is muted.
The microphone hears the loudspeaker, as on a desk: none of the voice may be taken for the salesperson's.
"""

import datetime
import json
import re
import subprocess
import sys
import time
import urllib.request
from pathlib import Path

import recorder
import training_judgement as judgement
import voices
from demo import Demo, main, say
from program import NotThere, wait_for
from training_judgement import Reply

SCENARIO = "A renewal with open cases"
PERSONALITY = "Conscientious"
MUTE = "Mute the buyer's voice"
SKIP_HINT = "SPACE to skip"
# Turns of the session by number; the opening is turn 0.
SKIPPED, MUTED = 2, 3
# Silence so long is the end of what the buyer says, and longer than any pause between its sentences.
TURN_ENDS_AFTER = 1.2
# From the loudspeaker to the microphone: a large room, but less would make the sound server hurry.
ROOM_MILLISECONDS = 60
# An end that was cut leaves an echo in the room, which the provider must not take for the next line's beginning.
ECHO_ENDS_AFTER = 2.6
SKIP_AFTER = 0.8
REPLY_SECONDS = 40


class Training(Demo):
    script = str(Path(__file__).with_name("training.script"))

    def __init__(self, options):
        super().__init__(options)
        self.recorder = None
        self.room = None
        self.replies = []
        # From the monotonic clock to the one of the logs.
        self.wall_offset = time.time() - time.monotonic()

    def prepare_script(self):
        say("==> Synthesising the salesperson")
        self.lines, spoken_by = voices.load_script(str(self.programs / "corvellan-sandbox"), self.options.script)
        voices.speak(self.lines, spoken_by, self.output)
        voices.write_lengths(self.lines, self.output / "lengths.json")
        self.tracks = []
        for number, line in enumerate(self.lines, 1):
            self.tracks.append(self.output / f"played-{number}.wav")
            voices.write_wav(self.tracks[-1], line.speech, line.rate)
        # A daemon of the user's own would speak in a voice that nobody can foretell.
        speech = self.home / ".config/speech-dispatcher/speechd.conf"
        speech.parent.mkdir(parents=True, exist_ok=True)
        speech.write_text("DisableAutoSpawn\n")

    def sandbox_options(self):
        return ["--buyer-seed", "1"]

    # --- The session ---

    def hold(self):
        self.choose()
        self.furnish_room()
        say('==> Pressing "Start Game"')
        self.program.press("Start Game")
        self.wait_for_pipeline()
        self.begin_measuring()
        self.hear_reply("the opening", 0.0)
        for number, line in enumerate(self.lines, 1):
            self.hold_turn(number, line)
        self.end_measuring()
        self.shown = self.program.names()
        self.end_session("8-summary")
        self.look_into_history()

    def choose(self):
        say(f'==> Choosing "{SCENARIO}", {PERSONALITY.lower()}, with the question game')
        with urllib.request.urlopen("http://127.0.0.1:3001/scenarios", timeout=10) as answer:
            scenarios = json.load(answer)["scenarios"]
        self.scenario = next((scenario["key"] for scenario in scenarios if scenario["name"] == SCENARIO), None)
        self.program.press("Train")
        self.program.press(SCENARIO)
        self.program.press(f"Buyer Personality: {PERSONALITY}")
        self.program.press("Question Game")
        wait_for('the button "Start Game"', 10, lambda: self.program.button("Start Game"))
        self.take_screenshot("2-choice")

    def furnish_room(self):
        """The microphone hears the loudspeaker, and so do we."""
        self.recorder = recorder.Recorder()
        output = recorder.default_output()
        load = ["pactl", "load-module", "module-loopback", f"source={output}.monitor", "sink=micfeed", f"latency_msec={ROOM_MILLISECONDS}"]
        self.room = subprocess.run(load, check=True, capture_output=True, text=True, timeout=10).stdout.strip()
        wait_for("the sound of the output", 10, self.recorder.is_running)

    def hold_turn(self, number, line):
        if number == MUTED:
            say(f'==> Pressing "{MUTE}"')
            self.program.press(MUTE)
        time.sleep(ECHO_ENDS_AFTER)
        begin = self.now()
        say(f"    {self.clock()}  Salesperson: {line.text}")
        self.play("micfeed", self.tracks[number - 1])
        self.finish_playing()
        self.hear_reply(f"the answer to line {number}", begin, number)
        if number == MUTED:
            self.program.press(MUTE)

    def hear_reply(self, what, begin, number=0):
        """From the salesperson's last word until the buyer is silent."""
        reply = Reply(number=number, begin=begin, is_muted=number == MUTED)
        reply.text = wait_for(what, REPLY_SECONDS, lambda: self.reply_text(number), every=0.05)
        if number == SKIPPED:
            wait_for("its sound", 10, lambda: self.recorder.quiet_seconds() < 0.1, every=0.02)
            time.sleep(SKIP_AFTER)
            say("==> Pressing SPACE")
            reply.skipped_at = self.now()
            reply.key_at = self.recorder.seconds_at(time.monotonic())
            self.program.key("space")
        say(f"    {self.clock()}  Buyer: {reply.text}" + (" (muted)" if reply.is_muted else ""))
        reply.is_shown = self.is_shown(reply.text)
        self.look(f"{number + 3}-{('opening', 'reply', 'skipped', 'muted', 'last')[number]}")
        wait_for("the buyer's silence", REPLY_SECONDS, self.is_buyers_silence, every=0.2)
        reply.end = self.now()
        self.replies.append(reply)

    def is_shown(self, text):
        try:
            return bool(wait_for("it", 5, lambda: f"THEM: {text}" in self.program.names(), every=0.2))
        except NotThere:
            return False

    def is_buyers_silence(self):
        self.alive(self.program)
        if self.recorder.quiet_seconds() < TURN_ENDS_AFTER:
            return False
        shown = self.program.names()
        return "Status: Listening..." in shown and SKIP_HINT not in shown

    def look_into_history(self):
        """Whether it is there among the training sessions, and only there."""
        self.program.press("Done")
        self.program.press("History")
        self.history = {}
        for kind in ("Live", "Train"):
            self.program.press(f"Type: {kind}")
            none = f"No {kind.lower()} sessions yet"
            found = wait_for(f"what is there of type {kind}", 10,
                             lambda none=none: {none, "Sessions: 1"} & set(self.program.names()), every=0.2)
            self.history[kind] = none not in found
        self.take_screenshot("9-history")

    # --- What the sandbox tells ---

    def reply_text(self, number):
        self.alive(self.program)
        told = re.findall(r"^\S+  coach +#\d+ system: (.*)$", self.sandbox_log(), re.MULTILINE)
        return told[number] if len(told) > number else None

    def sentence_ends(self):
        """When each sentence of the buyer's had left the sandbox."""
        ends = []
        for hour, minute, second, text in re.findall(r"^(\d\d):(\d\d):([\d.]+)  coach +#\d+ says: (.*)$", self.sandbox_log(),
                                                     re.MULTILINE):
            of_day = datetime.timedelta(hours=int(hour), minutes=int(minute), seconds=float(second)).total_seconds()
            midnight = self.wall_offset + self.began - (self.wall_offset + self.began) % 86_400
            moment = midnight + of_day - self.wall_offset
            # One that began before midnight ends after it.
            ends.append((text, self.recorder.seconds_at(moment if moment > self.began - 3600 else moment + 86_400)))
        return ends

    def now(self):
        return self.recorder.place_of(time.monotonic())

    def clock(self):
        seconds = int(time.monotonic() - self.began)
        return f"{seconds // 60}:{seconds % 60:02}"

    # --- Afterwards ---

    def judge(self):
        heard = self.recorder.end()
        voices.write_wav(self.output / "heard.wav", heard, recorder.RATE)
        voice = self.program_voice()
        for reply in self.replies:
            for piece in judgement.pieces(reply.text):
                samples, rate = voices.synthesised(piece, voice, self.output)
                reply.pieces.append(voices.Line("system", 0.0, piece, voices.trimmed(0.8 * samples, rate), rate))
        return judgement.judge(judgement.Evidence(
            lines=self.lines,
            replies=self.replies,
            sentence_ends=self.sentence_ends(),
            heard=heard,
            heard_at=self.recorder.heard_at,
            rate=recorder.RATE,
            record=self.newest_record(),
            counters=self.counters,
            received=self.received / self.session_id(),
            shown=self.shown,
            scenario=self.scenario,
            history=self.history,
        ))

    def program_voice(self):
        """The one that the program has chosen, as espeak-ng calls it."""
        chosen = re.search(r"TTS voice: (.*) \((?:premium|enhanced)", (self.output / "program.log").read_text(errors="replace"))
        if not chosen:
            return "en-us"
        listing = subprocess.run(["espeak-ng", "--voices=en"], check=True, capture_output=True, text=True, timeout=20).stdout
        return next(columns[4] for columns in map(str.split, listing.splitlines())
                    if columns[3].replace("_", " ") == chosen[1])

    def summary(self, report):
        return judgement.summary(report)

    def end(self):
        super().end()
        if self.room:
            subprocess.run(["pactl", "unload-module", self.room], capture_output=True, timeout=10)
        if self.recorder:
            self.recorder.end()


if __name__ == "__main__":
    sys.exit(main(Training, __doc__.splitlines()[0]))
