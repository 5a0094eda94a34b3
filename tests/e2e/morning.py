#!/usr/bin/env python3
"""A morning of somebody who looks after a web site, with the real program and a real server: the first
start, a connection made and saved, an unknown certificate, a site of 500 files uploaded, every kind of
conflict, a script's permissions, a page edited, things renamed and deleted, a connection lost in the
middle of an upload and taken up again, the log saved, a setting changed, the end. After every step the
disks on both sides are compared. Exits 0 only when all of it holds, 77 when this user cannot run the
server."""
import random
import shutil
import sys
import time
from pathlib import Path

from driver import DriverError, Program, carry_out, parser_for
from realserver import KINDS, Gate, RealServer, can_run, upload_limit
from transfer import differences
from user import User, opened, opener, sample
from webspace import make_web_space, page

SITE_FILES = 500
BIG = 8 << 20  # bytes; at 2 MiB a second it can be cut in the middle


def expect(what, is_there, wanted):
    if is_there != wanted:
        raise DriverError(f"{what}: {is_there!r} in place of {wanted!r}")


def make_site(folder):
    """500 files in 25 folders, of every size from nothing to 40 KB."""
    dice = random.Random(500)
    for number in range(SITE_FILES):
        size = dice.choice((0, 1, 300, 4_000, 40_000)) if number else 4_000
        sample(folder / f"Kapitel {number // 100}" / f"Teil {number // 20 % 5}" / f"Seite {number:03}.html",
               dice.randbytes(size))


