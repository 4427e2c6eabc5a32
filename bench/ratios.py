#!/usr/bin/env python3
"""Ratio tables from Google Benchmark JSON (--benchmark_format=json).

Names are <Op>/<impl>/<WxH>/t<n>. For each op, size and thread count it prints
the time of rvp over the peer (below 1.0: rvp is faster) and over the memcpy
yardstick of the same bytes (at most 1.5 is the bar for pixel-wise work)."""
import json
import sys
from collections import defaultdict


def main(path):
    with open(path) as f:
        data = json.load(f)
    ctx = data.get("context", {})
    print(f"kernels: {ctx.get('rvpcv_kernels', '?')} (processor: {ctx.get('rvpcv_processor', '?')}), "
          f"{ctx.get('num_cpus', '?')} cpus\n")
    times = defaultdict(dict)
    seen = {}
    for b in data["benchmarks"]:
        # Medians of repetitions when present, else the single run.
        if b.get("run_type") == "aggregate":
            if b.get("aggregate_name") != "median":
                continue
            name = b["run_name"]
        else:
            name = b["name"]
            if "median" in seen.get(name, ""):
                continue
        op, impl, size, threads = name.split("/")[:4]
        times[(op, size, threads)][impl] = b["real_time"]
        seen[name] = b.get("aggregate_name", "")
    print("| operation | size | threads | rvp (us) | peer (us) | rvp/peer | rvp/memcpy |")
    print("|---|---|---|---|---|---|---|")
    for (op, size, threads), t in sorted(times.items()):
        rvp = t.get("rvp")
        if rvp is None:
            continue
        peer = t.get("cv", t.get("queue"))
        mem = t.get("memcpy")
        fmt = lambda v: "-" if v is None else f"{v:.1f}"
        ratio = lambda v: "-" if v is None else f"{rvp / v:.2f}"
        print(f"| {op} | {size} | {threads[1:]} | {fmt(rvp)} | {fmt(peer)} | {ratio(peer)} | {ratio(mem)} |")


if __name__ == "__main__":
    main(sys.argv[1] if len(sys.argv) > 1 else "bench.json")
