#!/usr/bin/env python3
"""Writes the seed corpus of every fuzz target into corpus/<target>/.

The targets read their inputs through FuzzedDataProvider, so every byte string is a valid input;
the seeds only give each target a start of several shapes: all zeros (the smallest choice at every
step), a counter (a bit of everything) and fixed pseudo-random bytes. Run it again after adding a
target; the output is the same on every run.
"""
import os
import random

TARGETS = ["fuzz_buffer_manager", "fuzz_metadata", "fuzz_notify", "fuzz_request", "fuzz_result",
           "fuzz_stream_configuration"]

here = os.path.dirname(os.path.abspath(__file__))
for target in TARGETS:
    directory = os.path.join(here, "corpus", target)
    os.makedirs(directory, exist_ok=True)
    generator = random.Random(target)
    seeds = {
        "zeros": bytes(64),
        "counter": bytes(range(256)),
        "random": bytes(generator.randrange(256) for _ in range(512)),
    }
    for name, data in seeds.items():
        with open(os.path.join(directory, "seed-" + name), "wb") as seed:
            seed.write(data)
