#!/usr/bin/env python3
"""Generates finish.wav, the sound of a finished download: two soft bell tones, a fourth apart."""

import math
import pathlib
import struct
import wave

RATE = 22050
SECONDS = 1.1
# Start in seconds, frequency in hertz, loudness.
TONES = [(0.0, 784.0, 0.30), (0.13, 1046.5, 0.34)]
# Multiple of the frequency, loudness, decay per second: the overtones of a struck bar fade sooner.
PARTIALS = [(1.0, 1.0, 5.0), (2.0, 0.30, 8.0), (3.01, 0.12, 13.0)]
ATTACK = 0.006


def loudness(time):
    value = 0.0
    for start, frequency, gain in TONES:
        age = time - start
        if age < 0:
            continue
        swell = min(1.0, age / ATTACK)
        for multiple, part, decay in PARTIALS:
            value += gain * swell * part * math.exp(-decay * age) * math.sin(2 * math.pi * multiple * frequency * age)
    return value * min(1.0, (SECONDS - time) / 0.1)


samples = [int(32000 * loudness(i / RATE)) for i in range(int(RATE * SECONDS))]
with wave.open(str(pathlib.Path(__file__).with_name("finish.wav")), "wb") as file:
    file.setnchannels(1)
    file.setsampwidth(2)
    file.setframerate(RATE)
    file.writeframes(b"".join(struct.pack("<h", sample) for sample in samples))
