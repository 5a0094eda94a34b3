#!/usr/bin/env python3
"""Measures tarvelo-bench beside the FTP clients found on this machine, in one run.

  bench/compare.py [--bench FILE] [--server FILE] [--kind vsftpd] [--runs 3] [SECTION]...
  bench/compare.py --host ADDRESS --port PORT --root FOLDER [--prefix "ip netns exec NS"] ..

SECTION: file (1 GiB both ways), tls (the same, encrypted), tree (1,000 files of 4 KiB in 20
folders, both ways, and their removal), list (100,000 entries). Default: all.

Without --host a server is started on the loopback address (tests/ftp-server of the dev build).
With --host a server that serves FOLDER is used, and every client runs behind --prefix: so a line
with delay is measured, between two network namespaces for example. The clients take turns; the
figures are medians of wall-clock seconds of whole processes, login included.
"""
import argparse
import os
import re
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

here = os.path.dirname(os.path.abspath(__file__))
top = os.path.dirname(here)
p = argparse.ArgumentParser(usage=__doc__)
p.add_argument("--bench", default=os.path.join(top, "build/release/bin/tarvelo-bench"))
p.add_argument("--server", default=os.path.join(top, "build/dev/tests/ftp-server"))
p.add_argument("--kind", default="vsftpd")
p.add_argument("--runs", type=int, default=3)
p.add_argument("--sessions", type=int, default=4)
p.add_argument("--host")
p.add_argument("--port", type=int)
p.add_argument("--root")
p.add_argument("--user", default="web")
p.add_argument("--password", default="geheim")
p.add_argument("--prefix", default="")
p.add_argument("sections", nargs="*", default=[])
a = p.parse_args()
sections = a.sections or ["file", "tls", "tree", "list"]
scratch = tempfile.mkdtemp(prefix="tarvelo-compare-", dir="/dev/shm" if os.access("/dev/shm", os.W_OK) else None)
prefix = a.prefix.split()


def run(command):
    """Seconds of one process, or None when it failed."""
    start = time.monotonic()
    done = subprocess.run(prefix + command, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, timeout=1200)
    seconds = time.monotonic() - start
    if done.returncode != 0:
        print("   failed:", " ".join(command)[:100], done.stderr.decode(errors="replace")[:200].strip(), file=sys.stderr)
        return None
    return seconds


def table(title, rows, before=lambda: None):
    """rows: name -> command. The first one is ours."""
    times = {name: [] for name in rows}
    for _ in range(a.runs):
        for name, command in rows.items():
            before()
            times[name].append(run(command))
    print(f"\n{title}\n")
    ours = None
    for name, seconds in times.items():
        good = [s for s in seconds if s is not None]
        if not good:
            print(f"  {name:38} failed")
            continue
        median = statistics.median(good)
        ours = ours or median
        lost = f"  ({len(seconds) - len(good)} of {len(seconds)} failed)" if len(good) < len(seconds) else ""
        print(f"  {name:38} {median:9.3f} s   ours/this {ours / median:5.2f}{lost}")
    sys.stdout.flush()


def having(rows):
    return {name: command for name, command in rows.items() if name.startswith("tarvelo") or shutil.which(command[0])}


def clean(path):
    return lambda: shutil.rmtree(path, ignore_errors=True) if os.path.isdir(path) else (os.path.exists(path) and os.remove(path))


def lftp(command, url, tls):
    setup = "set ftp:ssl-force true; set ftp:ssl-protect-data true; set ssl:verify-certificate no;" if tls else "set ftp:ssl-allow no;"
    return ["lftp", "-c", f"set net:max-retries 1; {setup} open {url}; {command}"]


def files(host, port, root, tls):
    url = f"ftp://{a.user}:{a.password}@{host}:{port}"
    own = url.replace("ftp://", "ftpes://") if tls else url
    extra = ["--accept-any-certificate"] if tls else []
    curl = ["curl", "-sS"] + (["--ssl-reqd", "-k"] if tls else [])
    big = os.path.join(root, "big.bin")
    if not os.path.exists(big):
        subprocess.run(["dd", "if=/dev/urandom", f"of={big}", "bs=1M", "count=1024", "status=none"], check=True)
        os.chmod(big, 0o644)
    out = os.path.join(scratch, "big.out")
    source = os.path.join(scratch, "big.in")
    name = "encrypted" if tls else "plain"
    table(f"1 GiB down, {name}", having({
        "tarvelo-bench get": [a.bench, "get", f"{own}/big.bin", out] + extra,
        "curl -o": curl + ["-o", out, f"{url}/big.bin"],
        "lftp get": lftp(f"get big.bin -o {out}", url, tls),
    }), clean(out))
    shutil.copy(big, source)
    table(f"1 GiB up, {name}", having({
        "tarvelo-bench put": [a.bench, "put", f"{own}/up.bin", source] + extra,
        "curl -T": curl + ["-T", source, f"{url}/up.bin"],
        "lftp put": lftp(f"put {source} -o up.bin", url, tls),
    }))


