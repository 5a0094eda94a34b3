#!/usr/bin/env python3
"""The main job, end to end, with the real program: log in through the command line, upload a file and
a folder, download a file and a folder, compare every byte. Buttons and rows are clicked as a user
would. Exits 0 only when everything has arrived."""
import contextlib
import sys
from pathlib import Path

from driver import DriverError, FtpServer, Program, carry_out, parser_for
from webspace import make_local_folder, make_web_space

UPLOADS = ["neue Bilder", "Termine für Mai.html"]
DOWNLOADS = ["bilder", "Über uns.html"]


def files_below(path):
    """Relative name and bytes of a file, or of every file of a folder; folders have no bytes."""
    if not path.is_dir():
        return {path.name: path.read_bytes()} if path.exists() else {}
    return {str(p.relative_to(path.parent)): None if p.is_dir() else p.read_bytes()
            for p in [path, *path.rglob("*")]}


def differences(source, target, names):
    """What of the names in folder source is not in folder target with the same bytes."""
    found = []
    for name in names:
        wanted = files_below(source / name)
        there = files_below(target / name)
        found += [item for item, content in wanted.items()
                  if item not in there or there[item] != content]
        found += [item + " (too much)" for item in there if item not in wanted]
    return found


def command_line(server, local):
    fields = ["127.0.0.1", server.user, server.password, f"{local}/", "/", "20", str(server.port),
              "1", "1", "", "Beispiel"]
    return "\t".join(fields)


def log_in(program):
    program.wait("the info screen", lambda: program.visible("frm_info"))
    program.close("frm_info")

    def message_or_window():
        box = program.box()
        return box if box and box["class"] == "QMessageBox" else None

    box = program.wait("the message after the login", message_or_window)
    if "Übertragenbutton" not in box["text"]:
        raise DriverError("unexpected message: " + box["text"])
    program.answer("OK")
    program.wait("the end of the message", lambda: program.box() is None)


def is_idle(program, button):
    return (program.enabled(button) and program.enabled("cmbRemoteDir")
            and not program.enabled("cmdAbort")
            and not any(row.get("ghosted") for row in program.rows("lvwRemote")))


def transfer(program, view, names, button, missing):
    """Marks rows, presses a transfer button, waits for the bytes and for the window to be idle."""
    program.select(view, names)
    rows_before = len(program.rows("lvwStatus"))
    program.click(button)
    try:
        program.wait(f"{names} to arrive", lambda: not missing())
    except DriverError as error:
        raise DriverError(f"{error}\nstill missing or different: {missing()}\n"
                          f"queue: {program.rows('lvwStatus')}") from None
    program.wait("the queue's rows",
                 lambda: len(program.rows("lvwStatus")) >= rows_before + len(names))
    program.wait("an idle window", lambda: is_idle(program, button))


def report(title, source, names):
    print(title)
    total = 0
    for name in names:
        for item, content in sorted(files_below(source / name).items()):
            if content is not None:
                total += len(content)
                print(f"    {len(content):9,d}  {item}")
    print(f"    {total:9,d}  bytes, all equal on both sides")


def run(arguments, folder, display):
    space, local, home = folder / "webspace", folder / "lokal", folder / "home"
    home.mkdir()
    make_web_space(space)
    make_local_folder(local)
    output = Path(arguments.output)
    output.mkdir(parents=True, exist_ok=True)
    with FtpServer(space, folder / "server.log") as server, \
            Program(arguments.program, arguments.driver, [command_line(server, local)], home,
                    display) as program:
        try:
            log_in(program)
            program.wait("the server's listing",
                         lambda: set(DOWNLOADS) <= set(program.names("lvwRemote")))
            program.grab(output / "before.png", "frm_tarvelo")
            transfer(program, "lvwLocal", UPLOADS, "cmd_upload",
                     lambda: differences(local, space, UPLOADS))
            program.wait("the new listing", lambda: set(UPLOADS) <= set(program.names("lvwRemote")))
            transfer(program, "lvwRemote", DOWNLOADS, "cmd_download",
                     lambda: differences(space, local, DOWNLOADS))
            program.wait("the new listing", lambda: set(DOWNLOADS) <= set(program.names("lvwLocal")))
            program.grab(output / "after.png", "frm_tarvelo")
        except DriverError:
            with contextlib.suppress(DriverError):
                program.grab(output / "failed.png")
                print("Log of the program:", program.text("txtLog"), sep="\n", file=sys.stderr)
            print("Log of the server:", (folder / "server.log").read_text(), sep="\n",
                  file=sys.stderr)
            raise
        program.close("frm_tarvelo")
        code = program.end()
        if code != 0:
            raise DriverError(f"the program ended with {code}:\n{program.output()}")
        if program.output():
            raise DriverError("the program wrote to its console:\n" + program.output())
    report("Uploaded", local, UPLOADS)
    report("Downloaded", space, DOWNLOADS)
    print(f"Screenshots: {output}/before.png, {output}/after.png")


def main():
    parser = parser_for(__doc__)
    parser.add_argument("--output", required=True, help="folder for screenshots")
    parser.add_argument("--offscreen", action="store_true",
                        help="Qt's offscreen platform in place of a virtual X display")
    return carry_out("e2e", run, parser.parse_args())


if __name__ == "__main__":
    sys.exit(main())
