"""Drives the real program from a script; see README.md."""
import argparse
import contextlib
import json
import os
import re
import select
import signal
import socket
import subprocess
import sys
import tempfile
import time
from pathlib import Path

HERE = Path(__file__).resolve().parent


class DriverError(Exception):
    """The program did not do what the script wanted."""


class Display:
    """A virtual X display; ends with its `with` block. Needs Xvfb."""

    def __init__(self, size="1280x900x24"):
        read, write = os.pipe()
        self._process = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write), "-screen", "0", size, "-nolisten", "tcp"],
            pass_fds=[write], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(write)
        with os.fdopen(read) as pipe:
            number = pipe.readline().strip()
        if not number:
            raise DriverError("Xvfb does not start")
        self.name = ":" + number

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._process.terminate()
        self._process.wait()


class FtpServer:
    """pyftpdlib on a free port of 127.0.0.1; ends with its `with` block."""

    user = "web01"
    password = "geheim"

    def __init__(self, root, log, options=()):
        self._process = subprocess.Popen(
            ["/usr/bin/python3", str(HERE.parent / "servers" / "pyserver.py"), "--root", str(root),
             "--user", self.user, "--password", self.password, *options],
            stdout=subprocess.PIPE, stderr=open(log, "wb"), text=True)
        line = self._process.stdout.readline().split()
        if len(line) != 2:
            raise DriverError("the FTP server does not start:\n" + Path(log).read_text())
        self.port = int(line[1])

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._process.terminate()
        self._process.wait()


def runtime_of_sanitizer(program):
    """The address sanitizer's library when the program is built with it, in a list: it must be loaded
    before all others."""
    return re.findall(r"libasan\S* => (\S+)", subprocess.check_output(["ldd", str(program)], text=True))


