#!/usr/bin/env python3
"""libphonenumber's own cost: the application after the tour of every page (driven by the
benchmark's probe, as `make bench` drives it), with its phone-number formatter and without it
(a copy of the build tree that lacks the formatter's library): the peaks, and what
/proc/PID/smaps shows of the formatter's libraries and of the heap.

usage, on the benchmark's watch after `make bench`:
  build-release/bin/quillset-sim run --profile build-release/bench-profile.json -- \
      python3 bench/phonenumber_cost.py build-release [RUNS]
"""
import os
import re
import shutil
import statistics
import sys
import tempfile

build = os.path.abspath(sys.argv[1])
runs = int(sys.argv[2]) if len(sys.argv) > 2 else 3
PAGES = ["WDS_ST_TMBODY_DEVICE_INFORMATION", "WDS_ST_TMBODY_SOFTWARE_INFORMATION",
         "WDS_ST_TMBODY_BATTERY_INFORMATION", "WDS_ST_HEADER_REGULATORY_INFO_ABB",
         "WDS_ST_HEADER_OPEN_SOURCE_LICENCES_ABB"]
LIBS = re.compile(r"libphonenumber|libicu|libprotobuf|libabsl|libquillset-info-phonenumber")


def smaps(pid):
    by = {}
    path = None
    for line in open(f"/proc/{pid}/smaps"):
        if re.match(r"^[0-9a-f]+-[0-9a-f]+ ", line):
            parts = line.split(None, 5)
            path = parts[5].strip() if len(parts) > 5 else "[anon]"
        elif line.startswith("Rss:"):
            by[path] = by.get(path, 0) + int(line.split()[1])
    return by


def run(data_dir=None):
    ev_r, ev_w = os.pipe()
    cmd_r, cmd_w = os.pipe()
    os.set_inheritable(ev_w, True)
    os.set_inheritable(cmd_r, True)
    env = dict(os.environ,
               LD_PRELOAD=build + "/lib/libquillset-bench-probe.so", ELM_DISPLAY="buffer",
               QUILLSET_BENCH_DOMAIN="quillset",
               QUILLSET_BENCH_PENDING="WDS_LOGS_MBODY_UNKNOWN_ABB,WDS_WMGR_SBODY_NONE_M_PROFILE_STATUS",
               QUILLSET_BENCH_OUT_FD=str(ev_w), QUILLSET_BENCH_IN_FD=str(cmd_r))
    if data_dir:
        env["QUILLSET_DATA_DIR"] = data_dir
    pid = os.posix_spawn(build + "/bin/quillset-info", [build + "/bin/quillset-info"], env)
    os.close(ev_w)
    os.close(cmd_r)
    events = os.fdopen(ev_r)

    def wait(word):
        while True:
            line = events.readline()
            if not line:
                raise SystemExit("the application ended before " + word)
            if line.startswith("error"):
                raise SystemExit(line)
            if line.split()[0] == word:
                return

    def send(command):
        os.write(cmd_w, (command + "\n").encode())

    wait("ready")
    for page in PAGES:
        send("tap " + page)
        wait("page")
        send("back")
        wait("home")
    by = smaps(pid)
    send("quit")
    _, _, usage = os.wait4(pid, 0)
    libs = sum(kb for path, kb in by.items() if LIBS.search(path))
    heap = by.get("[heap]", 0) + by.get("[anon]", 0)
    return usage.ru_maxrss / 1024, libs / 1024, heap / 1024, sum(by.values()) / 1024


def without_formatter():
    """A copy of the build tree (symbolic links) whose lib/ lacks the formatter."""
    tree = tempfile.mkdtemp(prefix="quillset-nolpn-")
    for entry in os.listdir(build):
        if entry not in ("lib", "res"):
            os.symlink(os.path.join(build, entry), os.path.join(tree, entry))
    # The module is found through res/../lib: res must be a directory of the copy.
    os.mkdir(os.path.join(tree, "res"))
    for entry in os.listdir(os.path.join(build, "res")):
        os.symlink(os.path.join(build, "res", entry), os.path.join(tree, "res", entry))
    os.mkdir(os.path.join(tree, "lib"))
    for entry in os.listdir(os.path.join(build, "lib")):
        if "phonenumber" not in entry:
            os.symlink(os.path.join(build, "lib", entry), os.path.join(tree, "lib", entry))
    return tree


tree = without_formatter()
try:
    with_lpn, without = [], []
    for _ in range(runs):
        with_lpn.append(run())
        without.append(run(tree))
finally:
    shutil.rmtree(tree)


def med(rows, i):
    return statistics.median(r[i] for r in rows)


print("peak after the tour (MB):      with %.1f  without %.1f  difference %.1f" %
      (med(with_lpn, 0), med(without, 0), med(with_lpn, 0) - med(without, 0)))
print("smaps after the tour (MB): libphonenumber, ICU, protobuf, abseil pages %.1f" %
      med(with_lpn, 1))
print("smaps after the tour (MB): heap and anonymous with %.1f  without %.1f  difference %.1f" %
      (med(with_lpn, 2), med(without, 2), med(with_lpn, 2) - med(without, 2)))
print("smaps after the tour (MB): total Rss with %.1f  without %.1f" %
      (med(with_lpn, 3), med(without, 3)))