def tree(host, port, root):
    url = f"ftp://{a.user}:{a.password}@{host}:{port}"
    site = os.path.join(root, "site")
    for d in range(20):
        os.makedirs(f"{site}/d{d:02}", exist_ok=True)
        for f in range(50):
            with open(f"{site}/d{d:02}/f{f:02}.html", "wb") as file:
                file.write(os.urandom(4096))
    subprocess.run(["chmod", "-R", "a+rwX", site], check=True)
    out = os.path.join(scratch, "tree")
    n = str(a.sessions)
    table(f"1,000 files of 4 KiB down ({n} sessions)", having({
        "tarvelo-bench get-tree": [a.bench, "get-tree", f"{url}/site", out, "--sessions", n],
        "tarvelo-bench get-tree, 1 session": [a.bench, "get-tree", f"{url}/site", out, "--sessions", "1"],
        f"lftp mirror --parallel={n}": lftp(f"mirror --parallel={n} site {out}", url, False),
    }), clean(out))
    shutil.copytree(site, out, dirs_exist_ok=True)
    names = iter(range(1000000))
    put, mirror, gone = [], [], []

    def rows():
        i = next(names)
        return {
            "tarvelo-bench put-tree": [a.bench, "put-tree", f"{url}/up{i}a", out, "--sessions", n],
            f"lftp mirror -R --parallel={n}": lftp(f"mirror -R --parallel={n} {out} up{i}b", url, False),
            "tarvelo-bench remove-tree": [a.bench, "remove-tree", f"{url}/up{i}a", "--sessions", n],
            "lftp rm -r": lftp(f"rm -r up{i}b", url, False),
        }
    results = {}
    for _ in range(a.runs):
        for name, command in having(rows()).items():
            results.setdefault(name, []).append(run(command))
    print(f"\n1,000 files of 4 KiB up, and their removal ({n} sessions)\n")
    for name, seconds in results.items():
        good = [s for s in seconds if s is not None]
        print(f"  {name:38} {statistics.median(good):9.3f} s" if good else f"  {name:38} failed")


def listing(host, port, root):
    url = f"ftp://{a.user}:{a.password}@{host}:{port}"
    many = os.path.join(root, "many")
    os.makedirs(many, exist_ok=True)
    for i in range(100000):
        open(f"{many}/datei{i:06}.html", "w").close()
    os.chmod(many, 0o755)
    table("100,000 entries listed", having({
        "tarvelo-bench list": [a.bench, "list", f"{url}/many", "--json"],
        "lftp cls": lftp("cls many/", url, False),
        "curl (text only, not parsed)": ["curl", "-sS", "-o", "/dev/null", f"{url}/many/"],
    }))


def measure(host, port, root, tls):
    if tls:
        files(host, port, root, True)
        return
    for section in sections:
        if section == "file":
            files(host, port, root, False)
        elif section == "tree":
            tree(host, port, root)
        elif section == "list":
            listing(host, port, root)


def with_server(tls):
    root = os.path.join(scratch, "root-tls" if tls else "root")
    os.makedirs(root)
    os.chmod(scratch, 0o755)
    os.chmod(root, 0o777)
    command = [a.server, a.kind, "--root", root] + (["--tls"] if tls else [])
    server = subprocess.Popen(command, stdout=subprocess.PIPE, text=True)
    try:
        told = re.match(r"ftp://(.*):(.*)@.*:(\d+)/", server.stdout.readline())
        a.user, a.password = told.group(1), told.group(2)
        measure("127.0.0.1", int(told.group(3)), root, tls)
    finally:
        server.terminate()
        server.wait()


try:
    if a.host:
        measure(a.host, a.port, a.root, False)
        if "tls" in sections:
            measure(a.host, a.port, a.root, True)
    else:
        if [s for s in sections if s != "tls"]:
            with_server(False)
        if "tls" in sections:
            with_server(True)
finally:
    shutil.rmtree(scratch, ignore_errors=True)