class Program:
    """The program with the driver in it. Every method answers when the program has done it, or has
    put it into its event queue; `wait` waits for what follows."""

    def __init__(self, program, driver, arguments, home, display=None, timeout=30,
                 variables=None):
        self._timeout = timeout
        self._buffer = b""
        self._files = contextlib.ExitStack()
        folder = self._files.enter_context(tempfile.TemporaryDirectory(prefix="tarvelo-driver-"))
        listener = self._files.enter_context(socket.socket(socket.AF_UNIX))
        listener.bind(folder + "/socket")
        listener.listen(1)
        home = Path(home)
        others = os.environ.get("LD_PRELOAD", "").split()
        preloaded = ":".join([*runtime_of_sanitizer(program), *others, str(driver)])
        environment = dict(os.environ, LD_PRELOAD=preloaded, TARVELO_DRIVER=folder + "/socket",
                           HOME=str(home), LANG="de_DE.UTF-8", LC_ALL="C.UTF-8")
        for name in ("XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR",
                     "TEMP"):
            environment[name] = str(home / name)
            (home / name).mkdir(mode=0o700, parents=True, exist_ok=True)
        if display:
            environment["DISPLAY"] = display
            environment["QT_QPA_PLATFORM"] = "xcb"
        else:
            environment["QT_QPA_PLATFORM"] = "offscreen"
        environment.update(variables or {})
        self.log = home / "program.log"
        self.process = subprocess.Popen([str(program), *arguments], env=environment,
                                        stdin=subprocess.DEVNULL, stdout=open(self.log, "wb"),
                                        stderr=subprocess.STDOUT)
        if not select.select([listener], [], [], timeout)[0]:
            self.kill()
            raise DriverError("the program does not start:\n" + self.output())
        self._socket = self._files.enter_context(listener.accept()[0])
        self._socket.settimeout(timeout)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.kill()
        self._files.close()

    def output(self):
        """What the program has written to its console."""
        return self.log.read_text(errors="replace")

    def kill(self):
        if self.process.poll() is None:
            self.process.send_signal(signal.SIGKILL)
        self.process.wait()

    def ask(self, do, **details):
        """One request; raises DriverError when the driver says that it cannot be done."""
        request = {"do": do, **{k: v for k, v in details.items() if v is not None}}
        self._socket.sendall(json.dumps(request).encode() + b"\n")
        while b"\n" not in self._buffer:
            block = self._socket.recv(1 << 20)
            if not block:
                raise DriverError(f"the program has ended (during {request}):\n" + self.output())
            self._buffer += block
        line, self._buffer = self._buffer.split(b"\n", 1)
        reply = json.loads(line)
        if "error" in reply:
            raise DriverError(f"{reply['error']} (asked to {request})")
        return reply

    def wait(self, what, condition, timeout=None):
        """Asks until condition() is true, and returns its value. A DriverError of the condition
        means "not yet"."""
        end = time.monotonic() + (timeout or self._timeout)
        last = None
        while True:
            try:
                value = condition()
                if value:
                    return value
            except DriverError as error:
                last = error
                if self.process.poll() is not None:
                    raise
            if time.monotonic() > end:
                box = self.box()
                raise DriverError(f"waited in vain for: {what}"
                                  + (f"; last: {last}" if last else "")
                                  + (f"; a box is open: {box}" if box else ""))
            select.select([], [], [], 0.03)

    def click(self, name):
        self.ask("click", object=name)

    def select(self, view, names):
        self.ask("select", object=view, rows=list(names))

    def open(self, view, name):
        """A double click on a row."""
        self.ask("open", object=view, row=name)

    def place(self, view, row=None):
        """Where a row, or the free space below all rows, is on the screen."""
        point = self.ask("place", object=view, row=row)
        return point["x"], point["y"]

    def rows(self, view):
        return self.ask("rows", object=view)["rows"]

    def names(self, view):
        return [row["cells"][0] for row in self.rows(view)]

    def text(self, name):
        return self.ask("text", object=name)["text"]

    def enter(self, name, text):
        self.ask("enter", object=name, text=text)

    def choose(self, name, entry):
        self.ask("choose", object=name, text=entry)

    def caption(self, view, text):
        """Ends the editing of a row with another name."""
        self.ask("caption", object=view, text=text)

    def key(self, key, name=None):
        self.ask("key", key=key, object=name)

    def describe(self, name):
        return self.ask("describe", object=name)

    def visible(self, name):
        return self.describe(name)["visible"]

    def enabled(self, name):
        return self.describe(name)["enabled"]

    def box(self):
        """The modal box or dialog that is open, or None."""
        return self.ask("box").get("box")

    def is_waiting(self):
        """Whether a command waits for the server, the disk or a dialog."""
        return self.ask("loops")["loops"] > 1

    def answer(self, button):
        self.ask("answer", button=button)

    def grab(self, file, name=None):
        """A picture of a widget, or of the whole screen."""
        self.ask("grab", file=str(file), object=name)

    def close(self, name):
        self.ask("close", object=name)

    def end(self, timeout=20):
        """Waits for the end of the program. Returns its exit code."""
        return self.process.wait(timeout)


def parser_for(description):
    """A parser with what every script must be told."""
    parser = argparse.ArgumentParser(description=description,
                                     formatter_class=argparse.RawTextHelpFormatter)
    parser.add_argument("--program", required=True)
    parser.add_argument("--driver", required=True, help="the built e2e_driver")
    return parser


def carry_out(name, run, arguments):
    """Calls run(arguments, folder, display) with a folder and an X display of its own, the latter by
    its name and None when "--offscreen" is given. Returns the script's exit code."""
    no_display = getattr(arguments, "offscreen", False)
    try:
        with tempfile.TemporaryDirectory(prefix=f"tarvelo-{name}-") as folder, \
                (contextlib.nullcontext() if no_display else Display()) as display:
            run(arguments, Path(folder), display.name if display else None)
    except (DriverError, OSError, subprocess.SubprocessError) as error:
        print(f"FAILED: {error}", file=sys.stderr)
        return 1
    return 0
