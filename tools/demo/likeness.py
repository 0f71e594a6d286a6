"""How much of what was played arrived: the normalised cross-correlation of every line."""

import numpy


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
