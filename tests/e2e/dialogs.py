#!/usr/bin/env python3
"""Pictures of every dialog, tab, box and menu, light and dark, at 100 % and at 200 %. No test: somebody
has to look at them."""
import argparse
import subprocess
import sys
import tempfile
from pathlib import Path

from driver import Display, DriverError, FtpServer, Program
from user import User, opener, sample
from webspace import make_local_folder, make_web_space

LONG = "gartenfreunde_sonnental_alter_server_nur_zum_nachsehen"
DEEP = "Vereinsarbeit/Öffentlichkeitsarbeit und Presse/Rundbriefe, noch nicht freigegeben"
PAGE = "Rundbrief zum Sommerfest am 12. Juli (letzte Fassung).html"


def certificate(folder, name, host="ftp.gartenfreunde.example", days=90):
    """A self-signed certificate with its key; one of -1 days is out of date."""
    key, request, file = (folder / f"{name}.{end}" for end in ("key", "csr", "pem"))
    subprocess.run(["openssl", "req", "-newkey", "rsa:2048", "-nodes", "-keyout", key, "-out", request,
                    "-subj", f"/O=Gartenfreunde Sonnental/CN={host}"], check=True, capture_output=True)
    subprocess.run(["openssl", "x509", "-req", "-in", request, "-signkey", key, "-days", str(days),
                    "-out", file], check=True, capture_output=True)
    file.write_text(file.read_text() + key.read_text())
    return file


