#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Time from process start to first paint: varno-print-dialog beside an empty Qt dialog.

Both programs run with VARNO_REPORT_FIRST_PAINT set, so each prints "first-paint-ns N"
(CLOCK_MONOTONIC at its first paint event) on standard error and quits. The clock is read
just before the process is started; the difference is what a person waits for, from the
command to the window. Runs alternate between the two programs (the order flips every
round), so a change of machine load falls on both alike.

varno-print-dialog runs without arguments, on the bundled sample printer. HOME is a fresh
temporary folder (no user settings read) and CUPS_SERVER a socket that does not exist, so
listing the scheduler's printers fails at once instead of waiting on a real scheduler;
--keep-cups-server leaves the machine's own setting instead.

    python3 bench/first_paint.py --dialog build/bin/varno-print-dialog \\
        --empty build/bin/empty_dialog
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

REPORT = re.compile(rb"^first-paint-ns (\d+)$", re.MULTILINE)


class NoFirstPaint(Exception):
    pass


def run_once(program, env, timeout_s):
    """Starts program and returns nanoseconds from just before its start to its first paint."""
    t0 = time.monotonic_ns()
    child = subprocess.Popen([program], env=env, stdin=subprocess.DEVNULL,
                             stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
    try:
        _, err = child.communicate(timeout=timeout_s)
    except subprocess.TimeoutExpired:
        child.kill()
        child.communicate()
        raise NoFirstPaint(f"{program}: no first paint reported within {timeout_s:g} s")
    found = REPORT.search(err)
    if not found:
        tail = err.decode(errors="replace").strip()[-2000:]
        raise NoFirstPaint(f"{program}: exited with status {child.returncode} without reporting "
                           f"a first paint" + (f"; its standard error:\n{tail}" if tail else ""))
    elapsed = int(found.group(1)) - t0
    if elapsed <= 0:
        raise NoFirstPaint(f"{program}: reported a first paint before it was started "
                           f"({elapsed} ns); is its clock CLOCK_MONOTONIC?")
    return elapsed


def summary(samples_ns):
    ms = sorted(s / 1e6 for s in samples_ns)
    deciles = statistics.quantiles(ms, n=10, method="inclusive")
    return {"median": statistics.median(ms), "p10": deciles[0], "p90": deciles[-1],
            "min": ms[0], "max": ms[-1]}


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--dialog", required=True, help="path of varno-print-dialog")
    parser.add_argument("--empty", required=True, help="path of bench's empty_dialog")
    parser.add_argument("--runs", type=int, default=30, help="measured runs of each (30)")
    parser.add_argument("--warmup", type=int, default=3, help="unmeasured runs of each first (3)")
    parser.add_argument("--timeout", type=float, default=20.0,
                        help="seconds a run may take to report its first paint (20)")
    parser.add_argument("--platform", default="offscreen",
                        help="QT_QPA_PLATFORM of both programs (offscreen); 'xcb' under xvfb-run")
    parser.add_argument("--cups-server", default="/nonexistent/cups.sock",
                        help="CUPS_SERVER of both programs (a socket that does not exist)")
    parser.add_argument("--keep-cups-server", action="store_true",
                        help="leave CUPS_SERVER as the machine has it instead")
    args = parser.parse_args()
    if args.runs < 2 or args.warmup < 0:
        parser.error("--runs must be at least 2 and --warmup not negative")

    programs = {"varno-print-dialog": os.path.abspath(args.dialog),
                "empty QDialog": os.path.abspath(args.empty)}
    for path in programs.values():
        if not os.access(path, os.X_OK):
            print(f"first_paint.py: {path} is not an executable program", file=sys.stderr)
            return 1

    home = tempfile.mkdtemp(prefix="varno-first-paint-")
    env = dict(os.environ)
    # Settings, caches and data all under the temporary HOME, whatever the caller's XDG setup.
    for name in ("XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME"):
        env.pop(name, None)
    env.update(HOME=home, VARNO_REPORT_FIRST_PAINT="1", QT_QPA_PLATFORM=args.platform)
    if not args.keep_cups_server:
        env["CUPS_SERVER"] = args.cups_server

    samples = {name: [] for name in programs}
    try:
        for round_ in range(args.warmup + args.runs):
            order = list(programs.items())
            if round_ % 2:
                order.reverse()
            for name, path in order:
                elapsed = run_once(path, env, args.timeout)
                if round_ >= args.warmup:
                    samples[name].append(elapsed)
    except NoFirstPaint as failure:
        print(f"first_paint.py: {failure}", file=sys.stderr)
        return 1
    finally:
        shutil.rmtree(home, ignore_errors=True)

    cups = "as the machine has it" if args.keep_cups_server else args.cups_server
    print(f"QT_QPA_PLATFORM={args.platform}, CUPS_SERVER {cups}, "
          f"{args.runs} runs each after {args.warmup} warm-up runs, interleaved")
    print(f"{'program':<20} {'median':>9} {'p10':>9} {'p90':>9} {'min':>9} {'max':>9}  (ms)")
    stats = {name: summary(values) for name, values in samples.items()}
    for name, s in stats.items():
        print(f"{name:<20} {s['median']:9.1f} {s['p10']:9.1f} {s['p90']:9.1f} "
              f"{s['min']:9.1f} {s['max']:9.1f}")
    ratio = stats["varno-print-dialog"]["median"] / stats["empty QDialog"]["median"]
    print(f"ratio of medians (varno-print-dialog / empty QDialog): {ratio:.2f}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
