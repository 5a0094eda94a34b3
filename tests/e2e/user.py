"""What a user does with the program, step by step; every step ends when the program is through."""
from contextlib import suppress
from pathlib import Path

from driver import DriverError


class User:
    def __init__(self, program):
        self.program = program

    # --- dialogs

    def sees(self, window):
        """Waits for a dialog or window."""
        self.program.wait(window, lambda: self.program.visible(window))

    def no_longer_sees(self, window):
        self.program.wait(f"the end of {window}", lambda: window not in self.windows())

    def windows(self):
        return [window["name"] for window in self.program.ask("windows")["windows"]]

    def reads(self, words, button):
        """Waits for a message box with these words, and answers it."""
        def open_box():
            box = self.program.box()
            return box if box and box["class"] == "QMessageBox" else None
        box = self.program.wait(f"a box with {words}", open_box)
        if words not in box["text"]:
            raise DriverError(f"another box than one with {words}: {box}")
        self.program.answer(button)

    def presses_f1(self, window, page):
        """F1 must open the page with that title, whatever dialog is on top."""
        p = self.program
        p.key("F1", window)
        p.wait(f"the help page {page} (F1 in {window})", lambda: self.help_page() == page)
        p.close("frm_hilfe")
        self.no_longer_sees("frm_hilfe")

    def help_page(self):
        rows = [r["cells"][0] for r in self.program.rows("lst_inhalt") if r["selected"]]
        return rows[0] if rows and self.program.visible("frm_hilfe") else None

    # --- state of the window

    def idle(self):
        """Waits until no command runs and no dialog is open."""
        try:
            self.program.wait("an idle window", lambda: not self.busy_with())
        except DriverError as error:
            raise DriverError(f"{error}; still: {self.busy_with()}") from error

    def busy_with(self):
        """What shows that a command runs; empty when the window is idle."""
        p = self.program
        signs = {"a dialog": p.box() is not None,
                 "a command": p.is_waiting(),
                 "folder box disabled": not p.enabled("cmbRemoteDir"),
                 "tool bar disabled": not p.enabled("tbToolBar/Refresh"),
                 "abort enabled": p.enabled("cmdAbort")}
        signs |= {f"ghosted rows in {view}": any(row.get("ghosted") for row in p.rows(view))
                  for view in ("lvwRemote", "lvwLocal")}
        return [sign for sign, there in signs.items() if there]

    def is_connected(self):
        return self.program.visible("img_ampel_gruen")

    # --- connecting

    def passes_info(self):
        self.sees("frm_info")
        self.program.close("frm_info")

    def makes_connection(self, name, host, port, user, password):
        """Fills in the connection dialog from nothing, and saves."""
        p = self.program
        self.sees("frmConnect")
        p.click("cmd_profil_neu")
        p.enter("cbo_profil", name)
        p.enter("txtRemoteHost", host)
        p.enter("txtUserName", user)
        p.enter("txtPassword", password)
        p.key("Ctrl+Tab", "Tab1")
        p.wait("the second tab", lambda: p.visible("txtRemotePort"))
        p.enter("txtRemotePort", str(port))
        p.click("cmd_profil_speichern")

    # --- moving about

    def goes_to_remote(self, folder, entry):
        """Types a server folder; there when the entry is listed."""
        p = self.program
        p.enter("cmbRemoteDir", folder)
        p.key("Return", "cmbRemoteDir")
        p.wait(f"{entry} in {folder}", lambda: entry in p.names("lvwRemote"))
        self.idle()

    def goes_to_local(self, folder, entry):
        p = self.program
        p.enter("cmbLocalDir", f"{folder}/")
        p.wait(f"{entry} in {folder}", lambda: entry in p.names("lvwLocal"))

    # --- transfers

    def transfers(self, view, names, answers=(), all_arrive=True):
        """Marks rows and presses the arrow. Each answer is a pair of the name that the question must
        be about, and a function that answers it."""
        p = self.program
        p.select(view, names)
        before = len(p.rows("lvwStatus"))
        p.click("cmd_upload" if view == "lvwLocal" else "cmd_download")
        for name, answer in answers:
            self.is_asked_about(name)
            answer()
        self.idle()
        if all_arrive:
            p.wait("the queue's rows", lambda: len(p.rows("lvwStatus")) == before + len(names))
        return [row["cells"][0] for row in p.rows("lvwStatus")[before:]]

    def is_asked_about(self, name):
        self.sees("frmTransfer")
        self.program.wait(f"the question about {name}",
                          lambda: f"/{name}(" in self.program.describe("lblMessage")["text"])

    def overwrites(self):
        self.program.click("cmdTransfer")

    def resumes(self):
        self.program.click("cmdResume")

    def skips(self):
        self.program.click("cmdCancel")

    def renames_to(self, name):
        """A function that gives the existing file that name."""
        def answer():
            self.program.click("cmdRename")
            self.sees("frmRename")
            self.program.enter("txtRename", name)
            self.program.click("cmdOK")
        return answer


def sample(path, content):
    """Writes a file, and its folder when that is missing."""
    path = Path(path)
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(content if isinstance(content, bytes) else content.encode())
    return path


def opener(folder):
    """A desktop opener that only takes notes. Returns the folder for PATH and the file of notes."""
    notes = Path(folder) / "opened"
    script = sample(Path(folder) / "bin" / "xdg-open", f'#!/bin/sh\nprintf "%s\\n" "$1" >>"{notes}"\n')
    script.chmod(0o755)
    return script.parent, notes


def opened(notes):
    """What was handed to the desktop so far."""
    with suppress(FileNotFoundError):
        return notes.read_text().splitlines()
    return []
