#!/usr/bin/env python3
"""The lines of src/ in built programs: where they begin, and which of them have run (see linewatch.c).

    lines.py list FOLDER PROGRAM..     writes NAME.addresses into FOLDER
    lines.py report FOLDER PROGRAM..   prints a table by file, and what share of all lines has run

The exit code of a report is 1 when fewer have run than is asked: 85 of 100 lines of forms (src/*/frm*), 95
of everything else."""
import array
import re
import subprocess
import sys
from collections import defaultdict
from pathlib import Path

ASKED = {"Forms": 85, "Everything else": 95}


def positions(program):
    """Offset to (file, line), for every line of src/ in the program's debug information."""
    dump = subprocess.Popen(["readelf", "--debug-dump=decodedline", program], text=True,
                            stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
    file, found = None, {}
    for text in dump.stdout:
        if heading := re.match(r"(?:CU: )?(\S+):(\[\+\+\])?$", text):
            path = re.match(r".*(?<![\w-])(src/.*)", heading[1])
            file = path[1] if path and "autogen" not in path[1] else None
        elif file and (row := re.match(r"\S+ +(\d+) +0x([0-9a-f]+)(?: +\d+)? +x$", text)):
            found[int(row[2], 16)] = file, int(row[1])
    if dump.wait() != 0:
        sys.exit(f"readelf cannot read {program}")
    return found


def write_lists(folder, programs):
    for program in programs:
        there = sorted(positions(program))
        (folder / f"{program.name}.addresses").write_bytes(array.array("Q", there).tobytes())


def read_hits(folder, programs):
    """For every file its lines, each with whether it has run in any of the programs."""
    lines = defaultdict(dict)
    for program in programs:
        places = positions(program)
        hits = folder / f"{program.name}.hits"
        ran = hits.read_bytes() if hits.exists() else bytes(len(places))
        for (_, (file, line)), hit in zip(sorted(places.items()), ran, strict=True):
            lines[file][line] = lines[file].get(line, False) or bool(hit)
    return lines


def ranges(numbers):
    """3, 4, 5, 9 as 3-5,9."""
    parts = []
    for number in numbers:
        if parts and number == parts[-1][1] + 1:
            parts[-1][1] = number
        else:
            parts.append([number, number])
    return ",".join(str(a) if a == b else f"{a}-{b}" for a, b in parts)


def table(title, lines):
    print(f"== {title}")
    ran = total = 0
    for file, there in sorted(lines.items()):
        missed = sorted(line for line, hit in there.items() if not hit)
        ran, total = ran + len(there) - len(missed), total + len(there)
        print(f"{100 * (len(there) - len(missed)) // len(there):4} %  {len(there):4}  {file}  {ranges(missed)}")
    share = 100 * ran / max(total, 1)
    print(f"{share:.1f} % of {total} lines (asked: {ASKED[title]} %)\n")
    return share >= ASKED[title]


def main():
    what, folder, programs = sys.argv[1], Path(sys.argv[2]), [Path(name) for name in sys.argv[3:]]
    if what == "list":
        write_lists(folder, programs)
        return 0
    lines = read_hits(folder, programs)
    forms = {file for file in lines if re.search(r"/frm[^/]*$", file)}
    good = [table("Forms", {file: lines[file] for file in forms}),
            table("Everything else", {file: lines[file] for file in lines.keys() - forms})]
    return 0 if all(good) else 1


if __name__ == "__main__":
    sys.exit(main())