class Morning:
    def __init__(self, user, server, gate, folder):
        self.user = user
        self.program = user.program
        self.server = server
        self.gate = gate
        self.space = folder / "webspace"
        self.local = folder / "lokal"
        self.home = folder / "home"
        self.notes = self.home / "opened"

    def first_start(self):
        u = self.user
        u.sees("frm_info")
        u.presses_f1("frm_info", "Info-Anzeige")
        u.passes_info()
        u.sees("frmConnect")
        u.presses_f1("frmConnect", "Verbindungen")
        u.makes_connection("meine_seite", "127.0.0.1", self.gate.port, self.server.user,
                           self.server.password)
        self.program.click("Command1")
        u.sees("frm_get_folder")
        u.presses_f1("frm_get_folder", "Ordner wählen")
        self.program.enter("tx_pfad", str(self.local))
        self.program.click("cmd_ok")
        u.no_longer_sees("frm_get_folder")
        expect("start folder", self.program.text("txtLocalDir"), f"{self.local}")
        self.program.click("cmd_profil_speichern")
        profiles = self.home / "XDG_DATA_HOME" / "Tarvelo FTP" / "mo_def"
        if not profiles.exists():
            profiles = Path(self.program.process.args[0]).parent / "mo_def"
        saved = (profiles / "meine_seite.login").read_text("cp1252")
        if self.server.password in saved:
            raise DriverError("the saved profile shows the password")

    def log_in(self):
        u = self.user
        self.program.click("cmdOK")
        u.sees("frm_zertifikat")
        u.presses_f1("frm_zertifikat", "Zertifikat prüfen")
        self.program.click("cmd_immer")
        self.program.wait("the server's listing",
                          lambda: "index.html" in self.program.names("lvwRemote"))
        self.program.wait("the local listing", lambda: "site" in self.program.names("lvwLocal"))
        u.idle()
        expect("connected", u.is_connected(), True)

    def browse(self):
        u, p = self.user, self.program
        p.open("lvwRemote", "bilder")
        p.wait("the folder", lambda: "Sommerfest 2024" in p.names("lvwRemote"))
        u.idle()
        p.open("lvwRemote", "Sommerfest 2024")
        p.wait("the folder", lambda: "Bild 2 (groß).png" in p.names("lvwRemote"))
        u.idle()
        for back in ("logo.png", "index.html"):
            p.key("Backspace", "lvwRemote")
            p.wait("the folder above", lambda name=back: name in p.names("lvwRemote"))
            u.idle()
        for widget, title in (("lvwRemote", "Rechte Seite: der Server"), ("txtLog", "Das Logfenster"),
                              ("lvwLocal", "Linke Seite: Ihr Computer"),
                              ("lvwStatus", "Übertragungsliste und Fortschritt")):
            u.presses_f1(widget, title)

    def upload_site(self):
        expect("rows", self.user.transfers("lvwLocal", ["site"]), ["Upload"])
        expect("differences", differences(self.local, self.space, ["site"]), [])

    def conflicts(self, view, source, target):
        """Both sides have the same four names; each is answered in another way."""
        u = self.user
        sample(source / "a.html", "neu")
        sample(source / "b.html", "neuer Inhalt")
        sample(source / "c.html", "neu und unerwünscht")
        whole = random.Random(1).randbytes(50_000)
        sample(source / "d.bin", whole)
        for name in ("a.html", "b.html", "c.html"):
            sample(target / name, f"alt {name}")
        sample(target / "d.bin", whole[:20_000])
        self.server.adopt()
        self.refresh({"a.html", "b.html", "c.html", "d.bin"})
        answers = [("a.html", self.overwrites_after_reading), ("b.html", u.renames_to("b-alt.html")),
                   ("b.html", u.overwrites),  # asked again
                   ("c.html", u.skips), ("d.bin", u.resumes)]
        rows = u.transfers(view, ["a.html", "b.html", "c.html", "d.bin"], answers, False)
        word = "Upload" if view == "lvwLocal" else "Download"
        expect("rows", rows, [word] * 3)
        expect("a.html", (target / "a.html").read_text(), "neu")
        expect("b.html", (target / "b.html").read_text(), "neuer Inhalt")
        expect("b-alt.html", (target / "b-alt.html").read_text(), "alt b.html")
        expect("c.html", (target / "c.html").read_text(), "alt c.html")
        expect("d.bin", (target / "d.bin").read_bytes() == whole, True)

    def overwrites_after_reading(self):
        """Looks into the help of both dialogs first. Going back from the renaming asks again."""
        u = self.user
        u.presses_f1("frmTransfer", "Datei ist schon vorhanden")
        self.program.click("cmdRename")
        u.sees("frmRename")
        u.presses_f1("frmRename", "Vorhandene Datei umbenennen")
        self.program.enter("txtRename", "a.html")  # taken, so nothing is renamed
        self.program.click("cmdOK")
        u.is_asked_about("a.html")
        u.overwrites()

    def refresh(self, names):
        for bar, view in (("tbToolBar_rem", "lvwRemote"), ("tbToolBar", "lvwLocal")):
            self.program.click(f"{bar}/Refresh")
            self.program.wait("the listing", lambda v=view: names <= set(self.program.names(v)))
            self.user.idle()

    def upload_conflicts(self):
        self.user.presses_f1("cmd_upload", "Dateien und Ordner übertragen")
        self.conflicts("lvwLocal", self.local, self.space)

    def download_conflicts(self):
        for file in (self.local / "b-alt.html", self.space / "b-alt.html"):
            file.unlink(missing_ok=True)
        self.conflicts("lvwRemote", self.space, self.local)

    def folder_conflict(self):
        """Into the folder that is there: equal names are replaced, others stay."""
        sample(self.local / "bilder" / "logo.png", "neues Logo")
        self.refresh({"bilder"})
        rows = self.user.transfers("lvwLocal", ["bilder"], [("bilder", self.user.overwrites)])
        expect("rows", rows, ["Upload"])
        expect("logo", (self.space / "bilder" / "logo.png").read_text(), "neues Logo")
        expect("other picture", (self.space / "bilder" / "Sommerfest 2024" / "Bild 1.png").exists(), True)

    def permissions(self):
        u, p = self.user, self.program
        script = self.space / "cgi-bin" / "zähler.cgi"
        script.chmod(0o644)
        u.goes_to_remote("/cgi-bin/", "zähler.cgi")
        p.select("lvwRemote", ["zähler.cgi"])
        p.click("mnu_rechte")
        u.sees("frm_rechte")
        u.presses_f1("frm_rechte", "Dateirechte einstellen")
        p.click("cmd_chmod")
        u.no_longer_sees("frm_rechte")
        u.idle()
        expect("mode", oct(script.stat().st_mode & 0o777), "0o755")
        rights = {row["cells"][0]: row["cells"][3] for row in p.rows("lvwRemote")}
        expect("shown mode", rights["zähler.cgi"], "755")
        u.goes_to_remote("/", "index.html")

    def edit_page(self):
        """Fetch to view, edit the copy, let the program send it back."""
        u, p = self.user, self.program
        p.select("lvwRemote", ["impressum.html"])
        p.click("tbToolBar_rem/ViewFile")
        p.wait("the opener", lambda: opened(self.notes))
        u.idle()
        copy = self.home / "TEMP" / "tarvelo_ftp_temp" / "impressum.html"
        expect("opened", opened(self.notes)[-1].removeprefix("file://"), str(copy))
        expect("fetched", copy.read_bytes(), (self.space / "impressum.html").read_bytes())
        changed = page("Impressum", "Gartenfreunde Sonnental e. V., Gießkannenweg 3")
        copy.write_text(changed)
        box = p.wait("the question about the edited page", p.box)
        expect("the question", box["text"], "/impressum.html\nwurde geändert – zum Server zurückspielen?")
        p.answer("Ja")
        p.wait("the edited page on the server",
               lambda: (self.space / "impressum.html").read_text() == changed)
        u.idle()

    def rename(self):
        u, p = self.user, self.program
        for view, folder, old, new in (("lvwRemote", self.space, "robots.txt", "Roboter für alle.txt"),
                                       ("lvwLocal", self.local, "a.html", "ä neu.html")):
            content = (folder / old).read_bytes()
            p.select(view, [old])
            p.click("tbToolBar/RenameFile" if view == "lvwLocal" else "tbToolBar_rem/RenameFile")
            p.wait("the line to edit", lambda v=view, n=new: p.caption(v, n) is None)
            p.wait("the new name", lambda v=view, n=new: n in p.names(v))
            u.idle()
            expect("renamed", ((folder / old).exists(), (folder / new).read_bytes()), (False, content))

    def delete_folder(self):
        u, p = self.user, self.program
        p.select("lvwRemote", ["site"])
        p.key("Delete", "lvwRemote")
        u.reads("Sind Sie sicher, dass Sie 1 Dateien oder Ordner löschen möchten?", "OK")
        p.wait("the folder's end", lambda: "site" not in p.names("lvwRemote"))
        u.idle()
        expect("deleted", (self.space / "site").exists(), False)
        expect("kept here", (self.local / "site").exists(), True)

    def lose_connection(self):
        """In the middle of an upload the line goes dead; after a new login it is resumed."""
        u, p = self.user, self.program
        content = random.Random(2).randbytes(BIG)
        sample(self.local / "film.mp4", content)
        self.refresh({"index.html"} & set(p.names("lvwLocal")))
        p.wait("the film", lambda: "film.mp4" in p.names("lvwLocal"))
        arrived = self.space / "film.mp4"
        p.select("lvwLocal", ["film.mp4"])
        p.click("cmd_upload")
        p.wait("a part of the film", lambda: arrived.exists() and arrived.stat().st_size > BIG // 8)
        self.gate.shut()
        self.server.drop_sessions()
        p.wait("the red light", lambda: not u.is_connected())
        p.wait("the queue's row", lambda: p.rows("lvwStatus")[-1]["cells"][0] == "Upload verweigert")
        if arrived.stat().st_size >= BIG:
            raise DriverError("the line was cut too late")
        self.gate.open()
        u.idle()
        p.click("img_ampel_rot")
        u.sees("frmConnect")
        expect("the connection", p.text("cbo_profil"), "meine_seite")
        p.click("cmdOK")  # the certificate is trusted: nothing is asked
        p.wait("the green light", u.is_connected)
        p.wait("the film's part", lambda: "film.mp4" in p.names("lvwRemote"))
        u.idle()
        expect("rows", u.transfers("lvwLocal", ["film.mp4"], [("film.mp4", u.resumes)]), ["Upload"])
        expect("the film", arrived.read_bytes() == content, True)
        if "von vorn" in p.text("txtLog"):
            raise DriverError("the film was not resumed")

    def save_log(self):
        p = self.program
        p.click("cmd_log_speichern")
        p.wait("the log's last line", lambda: "Die Logdatei wurde nach" in p.text("txtLog"))
        file = Path(p.text("txtLog").split("Die Logdatei wurde nach ")[-1].split(" gespeichert.")[0])
        text = file.read_text("cp1252")
        if "film.mp4" not in text and "STOR" not in text and "226" not in text:
            raise DriverError("the saved log says nothing of the upload:\n" + text)
        if self.server.password in text:
            raise DriverError("the saved log shows the password")

    def settings(self):
        u, p = self.user, self.program
        sample(self.local / ".versteckt", "x")
        p.click("mnu_einstell")
        u.sees("frm_einstellungen")
        u.presses_f1("frm_einstellungen", "Programmeinstellungen")
        logs = self.local / "protokolle"
        logs.mkdir()
        p.click("cmd_ordner_log")
        u.sees("frm_get_folder")
        p.enter("tx_pfad", str(logs))
        p.click("cmd_ok")
        u.no_longer_sees("frm_get_folder")
        expect("log folder", p.text("tx_logfolder"), str(logs))
        p.key("Ctrl+Tab", "Tab1")
        p.wait("the tab", lambda: p.visible("chk_hidden"))
        p.click("chk_hidden")
        p.click("cmd_ok")
        u.no_longer_sees("frm_einstellungen")
        p.wait("the hidden file", lambda: ".versteckt" in p.names("lvwLocal"))
        stored = (self.home / "XDG_CONFIG_HOME" / "Tarvelo FTP" / "Tarvelo FTP.ini").read_text()
        expect("stored settings", ("HiddenFile=True" in stored, f"LogFolder={logs}" in stored),
               (True, True))
        p.click("m_h_2")
        u.sees("frmAbout")
        u.presses_f1("frmAbout", "Winsock Info")
        p.click("cmdOk")
        u.no_longer_sees("frmAbout")

    def leave(self):
        """Closing the window while connected says goodbye and asks nothing. Fetched files stay."""
        self.program.close("frm_tarvelo")
        expect("exit code", self.program.end(), 0)
        expect("fetched file", (self.home / "TEMP" / "tarvelo_ftp_temp" / "impressum.html").exists(),
               True)
        expect("console", self.program.output(), "")

    STEPS = ("first_start", "log_in", "browse", "upload_site", "upload_conflicts", "download_conflicts",
             "folder_conflict", "permissions", "edit_page", "rename", "delete_folder", "lose_connection",
             "save_log", "settings", "leave")

    def run(self, output):
        for step in self.STEPS:
            begin = time.monotonic()
            try:
                getattr(self, step)()
            except (DriverError, OSError):
                print(f"in the step {step}", file=sys.stderr)
                if self.program.process.poll() is None:
                    if output:
                        self.program.grab(output / "failed.png")
                    print("Log:", self.program.text("txtLog")[-3000:], sep="\n", file=sys.stderr)
                raise
            if output and self.program.process.poll() is None:
                self.program.grab(output / f"{step}.png", "frm_tarvelo" if step != "first_start" else None)
            print(f"{time.monotonic() - begin:6.1f} s  {step}", flush=True)


def run(arguments, folder, display):
    folder.chmod(0o755)  # the server's account has to reach its folder
    make_web_space(folder / "webspace")
    make_site(folder / "lokal" / "site")
    home = folder / "home"
    home.mkdir()
    path, _ = opener(home)
    if arguments.output:
        arguments.output.mkdir(parents=True, exist_ok=True)
    # Alone in its folder, the program keeps its profiles beside itself, as from a memory stick.
    program_file = folder / "stick" / "tarvelo-ftp"
    program_file.parent.mkdir()
    shutil.copy(arguments.program, program_file)
    with RealServer(arguments.ftp_server, arguments.server, folder / "webspace",
                    ["--tls", *upload_limit(arguments.server, 2048)]) as server, \
            Gate(server.port) as gate, \
            Program(program_file, arguments.driver, [], home, display,
                    timeout=120, variables={"PATH": f"{path}:/usr/bin:/bin"}) as program:
        Morning(User(program), server, gate, folder).run(arguments.output)


def main():
    parser = parser_for(__doc__)
    parser.add_argument("--ftp-server", required=True, help="the built ftp-server")
    parser.add_argument("--server", choices=KINDS, default="vsftpd")
    parser.add_argument("--output", type=Path, help="folder for a picture of every step")
    arguments = parser.parse_args()
    if not can_run(arguments.server):
        print(f"NOT RUN: {arguments.server} needs root")
        return 77
    return carry_out("morning", run, arguments)


if __name__ == "__main__":
    sys.exit(main())
