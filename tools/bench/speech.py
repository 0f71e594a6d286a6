"""Measures how soon a sentence is heard, and how soon it is silent after a stop. Expects private sound.

All are heard at the default output's monitor: the program's own service, `espeak-ng` started for the sentence,
and `paplay` with the sound ready made, which is the least that any player needs.
"""

import argparse
import statistics
import subprocess
import sys
import time
from pathlib import Path

import numpy
import rows

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "demo"))

import recorder  # noqa: E402
import voices  # noqa: E402
from program import wait_for  # noqa: E402

ROUNDS = 10
# Without a sound that is silent for a moment, so that the last one before the stop is no pause of its own.
SENTENCE = "No one knows when we may roam along a lonely lane in rain or in warm air on a morning in May."
STOP_AFTER = 0.7
QUIET_SECONDS = 0.4
# What is shorter can't be told from nothing.
FINEST = 10


class OwnVoice:
    name = "ours"

    def __init__(self, program, log):
        self._log = open(log, "wb")
        self._process = subprocess.Popen([str(program)], stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=self._log,
                                         text=True, bufsize=1)
        self._expect("ready")

    def _expect(self, word):
        line = self._process.stdout.readline().strip()
        if line != word:
            raise RuntimeError(f'the voice said "{line}" in place of "{word}"')

    def _obey(self, command):
        """When it was handed over; what is told meanwhile is told behind it."""
        self._process.stdin.write(f"{command}\n")
        while True:
            line = self._process.stdout.readline().strip()
            if line.isdigit():
                return int(line) / 1e9
            if line != "silent":
                raise RuntimeError(f'the voice said "{line}"')

    def speak(self):
        return self._obey(f"speak {SENTENCE}")

    def stop(self):
        return self._obey("stop")

    def end(self):
        self._process.stdin.close()
        self._process.wait(10)
        self._log.close()


class Child:
    """A program that speaks as soon as it is started, and is stopped by its end."""

    def __init__(self, name, command):
        self.name = name
        self._command = command
        self._process = None

    def speak(self):
        moment = time.monotonic()
        self._process = subprocess.Popen(self._command, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                         stderr=subprocess.DEVNULL)
        return moment

    def stop(self):
        moment = time.monotonic()
        # It is to fall silent, not to play what it has.
        self._process.kill()
        self._process.wait()
        return moment

    def end(self):
        pass


def measure(voice, ears):
    """When it was told to speak and to stop, and when it was silent, of each round."""
    moments = []
    for _ in range(ROUNDS):
        spoken = voice.speak()
        wait_for(f"the sound of {voice.name}", 10, lambda: ears.quiet_seconds() < 0.1, every=0.01)
        time.sleep(STOP_AFTER)
        stopped = voice.stop()
        wait_for(f"the silence of {voice.name}", 10, lambda: ears.quiet_seconds() > QUIET_SECONDS, every=0.05)
        moments.append((spoken, stopped, time.monotonic()))
    return moments


def times_of(moments, ears, heard):
    """Milliseconds to the first sound, and to the silence after the stop: the median of the rounds."""
    loud = numpy.flatnonzero(numpy.abs(heard) > voices.LOUD) / recorder.RATE
    first, silent = [], []
    for spoken, stopped, over in moments:
        within = loud[(loud >= ears.place_of(spoken)) & (loud < ears.place_of(over))]
        first.append(1000 * (ears.heard_at(within[0]) - ears.seconds_at(spoken)))
        silent.append(1000 * (ears.heard_at(within[-1]) - ears.seconds_at(stopped)))
    return statistics.median(first), statistics.median(silent)


def rows_of(ours, peers):
    found = []
    for index, what in enumerate(("Speech: a sentence's end to its first sound", "Speech: a stop to silence")):
        for name, times in peers:
            found.append(rows.Row(what, text_of(ours[index]), f"{name} {text_of(times[index])}",
                                  rows.ratio_of(ours[index], times[index]) if times[index] >= FINEST else ""))
    return found


def text_of(milliseconds):
    return f"{milliseconds:.0f} ms" if milliseconds >= FINEST else f"below {FINEST} ms"


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--bin", required=True, type=Path)
    parser.add_argument("--rows", required=True)
    options = parser.parse_args()
    ready = Path(options.rows).with_suffix(".wav")
    subprocess.run(["espeak-ng", "-v", "en-us", "-w", str(ready), SENTENCE], check=True, timeout=60)
    ears = recorder.Recorder(FINEST)
    speakers = [
        OwnVoice(options.bin / "peer/SpeechTimes", Path(options.rows).with_suffix(".log")),
        Child("espeak-ng, started for it", ["espeak-ng", "-v", "en-us", SENTENCE]),
        Child("paplay, the sound ready made", ["paplay", str(ready)]),
    ]
    try:
        moments = [measure(voice, ears) for voice in speakers]
    finally:
        for voice in speakers:
            voice.end()
        heard = ears.end()
    ours, *peers = [times_of(of_voice, ears, heard) for of_voice in moments]
    rows.save(rows_of(ours, [(voice.name, times) for voice, times in zip(speakers[1:], peers)]), options.rows)
    return 0


if __name__ == "__main__":
    sys.exit(main())
