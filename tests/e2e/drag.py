#!/usr/bin/env python3
"""The mouse of a real X display: drags between the panes, a drop of files from another program on the
remote pane, a rubber band. xdotool moves the pointer; nothing in the program is told to do anything.
Exits 0 only when everything has arrived, and nothing that was not asked for."""
import contextlib
import subprocess
import sys
from pathlib import Path

from driver import DriverError, FtpServer, Program, carry_out, parser_for
from transfer import command_line, differences, is_idle, log_in
from webspace import make_local_folder, make_web_space


class Mouse:
    """The pointer of a display."""

    def __init__(self, display):
        self._display = display

    def do(self, *command):
        subprocess.run(["xdotool", *map(str, command)], check=True, timeout=20,
                       stdout=subprocess.DEVNULL,
                       env={"DISPLAY": self._display, "PATH": "/usr/bin:/bin"})

    def move(self, point):
        self.do("mousemove", "--sync", *point)

    def press(self, point):
        self.move(point)
        self.do("mousedown", 1)

    def glide(self, start, end, steps=12):
        """Moves in steps, as a hand does; programs look for a drag in the distance."""
        for step in range(1, steps + 1):
            self.do("mousemove", *(round(a + (b - a) * step / steps) for a, b in zip(start, end)))

    def rest(self, program):
        """The hand comes to rest: until two programs have agreed about a drop, a release is none."""
        for _ in range(10):
            self.do("mousemove_relative", 1, 1, "mousemove_relative", "--", -1, -1)
            program.names("lvwLocal")

    def release(self):
        self.do("mouseup", 1)

    def drag(self, start, end):
        self.press(start)
        self.glide(start, end)


def expect(condition, what):
    if not condition:
        raise DriverError(what)


def ghosts(program, view):
    return [row["cells"][0] for row in program.rows(view) if row["ghosted"]]


def marked_names(program, view):
    return {row["cells"][0] for row in program.rows(view) if row["selected"]}


def confirm(program, text, button):
    box = program.wait(f"the question {text}", program.box)
    expect(box["text"] == text, f"another box: {box}")
    program.answer(button)


def between_the_panes(program, mouse, local, space):
    start = program.place("lvwLocal", "Termine für Mai.html")
    end = program.place("lvwRemote")
    program.select("lvwLocal", ["Termine für Mai.html"])
    mouse.drag(start, end)
    program.wait("the mark of the dragged row",
                 lambda: ghosts(program, "lvwLocal") == ["Termine für Mai.html"])
    mouse.release()
    confirm(program, "1 Dateien oder Ordner Uploaden?", "OK")
    program.wait("the upload", lambda: not differences(local, space, ["Termine für Mai.html"]))
    program.wait("an idle window", lambda: is_idle(program, "cmd_upload"))

    program.select("lvwRemote", ["bilder"])
    mouse.drag(program.place("lvwRemote", "bilder"), program.place("lvwLocal"))
    program.wait("the mark of the dragged row", lambda: ghosts(program, "lvwRemote") == ["bilder"])
    mouse.release()
    confirm(program, "1 Dateien oder Ordner Downloaden?", "OK")
    program.wait("the download", lambda: not differences(space, local, ["bilder"]))
    program.wait("an idle window", lambda: is_idle(program, "cmd_download"))


def cancelled(program, mouse):
    program.select("lvwRemote", ["downloads"])
    start = program.place("lvwRemote", "downloads")
    mouse.drag(start, (start[0], start[1] + 3 * 24))
    program.wait("the mark of the dragged row",
                 lambda: ghosts(program, "lvwRemote") == ["downloads"])
    mouse.release()  # on its own pane
    program.wait("the mark to go", lambda: not ghosts(program, "lvwRemote"))
    expect(program.box() is None, "a drop on the own pane asks something")


def from_the_desktop(program, mouse, source, files, space):
    with subprocess.Popen([source, "5", "780", *map(str, files)], stdout=subprocess.PIPE, text=True,
                          env={"DISPLAY": mouse._display, "QT_QPA_PLATFORM": "xcb",
                               "LC_ALL": "C.UTF-8"}) as other:
        try:
            mouse.do("search", "--sync", "--onlyvisible", "--pid", other.pid)
            mouse.drag((60, 820), program.place("lvwRemote"))
            mouse.rest(program)
            mouse.release()
            expect(other.stdout.readline().strip() == "taken", "the drop was refused")
        finally:
            other.terminate()
    confirm(program, f"{len(files)} Dateien oder Ordner Uploaden?", "OK")
    names = [file.name for file in files]
    program.wait("the files", lambda: not differences(files[0].parent, space, names))
    program.wait("an idle window", lambda: is_idle(program, "cmd_upload"))


def rubber_band(program, mouse):
    names = program.names("lvwLocal")
    low = program.place("lvwLocal")
    top = program.place("lvwLocal", names[2])
    mouse.drag(low, (low[0] + 30, top[1]))
    program.wait("the band's rows", lambda: marked_names(program, "lvwLocal") == set(names[2:]))
    mouse.release()
    expect(marked_names(program, "lvwLocal") == set(names[2:]), "the band's end changes the rows")


def run(arguments, folder, display):
    space, local, other = folder / "webspace", folder / "lokal", folder / "anderswo"
    (folder / "home").mkdir()
    make_web_space(space)
    make_local_folder(local)
    make_local_folder(other)
    (other / "Fotos").mkdir()
    (other / "Fotos" / "Ä.txt").write_text("ein Bild")
    with FtpServer(space, folder / "server.log") as server, \
            Program(arguments.program, arguments.driver, [command_line(server, local)],
                    folder / "home", display) as program:
        try:
            log_in(program)
            program.wait("the listing", lambda: "bilder" in program.names("lvwRemote"))
            program.ask("resize", object="frm_tarvelo", width=1200, height=760)
            mouse = Mouse(display)
            between_the_panes(program, mouse, local, space)
            cancelled(program, mouse)
            from_the_desktop(program, mouse, arguments.source,
                             [other / "notizen.txt", other / "Fotos"], space)
            rubber_band(program, mouse)
        except DriverError:
            with contextlib.suppress(DriverError):
                program.grab(Path(arguments.output) / "drag-failed.png")
                print("Log of the program:", program.text("txtLog"), sep="\n", file=sys.stderr)
            raise


def main():
    parser = parser_for(__doc__)
    parser.add_argument("--source", required=True, help="the built dragsource")
    parser.add_argument("--output", required=True, help="folder for a picture of a failure")
    arguments = parser.parse_args()
    Path(arguments.output).mkdir(parents=True, exist_ok=True)
    return carry_out("drag", run, arguments)


if __name__ == "__main__":
    sys.exit(main())
