#!/usr/bin/env python3
"""What only the real program can show: it starts from an empty folder without a word on its console,
speaks German without any file of the system, and a folder that never answers (a dead mount) leaves
the window usable. Exits 0 only when all of that holds."""
import shutil
import sys

from driver import DriverError, Program, carry_out, parser_for


def expect(condition, what):
    if not condition:
        raise DriverError(what)


def start(program):
    program.wait("the info screen", lambda: program.visible("frm_info"))
    program.close("frm_info")
    program.wait("the connection dialog", lambda: program.visible("frmConnect"))
    program.close("frmConnect")
    program.wait("the window", lambda: program.visible("frm_tarvelo") and not program.box())


def finish(program):
    program.close("frm_tarvelo")
    code = program.end()
    expect(code == 0, f"the program ended with {code}")
    expect(not program.output(), "the program wrote to its console:\n" + program.output())


def runs_alone(arguments, folder, display):
    alone = folder / "leer"
    alone.mkdir()
    copy = shutil.copy(arguments.program, alone)
    # As a bare system calls it: no runtime folder, a locale without a character set.
    bare = {"XDG_RUNTIME_DIR": "", "LANG": "C", "LC_ALL": "C"}
    with Program(copy, arguments.driver, [], folder / "home1", display, variables=bare) as program:
        start(program)
        finish(program)


def survives_a_dead_mount(arguments, folder, display):
    dead, good = folder / "tot", folder / "gut"
    for path in (dead, good):
        path.mkdir()
        (path / "datei.txt").write_text("x")
    with Program(arguments.program, arguments.driver, [], folder / "home2", display,
                 variables={"TARVELO_HANGING": str(dead)}) as program:
        start(program)
        program.enter("cmbLocalDir", f"{dead}/")
        program.wait("the empty list of the dead folder",
                     lambda: len(program.rows("lvwLocal")) == 1)
        expect(program.enabled("mnuRefresh"), "the commands are gone")
        program.click("tbToolBar/Refresh")
        program.enter("cmbLocalDir", f"{good}/")
        program.wait("the other folder", lambda: "datei.txt" in program.names("lvwLocal"))
        program.enter("cmbLocalDir", f"{dead}/")
        finish(program)


def main():
    def run(*details):
        for check in (runs_alone, survives_a_dead_mount):
            check(*details)
            print("holds:", check.__name__.replace("_", " "))
    parser = parser_for(__doc__)
    parser.add_argument("--offscreen", action="store_true",
                        help="Qt's offscreen platform in place of a virtual X display")
    return carry_out("window", run, parser.parse_args())


if __name__ == "__main__":
    sys.exit(main())
