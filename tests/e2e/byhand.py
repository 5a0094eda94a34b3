#!/usr/bin/env python3
"""Opens the program on the user's own display, logged in to a sample web space on this machine, and
cleans up when the window is closed."""
import argparse
import os
import subprocess
import sys
import tempfile
from pathlib import Path

from driver import FtpServer
from transfer import command_line
from webspace import make_local_folder, make_web_space


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--program", required=True)
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory(prefix="tarvelo-demo-") as folder:
        folder = Path(folder)
        make_web_space(folder / "webspace")
        make_local_folder(folder / "lokal")
        # The user's own settings are not ours to change.
        environment = dict(os.environ, XDG_CONFIG_HOME=str(folder / "config"))
        with FtpServer(folder / "webspace", folder / "server.log") as server:
            print(f"Web space: {folder}/webspace, own files: {folder}/lokal")
            print("Close the window to end; both folders are removed then.")
            return subprocess.run([arguments.program, command_line(server, folder / "lokal")],
                                  env=environment, check=False).returncode


if __name__ == "__main__":
    sys.exit(main())