class Walk:
    """One run of the program; every method is a stretch of the way and takes its pictures."""

    def __init__(self, program, folder, prefix):
        self.program = program
        self.user = User(program)
        self.folder = folder
        self.prefix = prefix

    def picture(self, name, window="top"):
        self.program.grab(f"{self.prefix}{name}.png", window)

    def dialog(self, name, window, button="Escape"):
        self.user.sees(window)
        self.picture(name, window)
        self.leave(window, button)

    def leave(self, window, button="Escape"):
        if button == "Escape":
            self.program.key(button, window)
        else:
            self.program.click(button)
        self.user.no_longer_sees(window)

    def box(self, name, button):
        """A picture of the message box on top, which is then answered."""
        box = self.program.wait(name, lambda: (b := self.program.box()) and b["class"][0] == "Q" and b)
        self.picture(name)
        self.program.answer(button)
        self.program.wait(f"the end of {name}", lambda: self.program.box() != box)

    def menu(self, name, widget, row=None):
        self.program.ask("menu", object=widget, row=row)
        self.program.wait(f"the menu of {widget}", lambda: self.picture(name) is None)
        self.program.key("Escape", "top")

    def tabs(self, name, window, count):
        self.user.sees(window)
        for tab in range(count):
            self.picture(f"{name}-{tab + 1}", window)
            self.program.key("Ctrl+Tab", "Tab1")

    def start(self):
        self.user.sees("frm_info")
        if "dark" in self.prefix:
            self.program.ask("dark")
        self.dialog("info", "frm_info", "cmd_auswahl_6")

    def connection(self):
        p = self.program
        self.tabs("connect-empty", "frmConnect", 3)
        p.click("cmd_profil_loeschen")
        self.box("connect-none-chosen", "OK")
        p.click("cmd_profil_neu")
        for field, text in (("cbo_profil", LONG), ("txtRemoteHost", "localhost"), ("txtUserName", "web01"),
                            ("txtPassword", "geheim"), ("txt_bemerkungen", "Webseite des Vereins")):
            p.enter(field, text)
        p.key("Ctrl+Tab", "Tab1")
        p.click("Command1")
        self.user.sees("frm_get_folder")
        p.enter("tx_pfad", str(self.folder / "lokal"))
        self.picture("folder", "frm_get_folder")
        p.click("cmd_new_folder")
        self.box("folder-new", "Abbrechen")
        self.leave("frm_get_folder")
        for field, text in (("txtLocalDir", str(self.folder / "lokal")), ("txtRemoteDir", "/")):
            p.enter(field, text)
        p.key("Ctrl+Shift+Tab", "Tab1")
        p.click("cmd_profil_speichern")
        self.tabs("connect-profile", "frmConnect", 3)
        self.menu("field-menu", "txtRemoteHost")
        p.click("cmd_profil_loeschen")
        self.box("connect-delete", "Nein")
        p.key("Ctrl+Tab", "Tab1")
        p.enter("txtTimeout", "0")
        p.click("cmdOK")
        self.box("connect-save", "Nein")
        self.box("connect-timeout", "OK")
        p.enter("txtTimeout", "30")
        p.key("Ctrl+Shift+Tab", "Tab1")

    def log_in(self, port, name):
        p = self.program
        self.user.sees("frmConnect")
        p.key("Ctrl+Tab", "Tab1")
        p.wait("the second tab", lambda: p.visible("txtRemotePort"))
        p.enter("txtRemotePort", str(port))
        p.click("cmd_profil_speichern")
        p.click("cmdOK")
        self.dialog(f"certificate-{name}", "frm_zertifikat", "cmd_immer")
        p.wait("the listing", lambda: "index.html" in p.names("lvwRemote"))
        self.user.idle()

    def log_out(self):
        self.program.click("mnuLogout")
        self.box("logout", "Ja")
        self.program.wait("the red light", lambda: not self.user.is_connected())
        self.user.idle()
        self.picture("window-disconnected", "frm_tarvelo")
        self.program.click("mnuLogin")

    def window(self):
        p, u = self.program, self.user
        p.ask("resize", object="frm_tarvelo", width=1000, height=700)
        u.transfers("lvwLocal", ["notizen.txt", "neue Bilder"])
        u.transfers("lvwRemote", ["impressum.html"])
        p.select("lvwRemote", ["index.html", "robots.txt"])
        self.picture("window", "frm_tarvelo")
        for menu in ("mnuFile", "mnuActions", "mnu_einstellungen", "mnuHelp"):
            self.menu(menu, menu)
        self.menu("queue-menu", "lvwStatus", p.rows("lvwStatus")[0]["cells"][0])
        self.menu("log-menu", "txtLog")
        p.key("Delete", "lvwStatus")
        self.box("queue-delete", "Abbrechen")
        p.click("tbToolBar_rem/NewFolder")
        p.wait("the line to edit", lambda: "Ordner" in p.names("lvwRemote"))
        self.picture("window-new-folder", "frm_tarvelo")
        p.caption("lvwRemote", "Ordner")
        u.idle()
        p.select("lvwRemote", ["bilder"])
        p.key("Delete", "lvwRemote")
        p.wait("the count", lambda: "Datei" in p.box().get("informative", ""))
        self.box("delete", "Abbrechen")
        u.idle()
        p.ask("resize", object="frm_tarvelo", width=667, height=467)
        self.picture("window-smallest", "frm_tarvelo")

    def conflicts(self):
        p, u = self.program, self.user
        sample(self.folder / "lokal" / "impressum.html", "kurz")
        sample(self.folder / "lokal" / "index.html", "kurz")
        p.click("tbToolBar/Refresh")
        p.wait("the file", lambda: "index.html" in p.names("lvwLocal"))
        p.select("lvwRemote", ["impressum.html", "index.html"])
        p.click("cmd_download")
        u.is_asked_about("impressum.html")
        self.picture("conflict", "frmTransfer")
        self.picture("window-busy", "frm_tarvelo")
        p.click("cmdRename")
        u.sees("frmRename")
        self.picture("rename", "frmRename")
        p.enter("txtRename", " ")
        p.click("cmdOK")
        self.box("rename-empty", "OK")
        self.leave("frmRename")
        for _ in range(2):
            p.wait("the next question", lambda: p.visible("frmTransfer") or not u.busy_with())
            if u.busy_with():
                p.click("cmdCancel")
        u.idle()
        for side in ("web", "lokal"):
            sample(self.folder / side / DEEP / PAGE, side)
        u.goes_to_remote(f"/{DEEP}", PAGE)
        u.goes_to_local(self.folder / "lokal" / DEEP, PAGE)
        p.select("lvwLocal", [PAGE])
        p.click("cmd_upload")
        u.is_asked_about(PAGE)
        self.picture("conflict-long", "frmTransfer")
        p.click("chkSelectedAll")
        p.click("cmdTransfer")
        u.idle()
        p.ask("resize", object="frm_tarvelo", width=1000, height=700)
        self.picture("window-long", "frm_tarvelo")

    def commands(self):
        p = self.program
        p.select("lvwRemote", [PAGE])
        p.click("mnu_rechte")
        self.user.sees("frm_rechte")
        for box in ("chk_rechte1_0", "chk_rechte1_1", "chk_rechte2_0", "chk_rechte3_0"):
            p.click(box)
        self.dialog("permissions", "frm_rechte")
        p.click("mnu_einstell")
        self.tabs("settings", "frm_einstellungen", 3)
        self.leave("frm_einstellungen")
        p.click("m_h_1")
        self.dialog("info-from-menu", "frm_info", "cmd_auswahl_6")
        p.click("m_h_2")
        self.dialog("network", "frmAbout", "cmdOk")
        p.click("m_h_6")
        self.box("support", "OK")
        p.click("cmd_log_speichern")
        p.wait("the log's last line", lambda: "Die Logdatei wurde nach" in p.text("txtLog"))
        p.key("F1", "frm_tarvelo")
        self.user.sees("frm_hilfe")
        self.picture("help", "frm_hilfe")
        p.enter("tx_suche", "Rechte")
        self.picture("help-search", "frm_hilfe")
        p.close("frm_hilfe")


