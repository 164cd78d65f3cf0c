#!/usr/bin/env python3
"""Runs the benchmark programs and prints their medians as a Markdown table with ratios.

Naming convention (Google Benchmark names):

    BM_<operation>/KvBase    this library doing <operation>
    BM_<operation>/<Peer>    a peer library doing the same job on the same inputs, in the
                             same program; <Peer> is its name as the table shows it
                             ("PROJ", "PROJ generic", "libjwt", ...)

<operation> contains no "/"; arguments that Google Benchmark appends ("/3" of a
DenseRange) belong to the operation.

Every BM_<operation>/<Peer> gives one row "KvBase median / peer median"; an operation
with no peer gives a row with the KvBase median alone. The operation column is the label
of the KvBase benchmark (state.SetLabel) or else <operation>. Benchmarks whose names do
not follow the convention are listed on their own rows under their full names.

What is measured: the median over --repetitions runs, interleaved at random so that the
rounds of all benchmarks of a program alternate. A benchmark that reports
items_per_second (state.SetItemsProcessed) is shown per item, e.g. per point of an array;
one that also sets the user counter "show_rate" is shown as items per second. Other
benchmarks are shown by CPU time per iteration.

Usage: bench_table.py [--build-dir DIR] [--repetitions N] [--min-time S]
                      [--filter REGEX] [--readme README.md]
With --readme, the text between the markers <!-- bench-table:begin --> and
<!-- bench-table:end --> in that file is replaced by the table, the machine and the date.
"""

import argparse
import datetime
import json
import os
import platform
import re
import subprocess
import sys

KVBASE = "KvBase"
BEGIN_MARK = "<!-- bench-table:begin -->"
END_MARK = "<!-- bench-table:end -->"


def run_program(path, repetitions, min_time, bench_filter):
    args = [
        path,
        "--benchmark_format=json",
        f"--benchmark_repetitions={repetitions}",
        "--benchmark_enable_random_interleaving=true",
        "--benchmark_report_aggregates_only=true",
        f"--benchmark_min_time={min_time}",
    ]
    if bench_filter:
        args.append(f"--benchmark_filter={bench_filter}")
    print(f"running {os.path.basename(path)} ...", file=sys.stderr, flush=True)
    out = subprocess.run(args, check=True, stdout=subprocess.PIPE, text=True).stdout
    try:
        return json.loads(out).get("benchmarks", [])
    except json.JSONDecodeError:  # the filter matched nothing in this program
        return []


def seconds_per_unit(unit):
    return {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1.0}[unit]


def measure(run):
    """(value, kind): seconds per item or per iteration, or items per second."""
    if "items_per_second" in run and run["items_per_second"] > 0:
        if "show_rate" in run:
            return run["items_per_second"], "rate"
        return 1.0 / run["items_per_second"], "time"
    return run["cpu_time"] * seconds_per_unit(run["time_unit"]), "time"


def fmt(value, kind):
    if value is None:
        return ""
    if kind == "rate":
        return f"{value:,.0f} /s"
    for unit, scale in (("s", 1.0), ("ms", 1e-3), ("µs", 1e-6), ("ns", 1e-9)):
        if value >= scale or unit == "ns":
            v = value / scale
            return f"{v:.3g} {unit}" if v < 100 else f"{v:.0f} {unit}"
    return ""


def collect(runs):
    """Median runs by name, in the order the program registered them."""
    medians = {}
    for run in runs:
        if run.get("run_type") == "aggregate" and run.get("aggregate_name") != "median":
            continue
        name = run.get("run_name", run["name"])
        medians[name] = run
    order = sorted(medians, key=lambda n: (medians[n].get("family_index", 0),
                                           medians[n].get("per_family_instance_index", 0)))
    return {name: medians[name] for name in order}


def rows_of(medians):
    rows = []
    ops = {}
    loose = []
    for name, run in medians.items():
        m = re.match(r"^BM_([^/]+)/([^/]+)(/.*)?$", name)
        if not m:
            loose.append((name, run))
            continue
        op, impl, args = m.groups()
        op += args or ""
        ops.setdefault(op, {})[impl] = run
    for op, impls in ops.items():
        ours = impls.get(KVBASE)
        label = (ours or {}).get("label") or op.replace("_", " ")
        ours_value = measure(ours) if ours else (None, "time")
        peers = [(impl, run) for impl, run in impls.items() if impl != KVBASE]
        if not peers:
            rows.append((label, fmt(*ours_value), "", "", ""))
        for impl, run in peers:
            peer_value = measure(run)
            ratio = ""
            if ours and ours_value[0] and peer_value[0]:
                r = ours_value[0] / peer_value[0]
                if ours_value[1] == "rate":
                    r = 1.0 / r
                ratio = f"{r:.2f}"
            rows.append((label, fmt(*ours_value), impl, fmt(*peer_value), ratio))
    for name, run in loose:
        rows.append((run.get("label") or name, fmt(*measure(run)), "", "", ""))
    return rows


def machine():
    model = "unknown CPU"
    try:
        with open("/proc/cpuinfo") as f:
            for line in f:
                if line.startswith("model name"):
                    model = line.split(":", 1)[1].strip()
                    break
    except OSError:
        pass
    return f"{os.cpu_count()} cores, {model}, {platform.system()} {platform.release()}"


def table(rows):
    lines = [
        "| Operation | KvBase median | Peer | Peer median | KvBase / peer |",
        "|---|---|---|---|---|",
    ]
    for row in rows:
        lines.append("| " + " | ".join(row) + " |")
    return "\n".join(lines)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--build-dir", default="build-bench")
    parser.add_argument("--repetitions", type=int, default=5)
    parser.add_argument("--min-time", default="0.2")
    parser.add_argument("--filter", default="")
    parser.add_argument("--readme")
    args = parser.parse_args()

    bench_dir = os.path.join(args.build_dir, "bench")
    programs = sorted(
        os.path.join(bench_dir, f)
        for f in os.listdir(bench_dir)
        if f.startswith("bench_") and os.access(os.path.join(bench_dir, f), os.X_OK)
        and os.path.isfile(os.path.join(bench_dir, f)) and not f.endswith((".py", ".sh"))
    )
    rows = []
    for program in programs:
        rows += rows_of(collect(run_program(program, args.repetitions, args.min_time, args.filter)))

    text = "\n".join([
        table(rows),
        "",
        f"Medians of {args.repetitions} interleaved runs of each benchmark, CPU time; "
        f"{machine()}; {datetime.date.today().isoformat()}.",
    ])
    print(text)
    if args.readme:
        with open(args.readme, encoding="utf-8") as f:
            readme = f.read()
        start = readme.find(BEGIN_MARK)
        end = readme.find(END_MARK)
        if start < 0 or end < start:
            sys.exit(f"{args.readme}: markers {BEGIN_MARK} ... {END_MARK} not found")
        readme = readme[: start + len(BEGIN_MARK)] + "\n" + text + "\n" + readme[end:]
        with open(args.readme, "w", encoding="utf-8") as f:
            f.write(readme)
        print(f"table written to {args.readme}", file=sys.stderr)


if __name__ == "__main__":
    main()
