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


def picks_another_folder(program, good):
    """The folder of the connection does not answer, so the picker shows another one."""
    program.wait("the info screen", lambda: program.visible("frm_info"))
    program.close("frm_info")
    program.wait("the connection dialog", lambda: program.visible("frmConnect"))
    program.key("Ctrl+Tab", "Tab1")
    program.wait("the tab", lambda: program.visible("Command1"))
    program.click("Command1")
    program.wait("the folder picker", lambda: program.visible("frm_get_folder"))
    expect(program.text("tx_pfad") != program.text("txtLocalDir"), "the picker shows the dead folder")
    program.click("cmd_desktop")
    program.enter("tx_pfad", str(good))
    program.click("cmd_ok")
    program.wait("the picked folder", lambda: program.text("txtLocalDir") == str(good))
    program.close("frmConnect")
    program.wait("the window", lambda: program.visible("frm_tarvelo") and not program.box())


def saves_no_log(program):
    program.click("cmd_log_speichern")
    program.wait("the end of saving", lambda: "log.txt gespeichert." in program.text("txtLog"))


def survives_a_dead_mount(arguments, folder, display):
    dead, good = folder / "tot", folder / "gut"
    for path in (dead, good):
        path.mkdir()
        (path / "datei.txt").write_text("x")
    home = folder / "home2"
    settings = home / "XDG_CONFIG_HOME" / "Tarvelo FTP" / "Tarvelo FTP.ini"
    settings.parent.mkdir(parents=True)
    settings.write_text(f"[Settings]\nLocalDir={dead}\n[Properties]\nLogFolder={dead}\nLogName=True\n")
    (settings.parent.parent / "user-dirs.dirs").write_text(f'XDG_DESKTOP_DIR="{dead}"\n')
    with Program(arguments.program, arguments.driver, [], home, display,
                 variables={"TARVELO_HANGING": str(dead)}) as program:
        picks_another_folder(program, good)
        saves_no_log(program)
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
