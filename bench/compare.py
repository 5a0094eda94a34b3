#!/usr/bin/env python3
"""Measures tarvelo-bench beside the FTP clients found on this machine, in one run.

  bench/compare.py [--bench FILE] [--server FILE] [--kind vsftpd] [--runs 3] [--single] [SECTION]...
  bench/compare.py --host ADDRESS --port PORT --root FOLDER [--prefix "ip netns exec NS"] ..

SECTION: file (1 GiB both ways), tls (the same, encrypted), tree (1,000 files of 4 KiB in 20
folders, both ways, and their removal), list (100,000 entries), panes (the same, shown by the
window's panes: panebench beside lftp, three times in turn). Default: all but panes.

Without --host a server is started on the loopback address (tests/ftp-server of the dev build).
With --host a server that serves FOLDER is used, and every client runs behind --prefix: so a line
with delay is measured, between two network namespaces for example. The clients take turns; the
figures are medians of whole processes, login included.
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
p.add_argument("--panebench", default=os.path.join(top, "build/release/bin/panebench"))
p.add_argument("--server", default=os.path.join(top, "build/dev/tests/ftp-server"))
p.add_argument("--kind", default="vsftpd")
p.add_argument("--runs", type=int, default=3)
p.add_argument("--sessions", type=int, default=4)
p.add_argument("--single", action="store_true", help="trees also over one session, beside curl in one process")
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


class Cost:
    """What one process needed: wall-clock and processor seconds, peak memory in MiB."""

    def __init__(self, command):
        start = time.monotonic()
        process = subprocess.Popen(prefix + command, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
        said = process.stderr.read()
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        self.seconds = time.monotonic() - start
        self.cpu = usage.ru_utime + usage.ru_stime
        self.memory = usage.ru_maxrss / 1024
        self.good = process.returncode == 0
        if not self.good:
            print("   failed:", " ".join(command)[:100], said.decode(errors="replace")[:200].strip(), file=sys.stderr)


def show(title, costs):
    """costs: name -> list of Cost. Ratios are to the first row, which is ours."""
    print(f"\n{title}\n\n  {'':38} {'seconds':>9} {'ours/this':>9} {'CPU s':>7} {'MiB':>6}")
    ours = None
    for name, runs in costs.items():
        good = [cost for cost in runs if cost.good]
        if not good:
            print(f"  {name:38}    failed")
            continue
        median = statistics.median(cost.seconds for cost in good)
        ours = ours or median
        cpu = statistics.median(cost.cpu for cost in good)
        memory = statistics.median(cost.memory for cost in good)
        lost = f"  ({len(runs) - len(good)} of {len(runs)} failed)" if len(good) < len(runs) else ""
        print(f"  {name:38} {median:9.3f} {ours / median:9.2f} {cpu:7.2f} {memory:6.0f}{lost}")
    sys.stdout.flush()


def table(title, rows, before=lambda: None):
    """rows: name -> command, run in turn."""
    costs = {name: [] for name in rows}
    for _ in range(a.runs):
        for name, command in rows.items():
            before()
            costs[name].append(Cost(command))
    show(title, costs)


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
    names = [f"d{d:02}/f{f:02}.html" for d in range(20) for f in range(50)]
    curl = ["curl", "-sS", "--create-dirs"]
    down = {
        f"tarvelo-bench get-tree, {n} sessions": [a.bench, "get-tree", f"{url}/site", out, "--sessions", n],
        f"lftp mirror --parallel={n}": lftp(f"mirror --parallel={n} site {out}", url, False),
    }
    if a.single:
        down["tarvelo-bench get-tree, 1 session"] = [a.bench, "get-tree", f"{url}/site", out, "--sessions", "1"]
        down["curl, one process"] = curl + [x for f in names for x in ("-o", f"{out}/{f}", f"{url}/site/{f}")]
    if not a.host:
        down["curl --parallel-max 8"] = curl + ["--parallel", "--parallel-max", "8"] + [
            x for f in names for x in ("-o", f"{out}/{f}", f"{url}/site/{f}")]
    table("1,000 files of 4 KiB in 20 folders down", having(down), clean(out))
    shutil.copytree(site, out, dirs_exist_ok=True)
    costs = {}
    for i in range(a.runs):
        rows = {
            f"tarvelo-bench put-tree, {n} sessions": [a.bench, "put-tree", f"{url}/up{i}a", out, "--sessions", n],
            f"lftp mirror -R --parallel={n}": lftp(f"mirror -R --parallel={n} {out} up{i}b", url, False),
        }
        if not a.host:
            rows["curl --parallel-max 8"] = ["curl", "-sS", "--ftp-create-dirs", "--parallel", "--parallel-max", "8"] + [
                x for f in names for x in ("-T", f"{out}/{f}", f"{url}/up{i}c/{f}")]
        for name, command in having(rows).items():
            costs.setdefault(name, []).append(Cost(command))
    show("The same up", costs)
    costs = {}
    for i in range(a.runs):
        for name, command in having({
            f"tarvelo-bench remove-tree, {n} sessions": [a.bench, "remove-tree", f"{url}/up{i}a", "--sessions", n],
            "lftp rm -r": lftp(f"rm -r up{i}b", url, False),
        }).items():
            costs.setdefault(name, []).append(Cost(command))
    show("The same removed", costs)


def big_folder(root):
    many = os.path.join(root, "many")
    os.makedirs(many, exist_ok=True)
    for i in range(100000):
        name = f"{many}/datei{i:06}.html"
        with open(name, "w") as file:
            file.truncate(i * 7919 % 100000)
        os.utime(name, (1500000000 + i * 1777, 1500000000 + i * 1777))
    os.chmod(many, 0o755)


def panes(host, port, root):
    big_folder(root)
    for _ in range(a.runs):
        seconds = Cost(lftp("cls many/", f"ftp://{a.user}:{a.password}@{host}:{port}", False)).seconds
        print(f"\nlftp cls {seconds * 1000:.0f} ms")
        sys.stdout.flush()
        subprocess.run([a.panebench, "100000", host, str(port), a.user, a.password, "/many"], check=True)


def listing(host, port, root):
    url = f"ftp://{a.user}:{a.password}@{host}:{port}"
    big_folder(root)
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
        elif section == "panes":
            panes(host, port, root)


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
