#!/usr/bin/env python3
"""Runs the benchmarks and prints one table: each figure beside its target.

Every ratio is taken between two benchmarks of the same process run: the
library's figure and its limit, the same work done the cheapest correct way.
Times are medians over the repetitions.

    bench/report.py [--build-dir build/release] [--repetitions 3] [--only NAME]

Build first: cmake --preset release && cmake --build --preset release
"""

import argparse
import json
import os
import re
import subprocess
import sys
import tempfile


HERE = os.path.dirname(os.path.abspath(__file__))


def run(binary, pattern, repetitions, arguments=()):
    """Median run of every benchmark of binary matching pattern, by name."""
    with tempfile.NamedTemporaryFile(suffix=".json", delete=False) as out:
        path = out.name
    try:
        command = [binary, *arguments, f"--benchmark_filter={pattern}", f"--benchmark_out={path}",
                   "--benchmark_out_format=json", f"--benchmark_repetitions={repetitions}"]
        done = subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)
        if done.returncode != 0:
            raise RuntimeError(f"{os.path.basename(binary)} failed:\n{done.stderr}")
        with open(path) as f:
            results = json.load(f)["benchmarks"]
    finally:
        os.unlink(path)
    medians = {}
    for r in results:
        if r.get("error_occurred"):
            raise RuntimeError(f"{r['name']}: {r.get('error_message')}")
        if repetitions > 1 and r.get("aggregate_name") != "median":
            continue
        medians[r["run_name"]] = r
    return medians


def find(results, prefix):
    """The one result whose name starts with prefix (names carry suffixes
    such as /iterations:1 or /real_time)."""
    for name, r in results.items():
        if name == prefix or name.startswith(prefix + "/"):
            return r
    raise KeyError(f"no benchmark named {prefix}")


def time_of(r, clock):
    return r[clock]


def nanoseconds(r, clock="cpu_time"):
    return r[clock] * {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}[r["time_unit"]]


class Report:
    def __init__(self):
        self.rows = []

    def add(self, what, value, target, met, detail):
        self.rows.append((what, value, target, "yes" if met else "NO", detail))

    def print(self):
        header = ("figure", "measured", "target", "met", "from")
        widths = [max(len(str(row[i])) for row in self.rows + [header]) for i in range(5)]
        line = lambda row: "| " + " | ".join(str(c).ljust(w) for c, w in zip(row, widths)) + " |"
        print(line(header))
        print("|" + "|".join("-" * (w + 2) for w in widths) + "|")
        for row in self.rows:
            print(line(row))
        return all(row[3] == "yes" for row in self.rows)


def speed_ratio(report, what, results, library, limit, target, clock="cpu_time"):
    """Throughput of the library relative to the limit: limit time / library time."""
    lib, lim = find(results, library), find(results, limit)
    ratio = time_of(lim, clock) / time_of(lib, clock)
    report.add(what, f"{ratio:.2f}x", f">= {target}x", ratio >= target,
               f"{limit} {time_of(lim, clock):.4g} / {library} {time_of(lib, clock):.4g} {lib['time_unit']}")


def cost_ratio(report, what, results, library, limit, target, clock="cpu_time"):
    """Cost of the library relative to the limit: library time / limit time."""
    lib, lim = find(results, library), find(results, limit)
    ratio = time_of(lib, clock) / time_of(lim, clock)
    report.add(what, f"{ratio:.2f}x", f"<= {target}x", ratio <= target,
               f"{library} {time_of(lib, clock):.4g} / {limit} {time_of(lim, clock):.4g} {lib['time_unit']}")


def writing(report, bench, reps):
    results = run(os.path.join(bench, "velcg_write_bench"), ".", reps)
    speed_ratio(report, "write phase, /dev/null", results, "BM_BridgeWriteSection/file:0", "BM_RawFwrite/file:0", 0.5)
    speed_ratio(report, "write phase, page-cache file", results, "BM_BridgeWriteSection/file:1",
                "BM_RawFwrite/file:1", 0.9)
    speed_ratio(report, "fill + write, /dev/null", results, "BM_BridgeFillAndWrite/file:0", "BM_RawFwrite/file:0",
                0.35)
    speed_ratio(report, "fill + write, page-cache file", results, "BM_BridgeFillAndWrite/file:1",
                "BM_RawFwrite/file:1", 0.35)


def property_reads(report, bench, reps):
    results = run(os.path.join(bench, "velcg_property_bench"), ".", reps)
    for name in sorted(results):
        m = re.match(r"BM_ClientGetProperty/([^/]+)", name)
        if m:
            cost_ratio(report, f"client property read, {m.group(1)}", results, f"BM_ClientGetProperty/{m.group(1)}",
                       f"BM_DirectGetterConversion/{m.group(1)}", 1.5)
    for name in sorted(results):
        m = re.match(r"BM_ScalarConversion/([^/]+)", name)
        if m:
            ns = nanoseconds(results[name])
            floor = nanoseconds(find(results, f"BM_ScalarConstructionLimit/{m.group(1)}"))
            report.add(f"scalar conversion, {m.group(1)}", f"{ns:.1f} ns", "<= 10 ns", ns <= 10,
                       f"{name}; one allocation of such a value: {floor:.1f} ns")


def bridge_sweeps(report, bench, reps):
    results = run(os.path.join(bench, "velcg_bench"), "BM_BridgeSweep", reps)
    cost_ratio(report, "bridge section add, 10,000 files", results, "BM_BridgeSweepAddSectionContent/files:10000",
               "BM_BridgeSweepAddSectionContent/files:10", 2)
    cost_ratio(report, "bridge attribute read, 10,000 files", results,
               "BM_BridgeSweepGetStringAttribute/files:10000", "BM_BridgeSweepGetStringAttribute/files:10", 2)


