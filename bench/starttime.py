#!/usr/bin/env python3
"""How long the program takes from the end of its info screen to the window that can be used: both
windows are shown, the local list is filled, and the event loop answers. Prints every run and the median.

    cmake --preset release && cmake --build --preset release
    cmake -S tests/e2e/driver -B build/e2e-driver -G Ninja -DCMAKE_BUILD_TYPE=Release
    cmake --build build/e2e-driver
    bench/starttime.py [--program FILE] [--driver FILE] [--runs N]"""
import argparse
import statistics
import sys
import tempfile
import time
from pathlib import Path

TOP = Path(__file__).resolve().parent.parent
sys.path.insert(0, str(TOP / "tests" / "e2e"))
from driver import Display, DriverError, Program  # noqa: E402


def is_usable(program):
    shown = {window["name"] for window in program.ask("windows")["windows"]}
    return {"frm_tarvelo", "frmConnect"} <= shown and program.rows("lvwLocal")


def one_run(arguments, home, display):
    """Milliseconds; asks without a pause, each answer takes a fraction of one."""
    with Program(arguments.program, arguments.driver, [], home, display) as program:
        program.wait("the info screen", lambda: program.visible("frm_info"))
        begin = time.perf_counter()
        program.close("frm_info")
        while True:
            try:
                if is_usable(program):
                    break
            except DriverError:
                pass  # the windows are not there yet
        program.box()  # answered behind what was still to be painted
        return (time.perf_counter() - begin) * 1000


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--program", default=TOP / "build" / "release" / "bin" / "tarvelo-ftp")
    parser.add_argument("--driver", default=TOP / "build" / "e2e-driver" / "libe2e_driver.so")
    parser.add_argument("--runs", type=int, default=9)
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory(prefix="tarvelo-start-") as folder, Display() as display:
        times = []
        for number in range(arguments.runs):
            home = Path(folder) / str(number)
            home.mkdir()
            times.append(one_run(arguments, home, display.name))
            print(f"{times[-1]:7.0f} ms", flush=True)
    print(f"{statistics.median(times):7.0f} ms, median of {len(times)}; slowest {max(times):.0f} ms")


if __name__ == "__main__":
    main()
