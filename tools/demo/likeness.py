"""How much of what was played arrived: the normalised cross-correlation of every line."""

from dataclasses import dataclass

import numpy

from voices import WINDOWS_PER_SECOND, loud_windows

# How far from its first loud moment a speech may begin: it can start and end with a breath.
BREATH_SECONDS = 0.25


def resampled(samples, rate, wanted):
    """Band-limited, through the frequency domain."""
    if rate == wanted:
        return samples
    length = round(len(samples) * wanted / rate)
    spectrum = numpy.fft.rfft(samples)
    target = numpy.zeros(length // 2 + 1, dtype=complex)
    shared = min(len(spectrum), len(target))
    target[:shared] = spectrum[:shared]
    return numpy.fft.irfft(target, length) * (length / len(samples))


def best_match(speech, heard):
    """The highest correlation coefficient over all places in `heard`, and that place in samples."""
    if len(heard) < len(speech) or not len(speech):
        return 0.0, 0
    size = 1 << (len(heard) + len(speech) - 1).bit_length()
    product = numpy.fft.irfft(numpy.fft.rfft(heard, size) * numpy.conj(numpy.fft.rfft(speech, size)), size)
    places = len(heard) - len(speech) + 1
    energy = numpy.concatenate(([0.0], numpy.cumsum(heard**2)))
    norms = numpy.sqrt(numpy.maximum(energy[len(speech) :] - energy[:places], 0) * numpy.sum(speech**2))
    # A stretch far quieter than speech would divide noise by next to nothing.
    floor = 1e-3 * numpy.sum(speech**2)
    likeness = numpy.where(norms > floor, product[:places] / numpy.maximum(norms, 1e-12), 0)
    place = int(numpy.argmax(likeness))
    return float(likeness[place]), place


def line_correlations(lines, heard, rate):
    """For each line of one side its correlation and its place in seconds. Lines are looked for in
    their order: first the longest, anywhere; then the others around where they must be by it."""
    speeches = [resampled(line.speech, line.rate, rate) for line in lines]
    if not lines:
        return []
    anchor = max(range(len(lines)), key=lambda i: len(speeches[i]))
    _, place = best_match(speeches[anchor], heard)
    offset = place / rate - lines[anchor].start
    found = []
    for line, speech in zip(lines, speeches):
        first = max(0, int((line.start + offset - 1.0) * rate))
        last = int((line.end + offset + 1.0) * rate)
        correlation, place = best_match(speech, heard[first:last])
        found.append((correlation, (first + place) / rate))
    return found


@dataclass
class Sound:
    """One speech as it was found: how alike, and where, in seconds."""

    correlation: float
    start: float
    end: float


class Ear:
    """Reads what was heard from its beginning to its end. Each speech is taken where the next sound begins, so that
    nothing can be heard in between, be missing, or come twice."""

    def __init__(self, heard, rate):
        self._heard = heard
        self._rate = rate
        self._loud = loud_windows(heard, rate)[0] / WINDOWS_PER_SECOND
        self._place = 0.0

    def next_sound(self, before=float("inf")):
        """When the next one begins, in seconds; none if nothing more is heard before that moment."""
        found = self._loud[(self._loud >= self._place) & (self._loud < before)]
        return float(found[0]) if len(found) else None

    def end_of_sound(self, before):
        """When the last one ends that is heard before that moment, and not taken yet; none without one."""
        found = self._loud[(self._loud >= self._place) & (self._loud < before)]
        return float(found[-1]) + 1 / WINDOWS_PER_SECOND if len(found) else None

    def skip_to(self, place):
        """Leaves out what was heard before; gives how many seconds of it were loud."""
        skipped = numpy.count_nonzero((self._loud >= self._place) & (self._loud < place))
        self._place = max(self._place, place)
        return skipped / WINDOWS_PER_SECOND

    def take(self, speech, rate, end=None):
        """The next sound, which there must be, as this speech; with `end` as its beginning up to that moment."""
        begin = self.next_sound()
        speech = resampled(speech, rate, self._rate)
        if end is not None:
            speech = speech[: int((end - begin) * self._rate)]
        return self._found(speech, begin - BREATH_SECONDS, begin + BREATH_SECONDS + len(speech) / self._rate)

    def find(self, speech, rate):
        """Where it is heard best from here on, and how many seconds of other sounds come before."""
        came_from = self._place
        found = self._found(resampled(speech, rate, self._rate), came_from, len(self._heard) / self._rate)
        between = (self._loud >= came_from) & (self._loud < found.start - BREATH_SECONDS)
        return found, numpy.count_nonzero(between) / WINDOWS_PER_SECOND

    def _found(self, speech, begin, end):
        first = max(0, int(begin * self._rate))
        correlation, place = best_match(speech, self._heard[first : int(end * self._rate)])
        start = (first + place) / self._rate
        found = Sound(correlation, start, start + len(speech) / self._rate)
        self._place = found.end + BREATH_SECONDS / 2
        return found
