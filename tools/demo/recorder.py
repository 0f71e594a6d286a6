"""What the default output plays, kept from its beginning on, with the time at which it was heard."""

import subprocess
import threading
import time

import numpy

import voices

RATE = 24_000
BYTES_PER_SECOND = 2 * RATE
# As long as the sound server gathers what it hands over.
PIECE_MILLISECONDS = 20


def default_output():
    return subprocess.run(["pactl", "get-default-sink"], check=True, capture_output=True, text=True, timeout=10).stdout.strip()


class Recorder:
    def __init__(self):
        # By its name: not every server means the output's monitor by @DEFAULT_MONITOR@.
        command = ["parec", "-d", f"{default_output()}.monitor", "--raw", "--format=s16le", f"--rate={RATE}", "--channels=1"]
        self._process = subprocess.Popen([*command, f"--latency-msec={PIECE_MILLISECONDS}"], stdin=subprocess.DEVNULL,
                                         stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        self._lock = threading.Lock()
        self._heard = bytearray()
        # The piece that was the least late tells best when all began.
        self._began = float("inf")
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
                self._began = min(self._began, now - len(self._heard) / BYTES_PER_SECOND)
                if level > voices.LOUD:
                    self._last_loud = now

    def is_running(self):
        with self._lock:
            return len(self._heard) > 0 and self._process.poll() is None

    def place_of(self, moment):
        """Where in the recording, in seconds, that is what was heard at this moment of the monotonic clock."""
        with self._lock:
            return moment - self._began

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
