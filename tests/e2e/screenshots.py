#!/usr/bin/env python3
"""Pictures of the main window by which its look is judged. No test: somebody has to look at them."""
import argparse
import contextlib
import os
import sys
import tempfile
from pathlib import Path

from driver import Display, DriverError, FtpServer, Program
from transfer import command_line, log_in, transfer
from webspace import make_local_folder, make_web_space

BIG = 20_000


@contextlib.contextmanager
def started(arguments, display, fields=(), variables=None):
    with tempfile.TemporaryDirectory(prefix="tarvelo-home-") as home, \
            Program(arguments.program, arguments.driver, list(fields), home, display,
                    variables=variables) as program:
        yield program


def disconnected(arguments, display, output, _server, _local):
    with started(arguments, display) as program:
        program.wait("the info screen", lambda: program.visible("frm_info"))
        program.close("frm_info")
        program.wait("the connection dialog", lambda: program.visible("frmConnect"))
        program.close("frmConnect")
        program.wait("the window", lambda: program.visible("frm_tarvelo") and not program.box())
        program.ask("resize", object="frm_tarvelo", width=1000, height=700)
        program.grab(output / "disconnected.png", "frm_tarvelo")


@contextlib.contextmanager
def connected(arguments, display, server, local, variables=None):
    with started(arguments, display, [command_line(server, local)], variables) as program:
        log_in(program)
        program.wait("the listing", lambda: "index.html" in program.names("lvwRemote"))
        yield program


def size(program, width, height):
    program.ask("resize", object="frm_tarvelo", width=width, height=height)


def plain(arguments, display, output, server, local):
    with connected(arguments, display, server, local) as program:
        size(program, 1000, 700)
        transfer(program, "lvwLocal", ["notizen.txt"], "cmd_upload", lambda: False)
        program.select("lvwRemote", ["index.html", "robots.txt"])
        program.grab(output / "connected.png", "frm_tarvelo")
        size(program, 667, 467)
        program.grab(output / "minimum.png", "frm_tarvelo")
        size(program, 1000, 700)
        program.ask("dark")
        program.grab(output / "dark.png", "frm_tarvelo")
        program.open("lvwRemote", "leerer Ordner")
        program.wait("the empty folder", lambda: len(program.rows("lvwRemote")) == 1)
        program.grab(output / "dark-empty.png", "frm_tarvelo")


def double(arguments, display, output, server, local):
    with connected(arguments, display, server, local, {"QT_SCALE_FACTOR": "2"}) as program:
        size(program, 900, 620)
        program.select("lvwLocal", ["notizen.txt"])
        program.grab(output / "200percent.png", "frm_tarvelo")


def huge(arguments, display, output, server, local):
    with connected(arguments, display, server, local) as program:
        size(program, 3840, 2100)
        program.open("lvwRemote", "viele")
        program.wait("the big folder", lambda: program.place("lvwRemote", "Bestellung 00000.html"))
        program.grab(output / "4k.png", "frm_tarvelo")
        size(program, 1000, 700)
        program.grab(output / "bigfolder.png", "frm_tarvelo")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--program", required=True)
    parser.add_argument("--driver", required=True, help="the built e2e_driver")
    parser.add_argument("--output", required=True, help="folder for the pictures")
    arguments = parser.parse_args()
    output = Path(arguments.output)
    output.mkdir(parents=True, exist_ok=True)
    with tempfile.TemporaryDirectory(prefix="tarvelo-shots-") as folder, \
            Display("3840x2160x24") as display:
        folder = Path(folder)
        make_web_space(folder / "web")
        (folder / "web" / "viele").mkdir()
        for number in range(BIG):
            file = folder / "web" / "viele" / f"Bestellung {number * 7919 % 100_000:05}.html"
            with open(file, "wb") as empty:
                empty.truncate(number * 31 % 70_000)
            os.utime(file, (1.5e9 + number * 9000, 1.5e9 + number * 9000))
        make_local_folder(folder / "lokal")
        with FtpServer(folder / "web", folder / "server.log") as server:
            for shot in (disconnected, plain, double, huge):
                try:
                    shot(arguments, display.name, output, server, folder / "lokal")
                except DriverError as error:
                    print(f"{shot.__name__}: {error}", file=sys.stderr)
                    return 1
    print(f"Pictures: {output}/*.png")
    return 0


if __name__ == "__main__":
    sys.exit(main())
