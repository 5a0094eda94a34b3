#!/usr/bin/env python3
"""Walks through the real program as a new user would and takes the pictures of the help."""
import argparse
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

TOP = Path(__file__).resolve().parent.parent
sys.path.insert(0, str(TOP / "tests" / "e2e"))
from driver import Display, FtpServer, Program  # noqa: E402
from webspace import make_local_folder, make_web_space  # noqa: E402

PICTURES = TOP / "resources" / "help" / "bilder"
ANNA = Path("/tmp/anna")  # seen in the pictures, so no random name
LOCAL = ANNA / "Gartenfreunde"


class Walk:
    """One run of the program; every method is a stretch of the way and takes its pictures."""

    def __init__(self, program, server):
        self.program = program
        self.server = server

    def picture(self, name, window, file=None):
        self.program.grab(file or PICTURES / f"{name}.png", window)

    def open(self, window):
        self.program.wait(window, lambda: self.program.visible(window))

    def gone(self, window):
        def closed():
            names = [w["name"] for w in self.program.ask("windows")["windows"]]
            return window not in names
        self.program.wait(f"the end of {window}", closed)

    def tab(self):
        """To the next tab of the dialog on top."""
        self.program.key("Ctrl+Tab", "Tab1")

    def transferred(self, rows):
        """Waits for the queue to have that many rows, and for the window to be idle."""
        p = self.program
        p.wait(f"{rows} rows in the queue", lambda: len(p.rows("lvwStatus")) == rows)
        p.wait("an idle window", lambda: p.enabled("cmbRemoteDir") and "Cdup" in
               {row["kind"] for row in p.rows("lvwRemote")})

    def start(self):
        self.open("frm_info")
        self.picture("frm_info", "frm_info")
        self.program.close("frm_info")
        self.open("frmConnect")

    def fill_in_connection(self):
        p = self.program
        p.click("cmd_profil_neu")
        p.enter("cbo_profil", "gartenfreunde")
        p.enter("txtRemoteHost", "ftp.gartenfreunde.example")
        p.enter("txtUserName", self.server.user)
        p.enter("txtPassword", self.server.password)
        p.enter("txt_bemerkungen", "Webseite des Vereins")
        self.picture("frmConnect", "frmConnect")
        self.tab()
        p.enter("txtLocalDir", f"{LOCAL}/")
        p.enter("txtRemoteDir", "/html")
        self.picture("frmConnect_erweitert", "frmConnect")
        p.click("Command1")
        self.open("frm_get_folder")
        p.wait("the folder's place in the tree", lambda: "Gartenfreunde" in p.text("tx_pfad"))
        self.picture("frm_get_folder", "frm_get_folder")
        p.key("Escape", "frm_get_folder")
        self.gone("frm_get_folder")
        self.tab()
        self.picture("frmConnect_proxy", "frmConnect")
        self.tab()

    def log_in(self):
        """To the server that is really there, whose certificate nobody knows."""
        p = self.program
        p.enter("txtRemoteHost", "localhost")
        self.tab()
        p.enter("txtRemotePort", str(self.server.port))
        p.enter("txtRemoteDir", "/")
        p.click("cmd_profil_speichern")
        p.click("cmdOK")
        self.open("frm_zertifikat")
        self.picture("frm_zertifikat", "frm_zertifikat")
        p.click("cmd_immer")
        p.wait("the server's listing", lambda: "index.html" in p.names("lvwRemote"))
        p.wait("the local listing", lambda: "neue Bilder" in p.names("lvwLocal"))
        p.wait("an idle window", lambda: p.enabled("cmbRemoteDir"))

    def transfer(self):
        p = self.program
        p.ask("resize", object="frm_tarvelo", width=1240, height=780)  # all columns in sight
        p.select("lvwLocal", ["neue Bilder", "Termine für Mai.html"])
        p.click("cmd_upload")
        self.transferred(2)
        p.wait("the new listing", lambda: "neue Bilder" in p.names("lvwRemote"))
        p.select("lvwRemote", ["impressum.html"])
        p.click("cmd_download")
        self.transferred(3)
        p.wait("the new listing", lambda: "impressum.html" in p.names("lvwLocal"))
        p.select("lvwLocal", ["notizen.txt"])
        self.picture("frm_tarvelo", "frm_tarvelo")
        p.grab(TOP / "docs" / "screenshot.png", "frm_tarvelo")

    def conflict(self):
        p = self.program
        (LOCAL / "impressum.html").write_text("kurz")
        p.click("tbToolBar/Refresh")
        p.select("lvwRemote", ["impressum.html"])
        p.click("cmd_download")
        self.open("frmTransfer")
        self.picture("frmTransfer", "frmTransfer")
        p.click("cmdRename")
        self.open("frmRename")
        self.picture("frmRename", "frmRename")
        p.key("Escape", "frmRename")
        self.open("frmTransfer")  # a download asks once more
        p.click("cmdCancel")
        p.wait("an idle window", lambda: p.box() is None and p.enabled("cmbRemoteDir"))

    def permissions(self):
        p = self.program
        p.select("lvwRemote", ["index.html"])
        p.click("mnu_rechte")
        self.open("frm_rechte")
        for box in ("chk_rechte1_0", "chk_rechte1_1", "chk_rechte2_0", "chk_rechte3_0"):
            p.click(box)
        self.picture("frm_rechte", "frm_rechte")
        p.key("Escape", "frm_rechte")
        p.wait("the end of the dialog", lambda: p.box() is None)

    def settings(self):
        p = self.program
        p.click("mnu_einstell")
        self.open("frm_einstellungen")
        self.picture("frm_einstellungen", "frm_einstellungen")
        self.tab()
        self.picture("frm_einstellungen_sonstiges", "frm_einstellungen")
        self.tab()
        self.picture("frm_einstellungen_sicherheit", "frm_einstellungen")
        p.key("Escape", "frm_einstellungen")
        p.wait("the end of the dialog", lambda: p.box() is None)

    def about(self):
        self.program.click("m_h_2")
        self.open("frmAbout")
        self.picture("frmAbout", "frmAbout")
        self.program.click("cmdOk")


