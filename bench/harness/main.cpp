// quillset-bench: measures the About application against a bare list on the same toolkit,
// side by side in one run (application, baseline, application, ...), on the buffer engine of
// a running simulated watch. Run it through `make bench`, which starts the watch around it.
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "SettingsStore.h"
#include "StBenchChild.h"
#include "StBenchSeries.h"
#include "StatePaths.h"

using nlohmann::json;

namespace {

struct Options {
    int rounds = 10;
    int samples = 200;
    int callgrindRuns = 1;
    // Cold starts without the tour, per side and round: start-up is the noisiest figure.
    int extraColdStarts = 3;
    // Passes in which each side turns every page to its end and back.
    int scrollRounds = 2;
    // How many of the screens (the first list, then the pages in tour order) are turned.
    int scrollScreens = 100;
    bool rowTexts = true;
    bool warmUp = true;
    std::string out = "bench.json";
};

struct Page {
    const char *key;
    const char *name;
    const char *appLabel;
    const char *baselineLabel;
    bool timed;
};

// The tour: every page the About list opens on the benchmark's watch. The first three are the
// timed pushes; the others are visited so that the peak memory covers every page.
const Page kPages[] = {
    {"status", "device information", "WDS_ST_TMBODY_DEVICE_INFORMATION", "Device information",
     true},
    {"software", "software information", "WDS_ST_TMBODY_SOFTWARE_INFORMATION",
     "Software information", true},
    {"battery", "battery information", "WDS_ST_TMBODY_BATTERY_INFORMATION", "Battery information",
     true},
    {"regulatory", "regulatory information", "WDS_ST_HEADER_REGULATORY_INFO_ABB",
     "Regulatory information", false},
    {"licences", "open source licences", "WDS_ST_HEADER_OPEN_SOURCE_LICENCES_ABB",
     "Open source licences", false},
};

const char *const kDebugKey = "db/setting/debug_mode";
const char *const kDebugLabel = "WDS_ST_MBODY_DEBUGGING_ABB";

struct Side {
    std::string name;
    std::string program;
    std::vector<std::string> env;
    StBenchSeries coldStartMs;
    std::map<std::string, StBenchSeries> pushMs;
    StBenchSeries peakRssMb;
    StBenchSeries firstFrameRssMb;
    StBenchSeries idleRssMb;
    StBenchSeries frameMs;
    StBenchSeries frameIntervalMs;
    StBenchSeries instructions;
    bool app;
};

[[noreturn]] void die(const std::string &message) {
    std::cerr << "quillset-bench: " << message << "\n";
    exit(1);
}

std::string libDir() {
    return sim::dataDir() + "/lib";
}

// Starts the side's program and waits for its first frame; the fields of its "ready" line.
std::vector<std::string> startUntilReady(const Side &side, StBenchChild *child) {
    std::string error;
    if (!child->start({side.program}, side.env, &error))
        die(side.name + ": " + error);
    std::vector<std::string> fields;
    if (!child->waitFor({"ready"}, &fields, &error))
        die(side.name + ": " + error);
    return fields;
}

// One cold start and the tour of every page, then the program is told to quit.
void runTour(Side &side, bool record) {
    StBenchChild child;
    std::vector<std::string> fields = startUntilReady(side, &child);
    double coldMs = (std::stod(fields[1]) - static_cast<double>(child.startTime())) / 1e6;
    double firstFrameRssMb = std::stod(fields[2]) / 1024.0;
    std::string error;
    std::map<std::string, double> pushes;
    for (const Page &page : kPages) {
        child.send(std::string("tap ") + (side.app ? page.appLabel : page.baselineLabel));
        if (!child.waitFor({"page"}, &fields, &error))
            die(side.name + ", " + page.name + ": " + error);
        pushes[page.key] = (std::stod(fields[2]) - std::stod(fields[1])) / 1e6;
        child.send("back");
        if (!child.waitFor({"home"}, nullptr, &error))
            die(side.name + ", back from " + page.name + ": " + error);
    }
    child.send("quit");
    long rssKb = 0;
    if (!child.finish(&rssKb, &error))
        die(side.name + ": " + error);
    if (!record)
        return;
    side.coldStartMs.add(coldMs);
    for (const Page &page : kPages)
        if (page.timed)
            side.pushMs[page.key].add(pushes[page.key]);
    side.peakRssMb.add(static_cast<double>(rssKb) / 1024.0);
    side.firstFrameRssMb.add(firstFrameRssMb);
}

// A launch that opens no page: the peak after two seconds on the first list.
void runIdle(Side &side) {
    StBenchChild child;
    startUntilReady(side, &child);
    usleep(2000000);
    child.send("quit");
    long rssKb = 0;
    std::string error;
    if (!child.finish(&rssKb, &error))
        die(side.name + ": " + error);
    side.idleRssMb.add(static_cast<double>(rssKb) / 1024.0);
}

// The frames of one page turned to its end and back.
void collectFrames(Side &side, StBenchChild &child, const std::string &where) {
    child.send("scroll");
    std::vector<std::string> fields;
    std::string error;
    for (;;) {
        if (!child.waitFor({"frame", "scrolled"}, &fields, &error, 60000))
            die(side.name + ", scrolling " + where + ": " + error);
        if (fields[0] == "scrolled")
            return;
        side.frameMs.add(std::stod(fields[1]) / 1e6);
        if (std::stod(fields[2]) > 0)
            side.frameIntervalMs.add(std::stod(fields[2]) / 1e6);
    }
}

// Every page, the first list included, turned by the bezel from its top to its end and back.
void runScroll(Side &side, int screens) {
    StBenchChild child;
    startUntilReady(side, &child);
    collectFrames(side, child, "the first list");
    std::string error;
    for (const Page &page : kPages) {
        if (--screens <= 0)
            break;
        child.send(std::string("tap ") + (side.app ? page.appLabel : page.baselineLabel));
        if (!child.waitFor({"page"}, nullptr, &error))
            die(side.name + ", " + page.name + ": " + error);
        collectFrames(side, child, page.name);
        child.send("back");
        if (!child.waitFor({"home"}, nullptr, &error))
            die(side.name + ", back from " + page.name + ": " + error);
    }
    child.send("quit");
    if (!child.finish(nullptr, &error))
        die(side.name + ": " + error);
}

size_t countOver(const StBenchSeries &series, double limit) {
    size_t n = 0;
    for (double sample : series.samples())
        n += sample > limit;
    return n;
}

// A cold start alone: the program quits at its first frame.
void runColdStart(Side &side) {
    StBenchChild child;
    std::vector<std::string> fields = startUntilReady(side, &child);
    std::string error;
    side.coldStartMs.add((std::stod(fields[1]) - static_cast<double>(child.startTime())) / 1e6);
    child.send("quit");
    if (!child.finish(nullptr, &error))
        die(side.name + ": " + error);
}

// Another process (this one) writes the debugging key; the application redraws its switch.
StBenchSeries runSettingsChange(Side &app, int samples) {
    const char *state = getenv("QUILLSET_STATE");
    if (!state || !*state)
        die("no simulated watch (QUILLSET_STATE is not set)");
    sim::SettingsStore store(state);
    std::string error;
    if (store.write(kDebugKey, sim::SettingValue::ofBool(false), &error) != sim::SettingsStore::Ok)
        die("cannot write " + std::string(kDebugKey) + ": " + error);

    StBenchChild child;
    if (!child.start({app.program}, app.env, &error))
        die("settings: " + error);
    std::vector<std::string> fields;
    if (!child.waitFor({"ready"}, nullptr, &error))
        die("settings: " + error);
    child.send(std::string("show ") + kDebugLabel);
    if (!child.waitFor({"shown"}, nullptr, &error))
        die("settings: " + error);
    child.send(std::string("watch ") + kDebugLabel);
    if (!child.waitFor({"watching"}, &fields, &error))
        die("settings: " + error);
    bool on = fields[1] == "1";
    StBenchSeries redrawMs;
    for (int i = 0; i < samples; ++i) {
        on = !on;
        int64_t written = StBenchChild::now();
        if (store.write(kDebugKey, sim::SettingValue::ofBool(on), &error) != sim::SettingsStore::Ok)
            die("cannot write " + std::string(kDebugKey) + ": " + error);
        if (!child.waitFor({"check"}, &fields, &error, 5000))
            die("settings, sample " + std::to_string(i) + ": " + error);
        if (fields[1] != (on ? "1" : "0"))
            die("settings: the switch shows the wrong state");
        redrawMs.add((std::stod(fields[2]) - static_cast<double>(written)) / 1e6);
        usleep(5000);
    }
    child.send("quit");
    child.finish(nullptr, &error);
    store.write(kDebugKey, sim::SettingValue::ofBool(false), &error);
    return redrawMs;
}

// Instructions from exec to the first frame, under callgrind; the probe ends the program there.
double countInstructions(const Side &side, std::string *error) {
    char pattern[] = "/tmp/quillset-bench-XXXXXX";
    int fd = mkstemp(pattern);
    if (fd < 0) {
        *error = "mkstemp failed";
        return 0;
    }
    close(fd);
    std::string outFile = pattern;
    std::vector<std::string> env(side.env);
    env.push_back("QUILLSET_BENCH_EXIT_AT_READY=1");
    StBenchChild child;
    if (!child.start(
            {"valgrind", "--tool=callgrind", "--callgrind-out-file=" + outFile, side.program}, env,
            error))
        return 0;
    if (!child.waitFor({"ready"}, nullptr, error, 600000))
        return 0;
    if (!child.finish(nullptr, error))
        return 0;
    std::ifstream in(outFile);
    std::string line;
    double total = 0;
    while (std::getline(in, line)) {
        if (line.rfind("summary:", 0) == 0 || line.rfind("totals:", 0) == 0)
            total = std::stod(line.substr(line.find(':') + 1));
    }
    unlink(outFile.c_str());
    if (total <= 0)
        *error = "no instruction count in callgrind's output";
    return total;
}

// Google Benchmark's figures for each status row kind, in nanoseconds of real time.
json runRowTexts(std::string *error) {
    char pattern[] = "/tmp/quillset-bench-rows-XXXXXX";
    int fd = mkstemp(pattern);
    if (fd < 0) {
        *error = "mkstemp failed";
        return json();
    }
    close(fd);
    std::string command = "'" + sim::executableDir() +
                          "/quillset-bench-rows' --benchmark_min_time=0.05 "
                          "--benchmark_out_format=json --benchmark_out='" +
                          pattern + "' >/dev/null 2>&1";
    if (system(command.c_str()) != 0) {
        *error = "quillset-bench-rows failed";
        unlink(pattern);
        return json();
    }
    json figures = json::object();
    try {
        std::ifstream in(pattern);
        json report = json::parse(in);
        for (const json &b : report.at("benchmarks")) {
            std::string name = b.at("name");
            std::string unit = b.value("time_unit", "ns");
            double scale = unit == "us" ? 1e3 : unit == "ms" ? 1e6 : 1.0;
            figures[name.substr(name.find('/') + 1)] = b.at("real_time").get<double>() * scale;
        }
    } catch (const std::exception &e) {
        *error = std::string("quillset-bench-rows wrote no report: ") + e.what();
    }
    unlink(pattern);
    return figures;
}

std::string fixed(double value, int decimals) {
    char buffer[64];
    snprintf(buffer, sizeof(buffer), "%.*f", decimals, value);
    return buffer;
}

json sideJson(const StBenchSeries &app, const StBenchSeries &baseline) {
    json figure = {{"app", app.toJson()}, {"baseline", baseline.toJson()}};
    figure["ratio"] = baseline.empty() || baseline.median() == 0
                          ? json(nullptr)
                          : json(app.median() / baseline.median());
    return figure;
}

void printRow(const std::string &label, const StBenchSeries &app, const StBenchSeries &baseline,
              int decimals, double scale = 1.0) {
    printf(
        "%-34s %9s %9s %9s | %9s %9s %9s | %6s\n", label.c_str(),
        fixed(app.median() * scale, decimals).c_str(), fixed(app.min() * scale, decimals).c_str(),
        fixed(app.max() * scale, decimals).c_str(),
        fixed(baseline.median() * scale, decimals).c_str(),
        fixed(baseline.min() * scale, decimals).c_str(),
        fixed(baseline.max() * scale, decimals).c_str(),
        baseline.median() > 0 ? (fixed(app.median() / baseline.median(), 2) + "x").c_str() : "-");
}

Options parseOptions(int argc, char *argv[]) {
    Options options;
    for (int i = 1; i < argc; ++i) {
        std::string arg = argv[i];
        auto value = [&]() -> std::string {
            if (i + 1 >= argc)
                die(arg + " needs a value");
            return argv[++i];
        };
        if (arg == "--rounds")
            options.rounds = std::max(1, atoi(value().c_str()));
        else if (arg == "--samples")
            options.samples = std::max(1, atoi(value().c_str()));
        else if (arg == "--callgrind-runs")
            options.callgrindRuns = std::max(0, atoi(value().c_str()));
        else if (arg == "--extra-cold-starts")
            options.extraColdStarts = std::max(0, atoi(value().c_str()));
        else if (arg == "--scroll-rounds")
            options.scrollRounds = std::max(0, atoi(value().c_str()));
        else if (arg == "--scroll-screens")
            options.scrollScreens = std::max(1, atoi(value().c_str()));
        else if (arg == "--no-warm-up")
            options.warmUp = false;
        else if (arg == "--no-row-texts")
            options.rowTexts = false;
        else if (arg == "--out")
            options.out = value();
        else
            die("usage: quillset-bench [--rounds N] [--samples N] [--callgrind-runs N] "
                "[--extra-cold-starts N] [--scroll-rounds N] [--scroll-screens N] "
                "[--no-warm-up] [--no-row-texts] [--out FILE]");
    }
    return options;
}

}  // namespace

