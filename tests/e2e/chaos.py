#!/usr/bin/env python3
"""A user who does anything at all, with a line that breaks: random commands through the real window,
faults at random moments. After every step the window must be idle again within a minute, without a box
that nobody expects, and the disks on both sides must hold what the commands say; after a fault, nothing
may be lost but what the broken command was about. The memory must not grow. The seed decides what is
done (not when the faults hit), and is printed first.

    chaos.py --program .. --driver .. --ftp-server .. [--server KIND] [--seed N]
             [--steps N | --minutes N] [--faults P]"""
import random
import shutil
import sys
import threading
import time
from pathlib import Path

import chaosmodel as model
from driver import DriverError, Program, carry_out, parser_for
from realserver import KINDS, Gate, RealServer, can_run
from user import User, opener

LIMIT = 90  # seconds until a step must be over; the connection has a time-out of 10 seconds
GROWTH = 24 << 20  # bytes by which the program may grow after the first third of the steps
FILES = ["index.html", "bild 1.png", "Über uns.html", "50% & mehr.txt", "a#b?.css", "[neu].js"]
FOLDERS = ["bilder", "Fotos [2020]", "tief"]


class Chaos:
    def __init__(self, user, gate, server, local, dice, faults):
        self.user, self.program = user, user.program
        self.gate, self.server, self.dice, self.faults = gate, server, dice, faults
        self.roots = {"lvwLocal": local, "lvwRemote": server.root}
        self.answers = {}
        self.wants_login = False
        self.confirms = True
        self.fault = None
        self.names = 0

    # --- what is there

    def trees(self):
        return {view: model.snapshot(root) for view, root in self.roots.items()}

    def folder(self, view):
        """The shown folder below the root, without separators at its ends."""
        text = self.program.text("cmbLocalDir" if view == "lvwLocal" else "cmbRemoteDir")
        base = f"{self.roots['lvwLocal']}" if view == "lvwLocal" else ""
        return text.removeprefix(base).strip("/")

    def rows(self, view):
        return [row["cells"][0] for row in self.program.rows(view) if row["cells"][0]]

    def some(self, view, most=4):
        there = [name for name in self.rows(view)]
        return self.dice.sample(there, min(len(there), self.dice.randint(1, most)))

    def new_name(self, old=""):
        self.names += 1
        return f"neu {self.names}{Path(old).suffix}"

    # --- steps; each returns what the trees should be afterwards

    def transfer(self, view):
        other = "lvwRemote" if view == "lvwLocal" else "lvwLocal"
        names, before = self.some(view), self.trees()
        places = self.folder(view), self.folder(other)
        if names:
            self.program.select(view, names)
            self.program.click("cmd_upload" if view == "lvwLocal" else "cmd_download")
        self.settle()
        shown = [row["cells"][0] for row in self.program.rows("lvwStatus")]
        self.note(f"{names} from {view}, answers {self.answers}, queue ends {shown[-len(names):]}")
        self.between[other] = model.moved_aside(before[other], places[1], self.answers)
        return {view: before[view],
                other: model.copied(before[view], places[0], before[other], places[1], names,
                                    self.answers)}

    def delete(self, view):
        names, before, folder = self.some(view, 2), self.trees(), self.folder(view)
        self.confirms = self.dice.random() < 0.8
        if names:
            self.program.select(view, names)
            self.program.key("Delete", view)
        self.settle()
        self.note(f"{names} in {view}, confirmed {self.confirms}")
        return {**before, view: model.removed(before[view], folder, names) if self.confirms else before[view]}

    def rename(self, view):
        names, before, folder = self.some(view, 1), self.trees(), self.folder(view)
        if not names:
            return before
        new = self.new_name(names[0])
        self.program.select(view, names)
        self.program.click(f"{'tbToolBar' if view == 'lvwLocal' else 'tbToolBar_rem'}/RenameFile")
        done = self.types_caption(view, new)
        self.note(f"{names[0]} to {new} in {view}, typed {done}")
        return {**before, view: model.renamed(before[view], folder, names[0], new) if done else before[view]}

    def new_folder(self, view):
        before, folder, new = self.trees(), self.folder(view), self.new_name()
        bar = "tbToolBar" if view == "lvwLocal" else "tbToolBar_rem"
        self.program.click(f"{bar}/NewFolder")
        self.settle()
        done = self.types_caption(view, new)
        self.note(f"{new} in {view}, typed {done}")
        return {**before, view: {**before[view], model.join(folder, new): None} if done else before[view]}

    def enter(self, view):
        before = self.trees()
        folders = [name for name in self.rows(view)
                   if before[view].get(model.join(self.folder(view), name), b"") is None]
        if folders:
            self.program.open(view, self.dice.choice(folders))
        self.settle()
        return before

    def up(self, view):
        before = self.trees()
        if self.folder(view):
            self.program.key("Backspace", view)
        self.settle()
        return before

    def permissions(self, _):
        before, names = self.trees(), self.some("lvwRemote", 2)
        if names:
            self.program.select("lvwRemote", names)
            self.program.click("mnu_rechte")
        self.settle()
        return before

    def view_file(self, view):
        before, names = self.trees(), self.some(view, 1)
        if names:
            self.program.select(view, names)
            self.program.click(f"{'tbToolBar' if view == 'lvwLocal' else 'tbToolBar_rem'}/ViewFile")
        self.settle()
        return before

    def log_out(self, _):
        before = self.trees()
        self.program.click("mnuLogout")
        self.settle()
        return before

    def look_around(self, _):
        before, p = self.trees(), self.program
        for name in self.dice.sample(["m_h_1", "m_h_2", "mnu_einstell", "cmd_log_loeschen",
                                      "mnuSelectall", "cmd_log_clipboard"], 2):
            p.click(name)
            self.settle()
        p.ask("resize", object="frm_tarvelo", width=self.dice.randint(667, 1200),
              height=self.dice.randint(467, 850))
        return before

    # --- the way through a step

    def note(self, text):
        self.story += " " + text

    def types_caption(self, view, text):
        """@return whether a row was being edited and got the name"""
        try:
            self.program.caption(view, text)
        except DriverError:
            return False
        self.settle()
        return True

    def settle(self):
        """Answers whatever opens until the window is idle."""
        end = time.monotonic() + LIMIT
        while True:
            try:
                box = self.program.box()
                if not self.user.busy_with():
                    return
                if box is not None:
                    self.answer(box)
            except DriverError:
                if self.program.process.poll() is not None:
                    raise
            if time.monotonic() > end:
                raise DriverError(f"stuck for {LIMIT} s with {self.user.busy_with()}; box: {self.program.box()}")
            time.sleep(0.01)

    def answer(self, box):
        p, name = self.program, box["name"]
        if name == "frmTransfer":
            self.answer_conflict()
        elif name == "frmRename":
            p.enter("txtRename", self.renames_to)
            p.click("cmdOK")
        elif name == "frm_zertifikat":
            p.click("cmd_immer")
        elif name == "frmConnect":
            p.click("cmdOK" if self.wants_login else "cmdCancel")
            self.wants_login = False
        elif name == "frm_rechte":
            p.click("cmd_chmod")
        elif name == "frm_info":
            p.close("frm_info")
        elif box["class"] == "QMessageBox":
            wanted = {"Ja", "OK"} if self.confirms else {"Nein", "Abbrechen"}
            p.answer(next((b for b in box["buttons"] if b in wanted), box["buttons"][0]))
        else:
            p.key("Escape", name)
        time.sleep(0.02)

    def answer_conflict(self):
        """Overwrites, resumes, skips or renames the file that the question is about."""
        p = self.program
        text = p.describe("lblMessage")["text"]
        target = text.removeprefix("Überschreiben ").split(" mit /")[0]
        name = target.rsplit("/", 1)[1].rsplit("(", 1)[0]
        if isinstance(self.answers.get(name), tuple):  # a download asks again after a rename
            p.click("cmdTransfer")
            return
        answer = self.dice.choice(["overwrite", "overwrite", "resume", "skip", "rename"])
        if answer == "resume" and not p.enabled("cmdResume"):
            answer = "skip"
        if answer == "rename":
            self.renames_to = self.new_name(name)
            answer = ("rename", self.renames_to)
        self.answers[name] = answer
        p.click({"overwrite": "cmdTransfer", "resume": "cmdResume", "skip": "cmdCancel"}
                .get(answer, "cmdRename"))

    def breaks_something(self):
        """A fault somewhen during the step, and its end."""
        kind = self.dice.choice(["cut", "shut", "freeze"])
        delay, length = self.dice.random() * 0.3, self.dice.random() * (13 if kind == "freeze" else 3)
        over = threading.Event()

        def run():
            if not over.wait(delay):
                self.fault = kind
                getattr(self.gate, kind)()
                over.wait(length)
                self.gate.open()
        thread = threading.Thread(target=run)
        thread.start()
        return lambda: (over.set(), thread.join())

    def others_change_files(self):
        """Fresh files on both sides, so that there is always something to do; then both lists are read
        anew."""
        for view, root in self.roots.items():
            place = root / self.folder(view)
            for name in self.dice.sample(FILES, 3):
                (place / name).write_bytes(self.dice.randbytes(self.dice.choice((0, 10, 5_000, 300_000))))
            folder = place / self.dice.choice(FOLDERS)
            if self.folder(view).count("/") < 3:
                folder.mkdir(exist_ok=True)
                (folder / "innen.txt").write_bytes(self.dice.randbytes(100))
        self.server.adopt()
        self.settle()
        self.program.click("tbToolBar/Refresh")
        self.settle()
        if self.user.is_connected():  # else the end of the line was only noticed now
            self.program.click("tbToolBar_rem/Refresh")
            self.settle()

    def logs_in(self):
        while not self.user.is_connected():
            self.wants_login = True
            self.program.click("mnuLogin")
            self.settle()

    def step(self):
        self.answers, self.between = {}, {}
        self.confirms, self.fault, self.story = True, None, ""
        self.logs_in()
        self.others_change_files()
        self.logs_in()
        actions = [(self.transfer, 6), (self.delete, 2), (self.rename, 2), (self.new_folder, 2),
                   (self.enter, 3), (self.up, 2), (self.permissions, 1), (self.view_file, 1),
                   (self.log_out, 1), (self.look_around, 1)]
        action = self.dice.choices([a for a, _ in actions], [w for _, w in actions])[0]
        view = self.dice.choice(["lvwLocal", "lvwRemote"])
        before = self.trees()
        self.story = f"{action.__name__} {view}"
        end_fault = self.breaks_something() if self.dice.random() < self.faults else lambda: None
        try:
            wanted = action(view)
        except DriverError as error:
            if not self.may_fail(action, error):
                raise
            wanted = before
        finally:
            end_fault()
        self.settle()
        self.check(before, wanted)

    def may_fail(self, action, error):
        """A lost line takes rows and commands away under the user's hand; a folder cannot be viewed."""
        gone = any(words in str(error) for words in ("has no row", "is disabled", "is not visible"))
        return gone and (self.fault or action == self.view_file)

    def check(self, before, wanted):
        there = self.trees()
        for view, tree in there.items():
            earlier = [before[view], self.between.get(view, before[view])]
            wrong = (model.damages(tree, earlier, wanted[view]) if self.fault
                     else model.differences(tree, wanted[view]))
            wrong = [item for item in wrong if not (self.fault and Path(item).name.startswith("Ordner"))]
            if wrong:
                raise DriverError(f"{view}: not as expected: {wrong[:5]}")
            if self.fault and "typed True" in self.story and sum(
                    content is not None for content in tree.values()) < sum(
                    content is not None for content in before[view].values()):
                raise DriverError(f"{view}: a file is lost")

    def memory(self):
        pages = Path(f"/proc/{self.program.process.pid}/statm").read_text().split()[1]
        return int(pages) * 4096

    def run(self, steps, minutes):
        warm, number, share, begin = None, 0, 0, time.monotonic()
        while share < 1:
            try:
                self.step()
            except (DriverError, StopIteration) as error:
                raise DriverError(f"step {number}: {self.story} (fault: {self.fault}): {error}") from error
            print(f"{number:5}  {self.story}" + (f"  [{self.fault}]" if self.fault else ""), flush=True)
            number += 1
            share = (time.monotonic() - begin) / 60 / minutes if minutes else number / steps
            if warm is None and share >= 1 / 3:
                warm = self.memory()
        print(f"{number} steps in {time.monotonic() - begin:.0f} s")
        print(f"memory: {warm >> 20} MiB after a third, {self.memory() >> 20} MiB at the end")
        if self.memory() > warm + GROWTH:
            raise DriverError("the program has grown too much")


