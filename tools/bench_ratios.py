#!/usr/bin/env python3
"""Runs lumcv_bench and prints medians and ratios against the peers.

Usage: bench_ratios.py BENCH_BINARY [--filter REGEX] [--repetitions N]

Benchmarks are named <family>/<impl>/<size>; for every family and size the
table gives lumcv's median time, each peer's, and lumcv / peer (below 1 means
lumcv is faster), with lumcv's throughput in GB/s.
"""
import argparse
import json
import subprocess
import sys
from collections import defaultdict


def main():
    ap = argparse.ArgumentParser()
    ap.add_argument("binary")
    ap.add_argument("--filter", default=".")
    ap.add_argument("--repetitions", type=int, default=5)
    ap.add_argument("--min-time", default="0.1")
    a = ap.parse_args()
    out = subprocess.run(
        [a.binary, f"--benchmark_filter={a.filter}", f"--benchmark_repetitions={a.repetitions}",
         "--benchmark_report_aggregates_only=true", f"--benchmark_min_time={a.min_time}",
         "--benchmark_format=json"],
        check=True, capture_output=True, text=True).stdout
    data = json.loads(out)
    times = defaultdict(dict)
    rates = {}
    for b in data["benchmarks"]:
        if b.get("aggregate_name") != "median":
            continue
        family, impl, size = b["run_name"].split("/")[:3]
        times[(family, size)][impl] = b["real_time"]
        if impl == "lumcv" and "bytes_per_second" in b:
            rates[(family, size)] = b["bytes_per_second"] / 1e9
    peers = sorted({i for v in times.values() for i in v if i != "lumcv"})
    head = ["family", "size", "lumcv us", "GB/s"] + [f"{p} us" for p in peers] + [f"lumcv/{p}" for p in peers]
    print("| " + " | ".join(head) + " |")
    print("|" + "---|" * len(head))
    for (family, size), t in sorted(times.items(), key=lambda kv: (kv[0][0], int(kv[0][1].split("x")[0]))):
        if "lumcv" not in t:
            continue
        row = [family, size, f"{t['lumcv']:.1f}", f"{rates.get((family, size), 0):.2f}"]
        row += [f"{t[p]:.1f}" if p in t else "" for p in peers]
        row += [f"{t['lumcv'] / t[p]:.2f}" if p in t else "" for p in peers]
        print("| " + " | ".join(row) + " |")


if __name__ == "__main__":
    sys.exit(main())
