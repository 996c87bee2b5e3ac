#!/usr/bin/env python3
"""corpus.py: the inputs of a fuzz target between a folder, as the fuzzer has them, and a text with a line each, in hex.

    corpus.py unpack TEXT FOLDER    a file a line, named by its number
    corpus.py pack FOLDER TEXT      shortest first, so that a text changes where inputs do
"""
import pathlib
import sys


def unpack(text, folder):
    folder.mkdir(parents=True, exist_ok=True)
    for number, line in enumerate(text.read_text().split("\n")[:-1], 1):
        (folder / str(number)).write_bytes(bytes.fromhex(line))


def pack(folder, text):
    inputs = {path.read_bytes() for path in folder.iterdir()}
    ordered = sorted(inputs, key=lambda input: (len(input), input))
    text.write_text("".join(input.hex() + "\n" for input in ordered))


if len(sys.argv) != 4 or sys.argv[1] not in ("unpack", "pack"):
    sys.exit(__doc__)
(unpack if sys.argv[1] == "unpack" else pack)(pathlib.Path(sys.argv[2]), pathlib.Path(sys.argv[3]))
