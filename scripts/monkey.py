#!/usr/bin/env python3
"""A monkey for the simulated watch.

Sends the About application a random stream of what a person does (taps on the rows and popup
buttons on screen, bezel turns, back, the home key, pauses of every length) mixed with what the
watch does meanwhile (launch, language, policy, SIM and eSIM events, settings written or
deleted by another process), with replies of the modem, the eSIM service and the device daemon
arriving early, late or never. The driver checks the watch's invariants after every event (see
drive/Invariants.h); the sanitizers of the build it runs watch memory.

The stream comes from the seed alone: the same seed and build give the same stream. A failing
stream is shrunk to a short one that fails the same way, written as a driver script, and the
command that replays it is printed.

    scripts/monkey.py BUILD [--seed N] [--events M] [--profile P ...] [--jobs J]
"""

import argparse
import concurrent.futures
import json
import os
import random
import re
import shutil
import subprocess
import sys
import tempfile
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))

# Every catalogue and both pseudo-locales; a fixed list, so that a seed gives the same stream.
LANGUAGES = ["en", "de", "zh", "ko", "hi", "ar", "fr", "es", "pt_BR", "it", "nl", "pl", "tr",
             "ru", "uk", "el", "he", "ja", "zh_TW", "th", "vi", "id", "en_XA", "ar_XB"]
# Replies of the modem and the eSIM service: at once, soon, late, or not within a run.
LATENCIES_MS = [0, 20, 300, 1500, 4000, 600000]
# The device daemon answers serial reads while the loop waits, so at most a few tenths of a
# second late; or it is not there at all.
DAEMON_DELAYS_MS = [0, 30, 300]
# Pauses between events, some shorter than every timer of the application (the launch's
# second-long block, the toast's two seconds, the five-tap counter's pace).
PAUSES_MS = [0, 0, 8, 40, 120, 400, 1100, 2100]
SETTINGS = [
    ("db/setting/debug_mode", "bool", ["true", "false"]),
    ("db/wms/user_agreement/errorlog", "bool", ["true", "false"]),
    ("db/retailmode/enabled", "int", ["0", "1"]),
    ("db/csc/text_string_country", "string", ["GB", "CN", "IN", "KR"]),
    ("db/csc/country_iso", "string", ["GB", "CN", "IN", "KR"]),
    ("db/menu_widget/regionformat", "string", ["en_GB.UTF-8", "ko_KR.UTF-8", "ru_RU.UTF-8"]),
]


def person(rng):
    kind = rng.choices(["tap", "press", "bezel", "back", "home", "wait"],
                       weights=[30, 12, 10, 9, 2, 14])[0]
    if kind == "tap":
        # Now and then a person taps the same row again and again (five taps on the software
        # version turn developer mode on).
        taps = rng.randint(2, 7) if rng.random() < 0.3 else 1
        return [f"tap @{rng.randrange(6)}"] * taps
    if kind == "press":
        return f"press #{rng.randrange(3)}"
    if kind == "bezel":
        return f"bezel {rng.choice([-3, -2, -1, 1, 1, 2, 3])}"
    if kind == "back":
        return "back"
    if kind == "home":
        return "sim event home"
    return f"wait {rng.choice(PAUSES_MS)}"


def watch(rng):
    kind = rng.choices(["launch", "language", "policy", "refresh", "esim", "set", "unset"],
                       weights=[2, 2, 2, 2, 2, 5, 1])[0]
    if kind == "launch":
        return "sim event launch"
    if kind == "language":
        return f"sim event language {rng.choice(LANGUAGES)}"
    if kind == "policy":
        return f"sim event policy usb-debugging {rng.randrange(2)}"
    if kind == "refresh":
        if rng.random() < 0.5:
            return "sim event sim-refresh"
        return f"sim event sim-refresh --msisdn +4477009{rng.randrange(100000):05d}"
    if kind == "esim":
        line = f"sim event esim {rng.randrange(2)} {rng.randrange(-1, 5)}"
        if rng.random() < 0.6:
            name = rng.choice(["esim-profiles.json", "esim-profiles-none-enabled.json"])
            line += f" --profiles {ROOT}/sim/examples/{name}"
        return line
    key, kind_of, values = rng.choice(SETTINGS)
    if kind == "unset":
        return f"sim unset {key}"
    return f"sim set {key} {kind_of} {rng.choice(values)}"


def stream(seed, profile, events):
    """The events of one run, from the seed and the profile's name alone."""
    rng = random.Random(f"{seed}:{profile}")
    lines = []
    while len(lines) < events:
        event = person(rng) if rng.random() < 0.8 else watch(rng)
        lines.extend(event if isinstance(event, list) else [event])
    return lines[:events]