def make_certificate(folder):
    file = folder / "certificate.pem"
    subprocess.run(["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "365",
                    "-subj", "/O=Gartenfreunde Sonnental/CN=ftp.gartenfreunde.example",
                    "-keyout", folder / "key.pem", "-out", file], check=True, capture_output=True)
    file.write_text(file.read_text() + (folder / "key.pem").read_text())
    return file


def run(arguments, folder):
    program_file = ANNA / "Tarvelo FTP" / "tarvelo-ftp"  # keeps its profiles beside itself
    program_file.parent.mkdir(parents=True)
    shutil.copy(arguments.program, program_file)
    make_web_space(folder / "webspace")
    make_local_folder(LOCAL)
    german = {"HOME": str(ANNA), "LC_ALL": "de_DE.UTF-8", "LANG": "de_DE.UTF-8", "TZ": "Europe/Berlin"}
    with FtpServer(folder / "webspace", folder / "server.log",
                   ["--certificate", str(make_certificate(folder))]) as server, \
            Display() as display, \
            Program(program_file, arguments.driver, [], ANNA / ".own", display.name,
                    variables=german) as program:
        walk = Walk(program, server)
        for stretch in (walk.start, walk.fill_in_connection, walk.log_in, walk.transfer,
                        walk.conflict, walk.permissions, walk.settings, walk.about):
            print(stretch.__name__)
            stretch()


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--program", required=True)
    parser.add_argument("--driver", required=True, help="the built e2e_driver")
    arguments = parser.parse_args()
    if ANNA.exists():
        sys.exit(f"{ANNA} is in the way")
    PICTURES.mkdir(exist_ok=True)
    try:
        with tempfile.TemporaryDirectory(prefix="tarvelo-help-") as folder:
            run(arguments, Path(folder))
    finally:
        shutil.rmtree(ANNA, ignore_errors=True)


if __name__ == "__main__":
    main()
