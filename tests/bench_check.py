#!/usr/bin/env python3
"""The benchmark runs end to end: one round of each side on a simulated watch, and its report
holds every figure. No figure is judged: timings belong to `make bench`, not to the tests.

usage: bench_check.py SOURCE_DIR BUILD_DIR
"""
import json
import os
import subprocess
import sys
import tempfile

source, build = sys.argv[1], sys.argv[2]
with tempfile.TemporaryDirectory(prefix="quillset-bench-check-") as tmp:
    profile = os.path.join(tmp, "profile.json")
    report_path = os.path.join(tmp, "bench.json")
    subprocess.run([sys.executable, os.path.join(source, "bench", "bench_profile.py"),
                    os.path.join(source, "sim", "profiles", "default.json"), profile], check=True)
    run = subprocess.run(
        [os.path.join(build, "bin", "quillset-sim"), "run", "--profile", profile, "--state",
         os.path.join(tmp, "state"), "--",
         os.path.join(build, "bin", "quillset-bench"), "--rounds", "1", "--samples", "3",
         "--callgrind-runs", "0", "--extra-cold-starts", "0", "--scroll-rounds", "1", "--scroll-screens", "1",
         "--no-warm-up", "--out", report_path],
        stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, timeout=240)
    if run.returncode != 0:
        sys.exit("quillset-bench failed:\n" + run.stderr[-4000:])
    report = json.load(open(report_path))

failures = []


def expect(condition, what):
    if not condition:
        failures.append(what)


def sided(figure, name):
    for side in ("app", "baseline"):
        series = figure.get(side, {})
        expect(len(series.get("samples", [])) == 1, f"{name}: one {side} sample")
        expect(all(v > 0 for v in series.get("samples", [])), f"{name}: {side} figure above 0")
    expect(figure.get("ratio") is not None, f"{name}: ratio")


sided(report.get("cold_start_ms", {}), "cold start")
for page in ("status", "software", "battery"):
    sided(report.get("push_ms", {}).get(page, {}), f"push of {page}")
sided(report.get("peak_rss_mb", {}), "peak memory")
sided(report.get("peak_rss_first_frame_mb", {}), "peak memory by the first frame")
sided(report.get("peak_rss_no_page_mb", {}), "peak memory with no page opened")
expect("difference" in report.get("peak_rss_mb", {}), "peak memory: difference")
for figure in ("scroll_frame_ms", "scroll_interval_ms"):
    for side in ("app", "baseline"):
        series = report.get(figure, {}).get(side, {})
        # The first list turned to its end and back: many frames.
        expect(len(series.get("samples", [])) > 20, f"{figure}: {side} frames")
        expect("p99" in series, f"{figure}: {side} p99")
expect("over_16_7" in report.get("scroll_frame_ms", {}).get("app", {}), "frames over 16.7 ms")
expect("instructions" in report, "instructions")
redraw = report.get("settings_redraw_ms", {})
expect(len(redraw.get("samples", [])) == 3, "settings change: three samples")
expect(all(k in redraw for k in ("median", "p99", "min", "max")), "settings change: summary")
rows = report.get("row_text_ns", {})
for kind in ("imei", "iccid", "serial_number", "barcode_number", "phone_number", "eid"):
    expect(rows.get(kind, 0) > 0, f"row text: {kind}")
for goal in ("cold_start_ratio_le_1_25", "push_ratio_le_1_5", "status_push_ratio_le_1_2",
             "peak_rss_le_baseline_plus_8_mb", "no_page_rss_le_baseline_plus_3_mb",
             "instructions_ratio_le_1_05", "settings_redraw_p99_le_20_ms",
             "scroll_frame_p99_ratio_le_1_2", "scroll_no_frame_over_16_7_ms"):
    expect(goal in report.get("goals", {}), f"goal {goal}")
expect("cold start to first frame" in run.stdout, "the table is printed")

if failures:
    sys.exit("bench report incomplete:\n  " + "\n  ".join(failures))
