"""Sounds for the tests of the demos' judgement."""

import sys
from pathlib import Path

import numpy

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "tools/demo"))

RATE = 24_000


def noise(seconds, seed):
    """Band-limited like speech, so that it survives being resampled."""
    samples = numpy.random.default_rng(seed).normal(0, 0.1, int(seconds * RATE))
    spectrum = numpy.fft.rfft(samples)
    spectrum[len(spectrum) // 3 :] = 0
    return numpy.fft.irfft(spectrum, len(samples))