def model_memory(report, bench, reps):
    # One run: each benchmark builds a model of a million blocks.
    results = run(os.path.join(bench, "velcg_model_bench"), ".", 1)
    big, small = find(results, "BM_ModelMemory/1000000"), find(results, "BM_ModelMemory/100000")
    plain = find(results, "BM_PlainVectorsModel/1000000")
    bytes_ = big["heap_bytes_per_block"]
    report.add("1M blocks: heap bytes per block", f"{bytes_:.0f}", "<= 900", bytes_ <= 900,
               f"plain vectors: {plain['heap_bytes_per_block']:.0f}; "
               f"{big['allocs_per_block']:.1f} allocations per block")
    rss = big["rss_mib"]
    report.add("1M blocks: resident", f"{rss:.0f} MiB", "< 1024 MiB", rss < 1024,
               f"plain vectors: {plain['rss_mib']:.0f} MiB")
    for phase in ("build", "finalize", "scan", "destroy"):
        key = f"{phase}_ns_per_block"
        if key not in big:
            continue
        growth = big[key] / small[key] if small[key] > 0 else float("inf")
        report.add(f"{phase} per block, 1M / 100k", f"{growth:.2f}x", "<= 1.5x (linear)", growth <= 1.5,
                   f"{big[key]:.1f} / {small[key]:.1f} ns per block")


def serialization(report, bench, reps):
    results = run(os.path.join(bench, "velcg_store_bench"), "BM_(SerializeModel|RawSqliteWritesModelRows)", reps)
    for level in (2, 4):
        cost_ratio(report, f"serializeModel, 100k blocks, switch {level}", results,
                   f"BM_SerializeModel/blocks:100000/switch:{level}",
                   f"BM_RawSqliteWritesModelRows/blocks:100000/switch:{level}", 1.5, clock="real_time")
    r = find(results, "BM_SerializeModelReturnsInBackground/blocks:100000")
    ms = nanoseconds(r, "real_time") * 1e-6
    report.add("serializeModel returns, switch 1", f"{ms:.3f} ms", "< 1 ms", ms < 1,
               "BM_SerializeModelReturnsInBackground/blocks:100000")


def python_reads(report, bench, reps):
    binary = os.path.join(bench, "velcg_python_bench")
    if not os.path.exists(binary):
        report.add("Python property read", "not built", "<= 3x", False, binary)
        return
    results = run(binary, "BM_PropertyRead(FromPython|FromClient)|BM_DistinctObjectReads", reps)
    for prop in ("Name", "NBits"):
        cost_ratio(report, f"Python property read, {prop}", results, f"BM_PropertyReadFromPython/{prop}",
                   f"BM_PropertyReadFromClient/{prop}", 3, clock="real_time")
    # Each read of another object, against a dict lookup in each of as many dicts.
    r = find(results, "BM_DistinctObjectReads/100000")
    for prop, what in (("Name", "block Name"), ("Source", "region Source"), ("Offset", "region Offset"),
                       ("DataInputPorts", "block DataInputPorts (list)"), ("Regions", "port Regions (list)")):
        ratio = r[f"{prop}_to_dict"]
        report.add(f"Python read, 100k objects, {what}", f"{ratio:.2f}x", "<= 3x", ratio <= 3,
                   f"{r[prop + '_ns']:.0f} ns / dict lookup {r['dict_ns']:.0f} ns")


def description_load(report, bench, reps):
    # The file of the end-to-end benchmark's smaller run.
    with tempfile.TemporaryDirectory(prefix="velcg-description-") as work:
        description = os.path.join(work, "chain100000.json")
        subprocess.run([sys.executable, os.path.join(HERE, "make_description.py"), "100000", "-o", description],
                       check=True)
        results = run(os.path.join(bench, "velcg_description_bench"), ".", reps, [f"--description={description}"])
    cost_ratio(report, "description load / parse-only, 100k blocks", results, "BM_LoadDescription",
               "BM_ParseDescriptionOnly", 1.5)
    # What no loader avoids: the parse, and the model's own objects.
    load, parse, build = (time_of(find(results, name), "cpu_time")
                          for name in ("BM_LoadDescription", "BM_ParseDescriptionOnly", "BM_BuildChainDirectly"))
    report.add("description load floor, 100k blocks", f"{(parse + build) / parse:.2f}x", "-", True,
               f"parse-only {parse:.4g} + the same model built directly {build:.4g} ms; "
               f"load {load / (parse + build):.2f}x of that")


def end_to_end(report, bench, reps):
    import end_to_end as e2e

    e2e.run_all(report, os.path.dirname(bench), [100000, 1000000], reps)


SECTIONS = {
    "write": writing,
    "property": property_reads,
    "bridge": bridge_sweeps,
    "model": model_memory,
    "store": serialization,
    "python": python_reads,
    "description": description_load,
    "end_to_end": end_to_end,
}


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--build-dir", default="build/release")
    parser.add_argument("--repetitions", type=int, default=3)
    parser.add_argument("--only", choices=sorted(SECTIONS), action="append")
    args = parser.parse_args()
    bench = os.path.join(args.build_dir, "bench")
    report = Report()
    for name, section in SECTIONS.items():
        if args.only and name not in args.only:
            continue
        print(f"running the {name} benchmarks ...", file=sys.stderr)
        section(report, bench, args.repetitions)
    return 0 if report.print() else 1


if __name__ == "__main__":
    sys.exit(main())
