#!/usr/bin/env python3
"""The start of the real program, in every way it can be called: what the info screen leads to, what an
address fills in, and that nothing is called before the user says so. Exits 0 only when all holds."""
import contextlib
import shutil
import socket
import sys

from driver import DriverError, Program, carry_out, parser_for
from user import User, opened, opener


def expect(what, is_there, wanted):
    if is_there != wanted:
        raise DriverError(f"{what}: {is_there!r} in place of {wanted!r}")


class Starts:
    def __init__(self, arguments, folder, display):
        self._arguments = arguments
        self._folder = folder
        self._display = display
        self._runs = 0

    @contextlib.contextmanager
    def info_screen(self, *words, program=None):
        """The program with an empty home, at its info screen."""
        self._runs += 1
        self.home = self._folder / f"home{self._runs}"
        self.home.mkdir()
        self.settings = self.home / "XDG_CONFIG_HOME" / "Tarvelo FTP" / "Tarvelo FTP.ini"
        path, self.notes = opener(self.home)
        with Program(program or self._arguments.program, self._arguments.driver, words, self.home,
                     self._display, variables={"PATH": f"{path}:/usr/bin:/bin"}) as program:
            user = User(program)
            user.sees("frm_info")
            expect("windows beside the info screen", user.windows(), ["frm_info"])
            yield user

    @contextlib.contextmanager
    def started(self, *words, program=None):
        """The same behind its info screen. It must end well and in silence."""
        with self.info_screen(*words, program=program) as user:
            program = user.program
            program.close("frm_info")
            user.sees("frmConnect")
            yield user
            program.close("frmConnect")
            user.no_longer_sees("frmConnect")
            program.close("frm_tarvelo")
            expect("exit code", program.end(), 0)
            expect("console", program.output(), "")

    def info_screen_starts_once(self):
        """Its first end opens the main window and the dialog; a later one opens nothing."""
        with self.started() as user:
            p = user.program
            expect("server's name", p.text("txtRemoteHost"), "")
            p.key("Escape", "frmConnect")
            user.no_longer_sees("frmConnect")
            expect("windows", user.windows(), ["frm_tarvelo"])
            p.click("m_h_1")
            user.sees("frm_info")
            p.close("frm_info")
            user.no_longer_sees("frm_info")
            expect("windows after the second end", user.windows(), ["frm_tarvelo"])
            p.click("img_ampel_rot")
            user.sees("frmConnect")

    def writes_settings(self, text):
        self.settings.parent.mkdir(mode=0o700, parents=True)
        self.settings.write_text(text)

    def settings_are_read_behind_the_info_screen(self):
        with self.info_screen() as user:
            p = user.program
            temporary = self.home / "TEMP" / "tarvelo_ftp_temp"
            expect("files beside the info screen",
                   (self.settings.parent.exists(), temporary.exists()), (False, False))
            self.writes_settings("[Settings]\nRemoteHost=files01\n")
            p.close("frm_info")
            user.sees("frmConnect")
            expect("server's name", p.text("txtRemoteHost"), "files01")
            expect("temporary folder", temporary.is_dir(), True)
            p.close("frmConnect")
            user.no_longer_sees("frmConnect")
            p.close("frm_tarvelo")
            expect("exit code", p.end(), 0)
            expect("temporary folder behind the end", temporary.is_dir(), True)

    def unreadable_setting_ends_the_program(self):
        """One box that names file and entry; nothing is repaired, no window opens."""
        with self.info_screen() as user:
            p = user.program
            text = "[Settings]\nRemoteHost=files01\nTimeout=bald\n"
            self.writes_settings(text)
            p.close("frm_info")
            box = p.wait("the box", p.box)
            expect("box", (box["class"], box["text"]), (
                "QMessageBox", "In der Datei mit den Einstellungen steht ein Wert, der nicht gelesen "
                f"werden kann.\nDatei: {self.settings}\nEintrag: Settings/Timeout\nWert: bald"))
            expect("windows", [name for name in user.windows() if name.startswith("frm")], [])
            p.answer("OK")
            expect("exit code", p.end(), 1)
            expect("console", p.output(), "")
            expect("settings", self.settings.read_text(), text)

    def address_fills_the_dialog(self, scheme, encryption):
        """Nobody is called: at the address waits a server that must stay alone."""
        with socket.create_server(("127.0.0.1", 0)) as server:
            server.setblocking(False)
            port = server.getsockname()[1]
            address = f"{scheme}://web01:ge%40heim@127.0.0.1:{port}/html/bilder/"
            with self.started(address) as user:
                texts = {name: user.program.text(name) for name in (
                    "txtRemoteHost", "txtUserName", "txtPassword", "txtRemotePort", "txtRemoteDir",
                    "cbo_profil", "cbo_verschluesselung")}
                expect("fields", texts, {
                    "txtRemoteHost": "127.0.0.1", "txtUserName": "web01", "txtPassword": "ge@heim",
                    "txtRemotePort": str(port), "txtRemoteDir": "html/bilder/", "cbo_profil": "",
                    "cbo_verschluesselung": encryption})
                expect("log", user.program.text("txtLog"), "")
                with contextlib.suppress(BlockingIOError):
                    server.accept()
                    raise DriverError("the server was called without a click on Login")

    def refused_address(self):
        """The log says so without repeating the address, which may hold a password."""
        with self.started("ftp://web01:geheim@/html") as user:
            expect("server's name", user.program.text("txtRemoteHost"), "")
            expect("log", user.program.text("txtLog").strip(),
                   "Die übergebene FTP-Adresse ist ungültig.")

    def logo_opens_the_home_page(self):
        with self.started() as user:
            user.program.key("Escape", "frmConnect")
            user.no_longer_sees("frmConnect")
            user.program.click("img_logo_rechts")
            user.program.wait("the opener", lambda: opened(self.notes))
            expect("opened", opened(self.notes), ["https://www.morlanda.example/"])
            user.program.click("mnuLogin")
            user.sees("frmConnect")

    def addresses_of_a_deployer_are_taken(self):
        """From the file beside the program; what is wrong in it is told, and the rest holds."""
        own = self._folder / "eigene"
        own.mkdir()
        file = own / "addresses.ini"
        file.write_text("[Addresses]\nHomePage=https://eigene.example/\nFaq=file:///etc/passwd\n")
        with self.started(program=shutil.copy(self._arguments.program, own)) as user:
            p = user.program
            expect("log", p.text("txtLog").strip(),
                   f'Die Adresse "Faq" in der Datei {file} ist ungültig: file:///etc/passwd')
            p.key("Escape", "frmConnect")
            user.no_longer_sees("frmConnect")
            p.click("img_logo_rechts")
            p.wait("the opener", lambda: opened(self.notes))
            p.click("m_h_1")
            user.sees("frm_info")
            p.click("cmd_auswahl_0")
            p.wait("the opener", lambda: len(opened(self.notes)) == 2)
            p.close("frm_info")
            user.no_longer_sees("frm_info")
            expect("opened", opened(self.notes),
                   ["https://eigene.example/", "https://online.morlanda.example/"])
            p.click("mnuLogin")
            user.sees("frmConnect")

    def run(self):
        self.info_screen_starts_once()
        self.settings_are_read_behind_the_info_screen()
        self.unreadable_setting_ends_the_program()
        self.address_fills_the_dialog("ftp", "Wie in den Programmeinstellungen")
        self.address_fills_the_dialog("ftpes", "Immer")
        self.refused_address()
        self.logo_opens_the_home_page()
        self.addresses_of_a_deployer_are_taken()


def main():
    def run(*details):
        Starts(*details).run()
    return carry_out("start", run, parser_for(__doc__).parse_args())


if __name__ == "__main__":
    sys.exit(main())
