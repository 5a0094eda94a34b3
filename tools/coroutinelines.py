#!/usr/bin/env python3
"""Takes the mark "made by the compiler" off all functions in gcov's notes (*.gcno): GCC gives it to the
bodies of coroutines, and gcov leaves out what bears it.

    coroutinelines.py FOLDER"""
import struct
import sys
from pathlib import Path

HEADER = 12  # magic, version, stamp
FUNCTION = 0x01000000


def text_end(notes, at):
    return at + 4 + struct.unpack_from("<I", notes, at)[0]


def unmark(notes):
    # Magic, version, stamp, checksum, the folder, and whether blocks may be unexecuted; then records of
    # a tag, a length in bytes, and the record.
    at = text_end(notes, 16) + 4
    while at + 8 <= len(notes):
        tag, length = struct.unpack_from("<II", notes, at)
        if tag == FUNCTION:
            mark = text_end(notes, at + 20)  # behind a number, two checksums and the name
            if struct.unpack_from("<I", notes, mark)[0] not in (0, 1):
                sys.exit("the form of the notes is not that of GCC 12")
            struct.pack_into("<I", notes, mark, 0)
        at += 8 + length


for file in Path(sys.argv[1]).rglob("*.gcno"):
    content = bytearray(file.read_bytes())
    if content:  # a precompiled header has none
        unmark(content)
        file.write_bytes(content)