def variant(seed, profile):
    """The profile with its replies' timing drawn from the seed."""
    rng = random.Random(f"{seed}:{profile}:replies")
    with open(os.path.join(ROOT, "sim", "profiles", profile + ".json")) as f:
        data = json.load(f)
    data["description"] = f"{data.get('description', profile)}; monkey replies of seed {seed}"
    latency = data.setdefault("latency", {})
    for key in ("msisdn_ms", "esim_profile_list_ms", "esim_eid_ms"):
        latency[key] = rng.choice(LATENCIES_MS)
    deviced = data.setdefault("deviced", {"present": True, "serial": "NV480Q0M0N0K,0000000"})
    if rng.random() < 0.15:
        deviced["present"] = False
    else:
        deviced["reply_delay_ms"] = rng.choice(DAEMON_DELAYS_MS)
    return data


class Run:
    """One run of the application through a stream; failure is None or what failed."""

    def __init__(self, build, profile_file, lines, workdir):
        self.build, self.profile_file, self.lines, self.workdir = build, profile_file, lines, workdir

    def go(self, timeout):
        os.makedirs(self.workdir, exist_ok=True)
        script = os.path.join(self.workdir, "script.txt")
        with open(script, "w") as f:
            f.write("invariants\n" + "\n".join(self.lines) + "\n")
        reports = os.path.join(self.workdir, "reports")
        shutil.rmtree(reports, ignore_errors=True)
        os.makedirs(reports)
        env = dict(os.environ)
        # Whole allocating stacks, so that the toolkit's own leaks are told apart by the
        # functions on them (tests/sanitizers/lsan.supp), as make check-asan does.
        env["ASAN_OPTIONS"] = (f"log_path={reports}/report:detect_leaks=1:"
                               "detect_stack_use_after_return=1:verify_asan_link_order=0:"
                               "fast_unwind_on_malloc=0:malloc_context_size=40")
        env["UBSAN_OPTIONS"] = f"log_path={reports}/report:print_stacktrace=1:halt_on_error=1"
        env["LSAN_OPTIONS"] = (f"suppressions={ROOT}/tests/sanitizers/lsan.supp:"
                               "print_suppressions=0")
        bin_dir = os.path.join(self.build, "bin")
        state = os.path.join(self.workdir, "state")
        command = [os.path.join(bin_dir, "quillset-sim"), "run", "--profile", self.profile_file,
                   "--state", state, "--fresh", "--",
                   os.path.join(bin_dir, "quillset-drive"), "--script", script]
        started = time.monotonic()
        try:
            done = subprocess.run(command, env=env, stdin=subprocess.DEVNULL,
                                  stdout=subprocess.DEVNULL, stderr=subprocess.PIPE,
                                  timeout=timeout, text=True, errors="replace")
            status, stderr = done.returncode, done.stderr
        except subprocess.TimeoutExpired as e:
            status, stderr = None, (e.stderr or b"").decode("utf-8", "replace") \
                if isinstance(e.stderr, bytes) else (e.stderr or "")
        self.seconds = time.monotonic() - started
        with open(os.path.join(self.workdir, "stderr.txt"), "w") as f:
            f.write(stderr)
        self.failure = self._failure(status, stderr, reports)
        return self.failure

    @staticmethod
    def _failure(status, stderr, reports):
        for name in sorted(os.listdir(reports)):
            with open(os.path.join(reports, name), errors="replace") as f:
                text = f.read()
            summary = re.search(r"SUMMARY: (\w+Sanitizer: [^\n]*)", text) or \
                re.search(r"runtime error: [^\n]*", text)
            return "sanitizer: " + (summary.group(summary.lastindex or 0) if summary else name)
        broken = re.search(r"invariant broken: ([a-z-]+):", stderr)
        if broken:
            return "invariant: " + broken.group(1)
        if status is None:
            return "hang: the run did not end"
        if status < 0 or status >= 128:
            return f"crash: signal {(-status) if status < 0 else status - 128}"
        if status != 0:
            return f"exit {status}"
        return None