def run(arguments, folder, display):
    folder.chmod(0o755)
    dice = random.Random(arguments.seed)
    (folder / "webspace").mkdir()
    local = folder / "lokal"
    local.mkdir()
    home = folder / "home"
    home.mkdir()
    path, _ = opener(home)
    # Profiles stand beside the program: each run has its own.
    program_file = folder / "stick" / "tarvelo-ftp"
    program_file.parent.mkdir()
    shutil.copy(arguments.program, program_file)
    # pyftpdlib spins for seconds when an encrypted connection ends without a farewell.
    tls = [] if arguments.server == "pyftpdlib" else ["--tls"]
    with RealServer(arguments.ftp_server, arguments.server, folder / "webspace", tls) as server, \
            Gate(server.port) as gate, \
            Program(program_file, arguments.driver, [], home, display, timeout=60,
                    variables={"PATH": f"{path}:/usr/bin:/bin"}) as program:
        user = User(program)
        user.passes_info()
        user.makes_connection("chaos", "127.0.0.1", gate.port, server.user, server.password)
        program.enter("txtTimeout", "10")
        program.enter("txtLocalDir", f"{local}/")
        program.click("cmd_profil_speichern")
        chaos = Chaos(user, gate, server, local, dice, arguments.faults)
        chaos.story, chaos.wants_login = "", True
        chaos.settle()
        try:
            chaos.run(arguments.steps, arguments.minutes)
        except DriverError:
            if program.process.poll() is None:
                print("Log of the program:", program.text("txtLog")[-3000:], sep="\n", file=sys.stderr)
            raise
        program.close("frm_tarvelo")
        if program.end() != 0 or program.output():
            raise DriverError("the program ended badly:\n" + program.output())


def main():
    parser = parser_for(__doc__)
    parser.add_argument("--ftp-server", required=True, help="the built ftp-server")
    parser.add_argument("--server", choices=KINDS, default="pyftpdlib")
    parser.add_argument("--seed", type=int, default=random.randrange(1_000_000))
    parser.add_argument("--steps", type=int, default=40)
    parser.add_argument("--minutes", type=float, help="as many steps as fit, in place of --steps")
    parser.add_argument("--faults", type=float, default=0.3, help="how many of the steps are broken")
    arguments = parser.parse_args()
    if not can_run(arguments.server):
        print(f"NOT RUN: {arguments.server} needs root")
        return 77
    length = f"{arguments.minutes} minutes" if arguments.minutes else f"{arguments.steps} steps"
    print(f"seed {arguments.seed}, {length}, {arguments.server}", flush=True)
    return carry_out("chaos", run, arguments)


if __name__ == "__main__":
    sys.exit(main())