int main(int argc, char *argv[]) {
    Options options = parseOptions(argc, argv);
    std::string probe = "LD_PRELOAD=" + libDir() + "/libquillset-bench-probe.so";
    std::vector<std::string> common = {probe, "ELM_DISPLAY=buffer"};

    Side app;
    app.name = "quillset-info";
    app.program = sim::executableDir() + "/quillset-info";
    app.app = true;
    app.env = common;
    app.env.push_back("QUILLSET_BENCH_DOMAIN=quillset");
    // A status row shows these until its value has arrived.
    app.env.push_back(
        "QUILLSET_BENCH_PENDING=WDS_LOGS_MBODY_UNKNOWN_ABB,WDS_WMGR_SBODY_NONE_M_PROFILE_STATUS");

    Side baseline;
    baseline.name = "baseline";
    baseline.program = sim::executableDir() + "/quillset-bench-baseline";
    baseline.app = false;
    baseline.env = common;

    // Warm-up: caches of the toolkit and of the system, not measured.
    if (options.warmUp) {
        std::cerr << "warm-up\n";
        runTour(app, false);
        runTour(baseline, false);
    }
    for (int round = 0; round < options.rounds; ++round) {
        std::cerr << "round " << round + 1 << "/" << options.rounds << "\n";
        for (int i = 0; i < options.extraColdStarts; ++i) {
            runColdStart(app);
            runColdStart(baseline);
        }
        runTour(app, true);
        runTour(baseline, true);
        runIdle(app);
        runIdle(baseline);
    }
    for (int round = 0; round < options.scrollRounds; ++round) {
        std::cerr << "scrolling " << round + 1 << "/" << options.scrollRounds << "\n";
        runScroll(app, options.scrollScreens);
        runScroll(baseline, options.scrollScreens);
    }
    std::cerr << "settings change, " << options.samples << " samples\n";
    StBenchSeries redrawMs = runSettingsChange(app, options.samples);

    std::string error;
    for (int run = 0; run < options.callgrindRuns; ++run) {
        std::cerr << "callgrind run " << run + 1 << "/" << options.callgrindRuns << "\n";
        for (Side *side : {&app, &baseline}) {
            double count = countInstructions(*side, &error);
            if (count <= 0)
                die(side->name + " under callgrind: " + error);
            side->instructions.add(count);
        }
    }
    json rowTexts = json::object();
    if (options.rowTexts) {
        std::cerr << "row texts\n";
        rowTexts = runRowTexts(&error);
        if (!error.empty())
            die(error);
    }

    // The figures.
    const double kFrameBudgetMs = 1000.0 / 60.0;
    json report;
    report["rounds"] = options.rounds;
    report["cold_starts"] = app.coldStartMs.size();
    report["engine"] = "buffer";
    report["cold_start_ms"] = sideJson(app.coldStartMs, baseline.coldStartMs);
    report["push_ms"] = json::object();
    for (const Page &page : kPages) {
        if (page.timed)
            report["push_ms"][page.key] = sideJson(app.pushMs[page.key], baseline.pushMs[page.key]);
    }
    report["peak_rss_mb"] = sideJson(app.peakRssMb, baseline.peakRssMb);
    report["peak_rss_mb"]["difference"] = app.peakRssMb.median() - baseline.peakRssMb.median();
    report["peak_rss_first_frame_mb"] = sideJson(app.firstFrameRssMb, baseline.firstFrameRssMb);
    report["peak_rss_no_page_mb"] = sideJson(app.idleRssMb, baseline.idleRssMb);
    report["peak_rss_no_page_mb"]["difference"] =
        app.idleRssMb.median() - baseline.idleRssMb.median();
    report["instructions"] = sideJson(app.instructions, baseline.instructions);
    report["settings_redraw_ms"] = redrawMs.toJson();
    report["scroll_frame_ms"] = sideJson(app.frameMs, baseline.frameMs);
    report["scroll_frame_ms"]["app"]["p99"] = app.frameMs.percentile(99.0);
    report["scroll_frame_ms"]["baseline"]["p99"] = baseline.frameMs.percentile(99.0);
    report["scroll_frame_ms"]["app"]["over_16_7"] = countOver(app.frameMs, kFrameBudgetMs);
    report["scroll_frame_ms"]["baseline"]["over_16_7"] =
        countOver(baseline.frameMs, kFrameBudgetMs);
    report["scroll_interval_ms"] = sideJson(app.frameIntervalMs, baseline.frameIntervalMs);
    report["scroll_interval_ms"]["app"]["p99"] = app.frameIntervalMs.percentile(99.0);
    report["scroll_interval_ms"]["baseline"]["p99"] = baseline.frameIntervalMs.percentile(99.0);
    report["row_text_ns"] = rowTexts;

    double coldRatio = app.coldStartMs.median() / baseline.coldStartMs.median();
    double worstPush = 0;
    for (const Page &page : kPages)
        if (page.timed)
            worstPush = std::max(
                worstPush, app.pushMs[page.key].median() / baseline.pushMs[page.key].median());
    double statusPush = app.pushMs["status"].median() / baseline.pushMs["status"].median();
    double rssDelta = app.peakRssMb.median() - baseline.peakRssMb.median();
    double idleDelta = app.idleRssMb.median() - baseline.idleRssMb.median();
    bool counted = !app.instructions.empty();
    double insnRatio = counted ? app.instructions.median() / baseline.instructions.median() : 0;
    bool scrolled = !app.frameMs.empty() && !baseline.frameMs.empty();
    double frameP99Ratio =
        scrolled ? app.frameMs.percentile(99.0) / baseline.frameMs.percentile(99.0) : 0;
    size_t slowFrames = countOver(app.frameMs, kFrameBudgetMs);
    auto maybe = [](bool measured, bool holds) { return measured ? json(holds) : json(nullptr); };
    json goals = {
        {"cold_start_ratio_le_1_25", coldRatio <= 1.25},
        {"push_ratio_le_1_5", worstPush <= 1.5},
        {"status_push_ratio_le_1_2", statusPush <= 1.2},
        {"peak_rss_le_baseline_plus_8_mb", rssDelta <= 8.0},
        {"no_page_rss_le_baseline_plus_3_mb", idleDelta <= 3.0},
        {"instructions_ratio_le_1_05", maybe(counted, insnRatio <= 1.05)},
        {"settings_redraw_p99_le_20_ms", redrawMs.percentile(99.0) <= 20.0},
        {"scroll_frame_p99_ratio_le_1_2", maybe(scrolled, frameP99Ratio <= 1.2)},
        {"scroll_no_frame_over_16_7_ms", maybe(scrolled, slowFrames == 0)},
    };
    report["goals"] = goals;

    std::ofstream out(options.out);
    out << report.dump(2) << "\n";
    if (!out)
        die("cannot write " + options.out);

    // The table.
    printf(
        "%d rounds, application and baseline interleaved, buffer engine; %d cold starts "
        "each\n\n",
        options.rounds, static_cast<int>(app.coldStartMs.size()));
    printf("%-34s %9s %9s %9s | %9s %9s %9s | %6s\n", "", "app", "min", "max", "baseline", "min",
           "max", "ratio");
    printRow("cold start to first frame (ms)", app.coldStartMs, baseline.coldStartMs, 1);
    for (const Page &page : kPages)
        if (page.timed)
            printRow(std::string("push ") + page.name + " (ms)", app.pushMs[page.key],
                     baseline.pushMs[page.key], 1);
    printRow("peak memory after the tour (MB)", app.peakRssMb, baseline.peakRssMb, 1);
    printRow("  of which by the first frame (MB)", app.firstFrameRssMb, baseline.firstFrameRssMb,
             1);
    printRow("peak memory, no page opened (MB)", app.idleRssMb, baseline.idleRssMb, 1);
    if (counted)
        printRow("instructions to first frame (M)", app.instructions, baseline.instructions, 1,
                 1e-6);
    if (scrolled) {
        printRow("scrolling: frame time (ms)", app.frameMs, baseline.frameMs, 2);
        printRow("scrolling: between frames (ms)", app.frameIntervalMs, baseline.frameIntervalMs,
                 2);
    }
    printf("\nsettings change to redraw (ms), %zu samples: median %s  p99 %s  min %s  max %s\n",
           redrawMs.size(), fixed(redrawMs.median(), 2).c_str(),
           fixed(redrawMs.percentile(99.0), 2).c_str(), fixed(redrawMs.min(), 2).c_str(),
           fixed(redrawMs.max(), 2).c_str());
    if (scrolled)
        printf(
            "scrolling every page to its end and back, %zu frames (baseline %zu): frame time p99 "
            "%s ms (baseline %s), frames over 16.7 ms %zu (baseline %zu); between frames p99 "
            "%s ms (baseline %s)\n",
            app.frameMs.size(), baseline.frameMs.size(),
            fixed(app.frameMs.percentile(99.0), 2).c_str(),
            fixed(baseline.frameMs.percentile(99.0), 2).c_str(), slowFrames,
            countOver(baseline.frameMs, kFrameBudgetMs),
            fixed(app.frameIntervalMs.percentile(99.0), 2).c_str(),
            fixed(baseline.frameIntervalMs.percentile(99.0), 2).c_str());
    if (!rowTexts.empty()) {
        printf("\nrow text request, status rows (us):");
        int column = 0;
        for (auto it = rowTexts.begin(); it != rowTexts.end(); ++it, ++column)
            printf("%s%-18s %8s", column % 3 == 0 ? "\n  " : "   ", it.key().c_str(),
                   fixed(it.value().get<double>() / 1e3, 2).c_str());
        printf("\n");
    }
    auto verdict = [](bool measured, bool holds) {
        return !measured ? "not measured" : holds ? "hold" : "MISSED";
    };
    printf(
        "\ngoals: cold start %s (%.2fx <= 1.25x), pushes %s (worst %.2fx <= 1.5x), device "
        "information push %s (%.2fx <= 1.2x),\n"
        "       memory after the tour %s (%+.1f MB <= +8 MB), memory with no page %s (%+.1f MB "
        "<= +3 MB), instructions %s (%.3fx <= 1.05x),\n"
        "       settings redraw %s (p99 %.2f ms <= 20 ms), scrolling %s (frame p99 %.2fx <= "
        "1.2x), frames over 16.7 ms %s (%zu)\n",
        verdict(true, coldRatio <= 1.25), coldRatio, verdict(true, worstPush <= 1.5), worstPush,
        verdict(true, statusPush <= 1.2), statusPush, verdict(true, rssDelta <= 8.0), rssDelta,
        verdict(true, idleDelta <= 3.0), idleDelta, verdict(counted, insnRatio <= 1.05), insnRatio,
        verdict(true, redrawMs.percentile(99.0) <= 20.0), redrawMs.percentile(99.0),
        verdict(scrolled, frameP99Ratio <= 1.2), frameP99Ratio, verdict(scrolled, slowFrames == 0),
        slowFrames);
    printf("figures written to %s\n", options.out.c_str());
    return 0;
}