def shrink(make_run, lines, failure, say):
    """Drops chunks, then single events, while the run still fails the same way; then puts
    one pause in place of runs of events whose only part was the time they took (a toast's
    time-out, a late reply), and drops again."""
    tries = 0

    def fails(candidate):
        # Twice: what depends on timing must fail both times to be kept.
        nonlocal tries
        for _ in range(2):
            tries += 1
            if make_run(candidate).go(timeout=60 + 2 * len(candidate)) != failure:
                return False
        return True

    def replaced(lines, by):
        chunk = max(1, len(lines) // 2)
        while chunk >= (1 if not by else 2):
            start, progressed = 0, False
            while start < len(lines):
                candidate = lines[:start] + by + lines[start + chunk:]
                if candidate and len(candidate) < len(lines) and fails(candidate):
                    lines, progressed = candidate, True
                    say(f"  shrunk to {len(lines)} events ({tries} runs)")
                else:
                    start += chunk
            if not progressed:
                chunk //= 2
        return lines

    lines = replaced(lines, [])
    lines = replaced(lines, ["wait 2100"])
    return replaced(lines, []), tries


def run_profile(args, profile, out):
    seed = args.seed
    lines = stream(seed, profile, args.events)
    profile_file = os.path.join(out, f"{profile}-{seed}.profile.json")
    with open(profile_file, "w") as f:
        json.dump(variant(seed, profile), f, indent=2)
    work = tempfile.mkdtemp(prefix=f"monkey-{profile}-", dir=out)
    run = Run(args.build, profile_file, lines, work)
    failure = run.go(timeout=120 + 2 * len(lines))
    result = {"profile": profile, "seed": seed, "events": len(lines), "seconds": run.seconds,
              "failure": failure}
    if failure and not args.no_shrink:
        counter = [0]

        def make_run(candidate):
            counter[0] += 1
            return Run(args.build, profile_file, candidate, os.path.join(work, "shrink"))

        shrunk, tries = shrink(make_run, lines, failure,
                               lambda text: print(f"{profile}: {text}", flush=True))
        repro = os.path.join(out, f"repro-{profile}-{seed}.txt")
        with open(repro, "w") as f:
            f.write(f"# monkey: profile {profile}, seed {seed}: {failure}\n")
            f.write("invariants\n" + "\n".join(shrunk) + "\n")
        result.update(repro=repro, repro_events=len(shrunk), shrink_runs=tries)
    if not failure:
        shutil.rmtree(work, ignore_errors=True)
    return result


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("build", help="build directory (build-asan for the sanitizers)")
    parser.add_argument("--seed", type=int, default=None, help="the stream's seed")
    parser.add_argument("--events", type=int, default=None,
                        help="events a profile (default: 10000 across every profile)")
    parser.add_argument("--profile", action="append", help="a shipped profile (repeatable)")
    parser.add_argument("--jobs", type=int, default=2, help="watches run at once")
    parser.add_argument("--out", default=os.path.join(ROOT, "out", "monkey"))
    parser.add_argument("--no-shrink", action="store_true", help="report a failure as it is")
    args = parser.parse_args()
    args.build = os.path.abspath(args.build)
    profiles = args.profile or sorted(
        name[:-5] for name in os.listdir(os.path.join(ROOT, "sim", "profiles"))
        if name.endswith(".json"))
    if args.seed is None:
        args.seed = random.SystemRandom().randrange(1, 10**9)
    if args.events is None:
        args.events = max(1, 10000 // len(profiles))
    os.makedirs(args.out, exist_ok=True)
    print(f"monkey: seed {args.seed}, {args.events} events on each of {len(profiles)} "
          f"profiles ({', '.join(profiles)}), {args.jobs} at a time", flush=True)
    started = time.monotonic()
    with concurrent.futures.ThreadPoolExecutor(max_workers=args.jobs) as pool:
        results = list(pool.map(lambda p: run_profile(args, p, args.out), profiles))
    elapsed = time.monotonic() - started
    failed = [r for r in results if r["failure"]]
    for r in results:
        line = f"  {r['profile']:<16} {r['events']} events in {r['seconds']:.0f} s: " + \
            (r["failure"] or "every invariant held")
        print(line)
        if r.get("repro"):
            print(f"    shrunk to {r['repro_events']} events in {r['shrink_runs']} runs: "
                  f"{r['repro']}\n    replay: {args.build}/bin/quillset-sim run --profile "
                  f"{args.out}/{r['profile']}-{r['seed']}.profile.json --fresh -- "
                  f"{args.build}/bin/quillset-drive --script {r['repro']}")
    total = sum(r["events"] for r in results)
    print(f"monkey: {total} events in {elapsed:.0f} s ({total / elapsed:.1f} events/s); "
          f"invariants after each: loop, debugging, raw-id, stack, lifetime; sanitizers: "
          f"{'address, undefined, leak' if 'asan' in args.build else 'none (not a sanitizer build)'}; "
          f"seed {args.seed}; replay: make monkey SEED={args.seed} EVENTS={args.events} "
          f"PROFILE=<profile>")
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()
