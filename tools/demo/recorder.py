"""What the default output plays, kept from its beginning on, with the time at which it was heard."""

import bisect
import subprocess
import threading
import time

import numpy

import voices

RATE = 24_000
BYTES_PER_SECOND = 2 * RATE


def default_output():
    return subprocess.run(["pactl", "get-default-sink"], check=True, capture_output=True, text=True, timeout=10).stdout.strip()


class Recorder:
    def __init__(self, piece_milliseconds=20):
        """The sound server hands over so much at a time: no moment is known better than that. Less makes it hurry."""
        # By its name: not every server means the output's monitor by @DEFAULT_MONITOR@.
        command = ["parec", "-d", f"{default_output()}.monitor", "--raw", "--format=s16le", f"--rate={RATE}", "--channels=1"]
        self._process = subprocess.Popen([*command, f"--latency-msec={piece_milliseconds}"], stdin=subprocess.DEVNULL,
                                         stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        self._lock = threading.Lock()
        self._heard = bytearray()
        # When each piece came, and how much there was with it.
        self._arrivals = []
        self._ends = []
        self._last_loud = float("-inf")
        self._thread = threading.Thread(target=self._read, daemon=True)
        self._thread.start()

    def _read(self):
        piece_bytes = BYTES_PER_SECOND // voices.WINDOWS_PER_SECOND
        while piece := self._process.stdout.read(piece_bytes):
            now = time.monotonic()
            level = numpy.sqrt(numpy.mean(samples_of(piece[: len(piece) // 2 * 2]) ** 2))
            with self._lock:
                self._heard += piece
                self._arrivals.append(now)
                self._ends.append(len(self._heard) / BYTES_PER_SECOND)
                if level > voices.LOUD:
                    self._last_loud = now

    def is_running(self):
        with self._lock:
            return len(self._heard) > 0 and self._process.poll() is None

    def place_of(self, moment):
        """How many seconds of the recording had come by this moment of the monotonic clock."""
        with self._lock:
            come = bisect.bisect_right(self._arrivals, moment)
            return self._ends[come - 1] if come else 0.0

    def seconds_at(self, moment):
        """This moment of the monotonic clock, counted from the recording's beginning."""
        with self._lock:
            return moment - (self._arrivals[0] - self._ends[0])

    def heard_at(self, place):
        """When the sound server gave away what stands at this place of the recording, counted as in `seconds_at`."""
        with self._lock:
            piece = min(bisect.bisect_left(self._ends, place), len(self._ends) - 1)
            return self._arrivals[piece] - (self._arrivals[0] - self._ends[0])

    def quiet_seconds(self):
        with self._lock:
            return time.monotonic() - self._last_loud

    def end(self):
        """The samples of all that was heard; their rate is RATE."""
        if self._process.poll() is None:
            self._process.terminate()
        self._process.wait()
        self._thread.join()
        self._process.stdout.close()
        return samples_of(bytes(self._heard[: len(self._heard) // 2 * 2]))


def samples_of(raw):
    return numpy.frombuffer(raw, dtype="<i2").astype(numpy.float64) / 32768
