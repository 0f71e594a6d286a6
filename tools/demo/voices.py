"""The two voices of a call script: synthesised, measured, and laid on one track a side."""

import json
import subprocess
import wave
from dataclasses import dataclass, field
from pathlib import Path

import numpy

SIDES = ("mic", "system")
# The provider ends an utterance after two seconds of silence; closer lines of one side would be one.
SILENCE_BETWEEN_LINES = 2.6
PEAK = 0.6
# As loud as what the provider takes for speech at its usual threshold.
LOUD = 10 ** (-40 / 20)
WINDOWS_PER_SECOND = 100


@dataclass
class Line:
    """One line of the script, with its place on its side's track once it is laid out."""

    side: str
    start: float
    text: str
    speech: numpy.ndarray = field(default=None, repr=False)
    rate: int = 0

    @property
    def seconds(self):
        return len(self.speech) / self.rate

    @property
    def end(self):
        return self.start + self.seconds


def read_wav(path):
    """Samples from -1 to 1 of a mono 16-bit file, and its rate."""
    with wave.open(str(path)) as file:
        if file.getsampwidth() != 2 or file.getnchannels() != 1:
            raise ValueError(f"{path} is not mono with 16 bits")
        raw = file.readframes(file.getnframes())
        return numpy.frombuffer(raw, dtype="<i2").astype(numpy.float64) / 32768, file.getframerate()


def write_wav(path, samples, rate):
    with wave.open(str(path), "wb") as file:
        file.setnchannels(1)
        file.setsampwidth(2)
        file.setframerate(rate)
        file.writeframes((numpy.clip(samples, -1, 1) * 32767).astype("<i2").tobytes())


def load_script(sandbox, script):
    """The script's lines and voices, as the sandbox itself reads them."""
    listing = subprocess.run([sandbox, "script", script, "--json"], check=True, capture_output=True, timeout=30)
    document = json.loads(listing.stdout)
    lines = [Line(line["side"], float(line["start"]), line["text"]) for line in document["lines"]]
    return lines, document.get("voices", {})


def loud_windows(samples, rate):
    """The numbers of the windows of 10 ms that are loud, and their length in samples."""
    window = rate // WINDOWS_PER_SECOND
    count = len(samples) // window
    levels = numpy.sqrt(numpy.mean(samples[: count * window].reshape(count, window) ** 2, axis=1))
    return numpy.flatnonzero(levels > LOUD), window


def trimmed(samples, rate):
    """From the first loud window to the last one, which is what the provider measures."""
    loud, window = loud_windows(samples, rate)
    if not len(loud):
        raise ValueError("a line was spoken in silence")
    return samples[loud[0] * window : (loud[-1] + 1) * window]


def synthesised(text, voice, folder, words_per_minute=None):
    """What espeak-ng makes of it, and its rate."""
    path = folder / "line.wav"
    command = ["espeak-ng", "-v", voice, "-w", str(path), "--stdin"]
    command += ["-s", str(words_per_minute)] if words_per_minute else []
    subprocess.run(command, input=text.encode(), check=True, timeout=60)
    samples, rate = read_wav(path)
    path.unlink()
    return samples, rate


def speak(lines, voices, folder):
    """Gives every line its speech."""
    for line in lines:
        voice = voices.get(line.side, {})
        samples, line.rate = synthesised(line.text, voice.get("voice", "en-us"), folder, voice.get("words_per_minute", 160))
        line.speech = trimmed(samples * (PEAK / numpy.max(numpy.abs(samples))), line.rate)


def lay_out(lines):
    """Keeps the script's times; only a line that would run into the one before it on its side waits."""
    ends = {}
    moved = 0
    for line in sorted(lines, key=lambda line: line.start):
        earliest = ends.get(line.side, -SILENCE_BETWEEN_LINES) + SILENCE_BETWEEN_LINES
        if line.start < earliest:
            line.start = earliest
            moved += 1
        ends[line.side] = line.end
    return moved


def write_tracks(lines, folder):
    """One WAV file a side, as long as the call."""
    length = max(line.end for line in lines) + 0.5
    tracks = {}
    for side in SIDES:
        spoken = [line for line in lines if line.side == side]
        rate = lines[0].rate
        track = numpy.zeros(int(length * rate))
        for line in spoken:
            first = int(line.start * rate)
            track[first : first + len(line.speech)] += line.speech
        tracks[side] = folder / f"played-{side}.wav"
        write_wav(tracks[side], track, rate)
    return tracks, length


def write_lengths(lines, path):
    Path(path).write_text(json.dumps([round(line.seconds, 3) for line in lines]))
