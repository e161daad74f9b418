#!/usr/bin/env python3
"""velcg-gen end to end against the plain script a user would write instead
(bench/plain_chain.py), in one run: both read the same description of N
chained blocks (bench/make_description.py) and write the same files, which
are compared byte for byte; velcg-gen also writes the descriptor at the
switch's default. Prints each phase of each, wall times, peak resident
memory and the ratios.

    bench/end_to_end.py [--build-dir build/release] [--blocks 100000 1000000] [--repetitions 3]
"""

import argparse
import filecmp
import os
import re
import statistics
import subprocess
import sys
import tempfile
import time

HERE = os.path.dirname(os.path.abspath(__file__))


def timed(command, env=None):
    """Wall seconds, peak resident MiB and standard error of one run."""
    start = time.perf_counter()
    process = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True, env=env)
    _, status, usage = os.wait4(process.pid, 0)
    wall = time.perf_counter() - start
    stderr = process.stderr.read()
    process.stderr.close()
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        raise RuntimeError(f"{' '.join(command)} failed:\n{stderr}")
    return wall, usage.ru_maxrss / 1024, stderr


def phases(stderr):
    m = re.search(r"load ([0-9.]+) s, template ([0-9.]+) s, write ([0-9.]+) s(?:, serialize ([0-9.]+) s)?", stderr)
    if not m:
        return {"template": float(re.search(r"floor: template ([0-9.]+) s", stderr).group(1))}
    return {k: float(v) for k, v in zip(("load", "template", "write", "serialize"), m.groups()) if v is not None}


def measure(blocks, build_dir, repetitions, work):
    description = os.path.join(work, f"chain{blocks}.json")
    if not os.path.exists(description):
        subprocess.run([sys.executable, os.path.join(HERE, "make_description.py"), str(blocks), "-o", description],
                       check=True)
    gen = os.path.join(build_dir, "tools", "velcg-gen")
    env = dict(os.environ)
    env.pop("VEL_FEATURE_VelCGDirectEmitSerialize", None)
    # The module of bench/floor_chain.py, built with the Python module.
    floor_dir = os.path.join(build_dir, "bench")
    has_floor = any(f.startswith("velcg_floor.") for f in os.listdir(floor_dir))
    runs = {"velcg-gen": [], "plain": [], **({"floor": []} if has_floor else {})}
    for i in range(repetitions):
        # A fresh directory each time: both write every file.
        out_gen, out_plain = os.path.join(work, f"gen{i}"), os.path.join(work, f"plain{i}")
        runs["velcg-gen"].append(timed([gen, description, os.path.join(HERE, "chain_template.py"), "-o", out_gen,
                                        "--times", "--quiet"], env))
        runs["plain"].append(timed([sys.executable, os.path.join(HERE, "plain_chain.py"), description, out_plain,
                                    "--times"]))
        for name in ("chain.h", "chain.c"):
            if not filecmp.cmp(os.path.join(out_gen, name), os.path.join(out_plain, name), shallow=False):
                raise RuntimeError(f"{name} differs between velcg-gen and the plain script at {blocks} blocks")
        if not os.path.exists(os.path.join(out_gen, "codedescriptor.strata")):
            raise RuntimeError("velcg-gen wrote no descriptor")
        if has_floor:
            statements = os.path.join(work, "floor.txt")
            runs["floor"].append(timed([sys.executable, os.path.join(HERE, "floor_chain.py"), floor_dir, description,
                                        statements]))
            with open(statements, encoding="utf-8") as made, open(os.path.join(out_plain, "chain.c"),
                                                                   encoding="utf-8") as plain:
                if made.read() not in plain.read():
                    raise RuntimeError(f"the floor's statements differ from the plain script's at {blocks} blocks")
        subprocess.run(["rm", "-rf", out_gen, out_plain], check=True)
    result = {}
    for who, samples in runs.items():
        result[who] = {
            "wall": statistics.median(s[0] for s in samples),
            "rss": statistics.median(s[1] for s in samples),
            "phases": {k: statistics.median(phases(s[2])[k] for s in samples) for k in phases(samples[0][2])},
        }
    return result


def add_rows(report, blocks, result):
    gen, plain = result["velcg-gen"], result["plain"]
    label = f"{blocks // 1000}k" if blocks < 1000000 else f"{blocks // 1000000}M"
    ratio = gen["wall"] / plain["wall"]
    report.add(f"end to end, {label} blocks", f"{ratio:.2f}x", "<= 1x", ratio <= 1,
               f"velcg-gen {gen['wall']:.2f} s (with the descriptor) / plain script {plain['wall']:.2f} s")
    t = gen["phases"]["template"] / plain["phases"]["template"]
    report.add(f"template phase, {label} blocks", f"{t:.2f}x", "<= 2x", t <= 2,
               f"{gen['phases']['template']:.3f} s / plain loop {plain['phases']['template']:.3f} s")
    if "floor" in result:
        floor = result["floor"]["phases"]["template"]
        report.add(f"template phase over the floor, {label} blocks", f"{gen['phases']['template'] / floor:.2f}x", "-",
                   True, f"floor {floor:.3f} s (bare-pointer wrappers, bench/floor_chain.py); "
                   f"plain loop {plain['phases']['template'] / floor:.2f}x of it")
    detail = ", ".join(f"{k} {v:.3f} s" for k, v in gen["phases"].items())
    report.add(f"velcg-gen phases, {label} blocks", f"{gen['wall']:.2f} s", "-", True,
               f"{detail}; plain: " + ", ".join(f"{k} {v:.3f} s" for k, v in plain["phases"].items()))
    if blocks >= 1000000:
        rss = gen["rss"]
        report.add(f"peak resident, {label} blocks", f"{rss:.0f} MiB", "<= 1536 MiB", rss <= 1536,
                   f"plain script {plain['rss']:.0f} MiB")


def run_all(report, build_dir, sizes, repetitions):
    with tempfile.TemporaryDirectory(prefix="velcg-end-to-end-") as work:
        for blocks in sizes:
            add_rows(report, blocks, measure(blocks, build_dir, repetitions, work))


def main():
    sys.path.insert(0, HERE)
    from report import Report

    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--build-dir", default="build/release")
    parser.add_argument("--blocks", type=int, nargs="+", default=[100000, 1000000])
    parser.add_argument("--repetitions", type=int, default=3)
    args = parser.parse_args()
    report = Report()
    run_all(report, args.build_dir, args.blocks, args.repetitions)
    return 0 if report.print() else 1


if __name__ == "__main__":
    sys.exit(main())
