#!/usr/bin/env python3
"""Breaks given rules of the program one at a time (rules.txt) and looks whether a test notices: each must
turn a test red. Works on a copy of the committed tree below build/, so nothing in this one is touched.
Prints one line a rule and what survived; the exit code is 1 when anything did, or could not be tried.

    tests/mutation/mutate.py [--only WORD]     only rules whose line holds the word"""
import argparse
import os
import subprocess
import sys
import time
from pathlib import Path

HERE = Path(__file__).resolve().parent
TOP = HERE.parent.parent
COPY = TOP / "build" / "mutation" / "tree"
ENVIRONMENT = dict(os.environ, TZ="UTC", QT_QPA_PLATFORM="offscreen")
PATIENCE = 300  # seconds for one run of tests; a rule that makes them hang is noticed, too


def rules():
    for line in (HERE / "rules.txt").read_text().splitlines():
        if line and not line.startswith("#"):
            # The expression is last: it may hold the separator itself.
            yield line, *[part.strip() for part in line.split(" | ", 3)]


def run(command, **details):
    return subprocess.run(command, cwd=COPY, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          text=True, errors="replace", check=False, **details)


def copy_tree():
    """The committed tree. Kept from one run to the next: only what has changed is built again."""
    if not COPY.exists():
        subprocess.run(["git", "clone", "-q", "--shared", "--no-checkout", TOP, COPY], check=True)
    commit = subprocess.run(["git", "rev-parse", "HEAD"], cwd=TOP, check=True, capture_output=True,
                            text=True).stdout.strip()
    for command in (["git", "fetch", "-q", TOP, commit], ["git", "checkout", "-qf", "--detach", commit],
                    ["cmake", "--preset", "dev"]):
        done = run(command)
        if done.returncode != 0:
            sys.exit(done.stdout)


def build(target):
    return run(["cmake", "--build", "--preset", "dev", "--target", target])


def tests_pass(program, tests):
    try:
        return run([f"build/dev/tests/{program}", f"--gtest_filter={tests}", "--gtest_fail_fast"],
                   env=ENVIRONMENT, timeout=PATIENCE).returncode == 0
    except subprocess.TimeoutExpired:
        return False


def try_rule(program, tests, file, expression):
    """@return what became of the broken rule: "noticed", "SURVIVED" or why it could not be tried"""
    source = COPY / file
    whole = source.read_text()
    broken = subprocess.run(["sed", expression, source], capture_output=True, text=True, check=True)
    if broken.stdout == whole:
        return "NO SUCH RULE"
    try:
        source.write_text(broken.stdout)
        if build(program).returncode != 0:
            return "DOES NOT COMPILE"
        return "SURVIVED" if tests_pass(program, tests) else "noticed"
    finally:
        source.write_text(whole)


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--only", default="")
    arguments = parser.parse_args()
    chosen = [rule for rule in rules() if arguments.only in rule[0]]
    copy_tree()
    for program, tests in dict.fromkeys((rule[1], rule[2]) for rule in chosen):
        built = build(program)
        if built.returncode != 0 or not tests_pass(program, tests):
            sys.exit(f"{program} {tests} is red before anything is broken\n{built.stdout[-2000:]}")
    failures = 0
    for _, program, tests, file, expression in chosen:
        begin = time.monotonic()
        outcome = try_rule(program, tests, file, expression)
        failures += outcome != "noticed"
        print(f"{outcome:16} {time.monotonic() - begin:4.0f} s  {file}: {expression}", flush=True)
    print(f"{len(chosen)} rules broken, {len(chosen) - failures} noticed")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
