#!/usr/bin/env python3
"""Judges how clean a steady tone has been recorded, in WAV files or in the sound of AVI films.

usage: harmonics.py HERTZ FILE...

Every file is 16-bit mono at 48000 Hz, at most two seconds of silence and then the tone. For each:
  hertz          the frequency that the tone has
  splices        periods of the tone that are too long or too short, in a second
  mean           of all samples; a recording without an offset has 0
  level          of the tone with its harmonics, in dB of the loudest sine wave
  off harmonics  energy beside the multiples of the tone, in dB of the whole but the offset
"""
import array
import cmath
import math
import sys

RATE = 48000
SKIPPED = 5 * RATE // 2  # samples before the tone, and while its offset decays
NEAR = 2  # samples that a period may differ by
WINDOW = 1 << 15  # samples of a spectrum: 1.5 Hz a line at 48000 Hz
SPECTRA = 8  # spread over the file
LOUDEST = 1 << 15
LINES = 5  # to either side of a harmonic, which the window spreads it over
SOUND_CHUNKS = (b"data", b"01wb")  # of WAV and AVI


def sound(data, at, end):
    """The sound chunks of a RIFF file, in order."""
    while at + 8 <= end:
        name, size = data[at : at + 4], int.from_bytes(data[at + 4 : at + 8], "little")
        if name in (b"RIFF", b"LIST"):
            yield from sound(data, at + 12, min(at + 8 + size, end))
        elif name in SOUND_CHUNKS:
            yield data[at + 8 : at + 8 + size]
        at += 8 + size + size % 2


def samples_of(path):
    with open(path, "rb") as file:
        data = file.read()
    samples = array.array("h", b"".join(sound(data, 0, len(data))))
    if sys.byteorder == "big":
        samples.byteswap()
    return samples


def periods_of(samples):
    """From each rising edge to the next."""
    rises = [samples[n + 1] - samples[n - 1] for n in range(1, len(samples) - 1)]
    limit = max(rises) / 2
    edges = [n for n in range(1, len(rises)) if rises[n] > limit >= rises[n - 1]]
    return [b - a for a, b in zip(edges, edges[1:])]


def fft(x):
    if len(x) == 1:
        return x
    even, odd = fft(x[::2]), fft(x[1::2])
    odd = [cmath.rect(1, -2 * math.pi * k / len(x)) * odd[k] for k in range(len(odd))]
    return [a + b for a, b in zip(even, odd)] + [a - b for a, b in zip(even, odd)]


def energies(samples, start):
    """Mean square of each line of the spectrum, through a Blackman-Harris window."""
    weights = (0.35875, -0.48829, 0.14128, -0.01168)
    angle = 2 * math.pi / WINDOW
    shape = [sum(w * math.cos(i * angle * n) for i, w in enumerate(weights)) for n in range(WINDOW)]
    lines = fft([samples[start + n] * shape[n] for n in range(WINDOW)])
    whole = WINDOW / 2 * sum(weight * weight for weight in shape)
    return [abs(line) ** 2 / whole for line in lines[: WINDOW // 2]]


def level_and_rest(samples, cycles):
    """`cycles` of the tone in a sample."""
    total = off = 0.0
    step = max(1, (len(samples) - WINDOW) // SPECTRA)
    starts = range(0, len(samples) - WINDOW + 1, step)
    for start in starts:
        for line, energy in enumerate(energies(samples, start)):
            harmonic = round(line / (cycles * WINDOW)) * cycles * WINDOW
            if line <= LINES:
                continue  # the offset
            total += energy
            off += energy if abs(line - harmonic) > LINES else 0
    level = (total - off) / len(starts) / (LOUDEST * LOUDEST / 2)
    return 10 * math.log10(level), 10 * math.log10(off / total)


def main(hertz, *paths):
    print(f"{'hertz':>8} {'splices/s':>10} {'mean':>8} {'level':>11} {'off harmonics':>14}")
    for path in paths:
        samples = samples_of(path)[SKIPPED:]
        seconds = len(samples) / RATE
        periods = periods_of(samples)
        good = [n for n in periods if abs(n - RATE / float(hertz)) <= NEAR]
        cycles = len(good) / sum(good)
        splices = (len(periods) - len(good)) / seconds
        mean = sum(samples) / len(samples)
        level, rest = level_and_rest(samples, cycles)
        row = f"{cycles * RATE:8.2f} {splices:10.1f} {mean:8.1f} {level:8.2f} dB {rest:11.1f} dB"
        print(f"{row}  {path}")


if __name__ == "__main__":
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    main(*sys.argv[1:])