def take(arguments, display, variant, factor):
    with tempfile.TemporaryDirectory(prefix="gartenfreunde-") as folder:
        folder = Path(folder)
        make_web_space(folder / "web")
        make_local_folder(folder / "lokal")
        bin_folder, _ = opener(folder / "home")
        # An unknown certificate, another one in its place, and a known one that is out of date.
        certificates = {"new": certificate(folder, "new"), "changed": certificate(folder, "changed"),
                        "expired": certificate(folder, "expired", "localhost", -1)}
        variables = {"QT_SCALE_FACTOR": factor, "PATH": f"{bin_folder}:/usr/bin:/bin",
                     "SSL_CERT_FILE": str(certificates["expired"])}
        with Program(arguments.program, arguments.driver, [], folder / "home", display.name,
                     variables=variables) as program:
            walk = Walk(program, folder, f"{arguments.output}/{variant}-")
            walk.start()
            walk.connection()
            port = 0
            for name, file in certificates.items():
                with FtpServer(folder / "web", folder / "server.log",
                               ["--certificate", str(file), "--port", str(port)]) as server:
                    walk.log_in(server.port, name)
                    if name == "expired":
                        walk.window()
                        walk.conflicts()
                        walk.commands()
                    else:
                        walk.log_out()
                    port = server.port if name == "new" else 0


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--program", required=True)
    parser.add_argument("--driver", required=True, help="the built e2e_driver")
    parser.add_argument("--output", required=True, help="folder for the pictures")
    parser.add_argument("--only", help="one of light, dark, light-200, dark-200")
    arguments = parser.parse_args()
    Path(arguments.output).mkdir(parents=True, exist_ok=True)
    with Display("2800x2000x24") as display:
        for variant in ("light", "dark", "light-200", "dark-200"):
            if arguments.only in (None, variant):
                try:
                    take(arguments, display, variant, "2" if "200" in variant else "1")
                except DriverError as error:
                    print(f"{variant}: {error}", file=sys.stderr)
                    return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
