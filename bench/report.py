#!/usr/bin/python3
"""Prints the comparison table of a benchmark run (see bench/run.sh).

    report.py OURS_JSON PROBES_JSONL DB_PROBES_JSONL EZDXF_JSONL FILE...

OURS_JSON is dxf_bench's --benchmark_out; PROBES_JSONL and DB_PROBES_JSONL hold one
dxf_load_probe line per file (file layer, full database) and EZDXF_JSONL one ezdxf_probe.py
line per file (any may be empty). Throughput is in
MB/s (10^6 bytes) of the input file, wall-clock time; the CPU-time figure follows in brackets
because a loaded machine stretches wall-clock time. Peak memory is the resident high-water
mark of a process that only loads the file, as a multiple of the file size; "net" leaves out
what the process held before loading.
"""
import json
import sys

# What the file layer aims for, in MB/s and multiples of the file size.
TARGET_LOAD_ASCII = 300
TARGET_LOAD_BINARY = 500
TARGET_SAVE = 500
TARGET_PEAK = 3.0
# What the drawing database aims for: a multiple of ezdxf's load speed.
TARGET_DB_LOAD_RATIO = 50


def read_lines(path):
    rows = {}
    with open(path) as f:
        for line in f:
            if line.strip():
                row = json.loads(line)
                rows[row["file"]] = row
    return rows


def read_ours(path):
    """{file: {kind: (wall MB/s, cpu MB/s)}} from Google Benchmark's JSON output."""
    with open(path) as f:
        data = json.load(f)
    ours = {}
    for b in data["benchmarks"]:
        if b.get("run_type", "iteration") != "iteration":
            continue
        kind, name = b["name"].split("/")[:2]
        # The benchmarks measure wall-clock time, so bytes_per_second is per wall-clock second.
        wall = b["bytes_per_second"] / 1e6
        cpu = wall * b["real_time"] / b["cpu_time"]
        ours.setdefault(name, {})[kind] = (wall, cpu)
    return ours, data.get("context", {})


def is_binary(path):
    with open(path, "rb") as f:
        return f.read(22) == b"AutoCAD Binary DXF\r\n\x1a\x00"


def fmt(value, width, digits=0):
    if value is None:
        return "-".rjust(width)
    return f"{value:{width}.{digits}f}"


def pair(figures):
    if figures is None:
        return "-".rjust(13)
    return f"{figures[0]:5.0f} ({figures[1]:5.0f})"


def figures(runs, probe, peer, load_kind, save_kind):
    """One file's figures: size in MB; our load, ezdxf's, the ratio; the same for save; our
    peak memory and net peak as multiples of the size, and ezdxf's peak."""
    size = probe.get("bytes") or peer.get("bytes")
    mb = size / 1e6 if size else None
    load, save = runs.get(load_kind), runs.get(save_kind)
    peer_load = mb / peer["load_seconds"] if mb and "load_seconds" in peer else None
    peer_save = mb / peer["save_seconds"] if mb and "save_seconds" in peer else None
    load_ratio = load[0] / peer_load if load and peer_load else None
    save_ratio = save[0] / peer_save if save and peer_save else None
    peak = net = peer_peak = None
    if size and "peak_rss_kb" in probe:
        peak = probe["peak_rss_kb"] * 1024 / size
        net = (probe["peak_rss_kb"] - probe["baseline_rss_kb"]) * 1024 / size
    if size and "load_peak_rss_kb" in peer:
        peer_peak = peer["load_peak_rss_kb"] * 1024 / size
    return (mb, load, peer_load, load_ratio, save, peer_save, save_ratio, peak, net, peer_peak)


def main():
    if len(sys.argv) < 6:
        sys.exit("usage: report.py OURS_JSON PROBES_JSONL DB_PROBES_JSONL EZDXF_JSONL FILE...")
    ours, context = read_ours(sys.argv[1])
    probes = read_lines(sys.argv[2])
    db_probes = read_lines(sys.argv[3])
    ezdxf = read_lines(sys.argv[4])
    paths = {path.rsplit("/", 1)[-1]: path for path in sys.argv[5:]}

    print(f"host: {context.get('num_cpus', '?')} cpus, load average "
          f"{' '.join(f'{x:.1f}' for x in context.get('load_avg', []))} at the start")
    header = (f"{'file':44} {'fmt':3} {'MB':>6} | {'load ours':>13} {'ezdxf':>6} {'x':>5} | "
              f"{'save ours':>13} {'ezdxf':>6} {'x':>5} | {'to mem':>6} {'convert':>7} | "
              f"{'peak/size ours':>14} {'ezdxf':>6}")
    print(header)
    print("-" * len(header))
    misses = []
    for name in sorted(ours, key=lambda n: (not n.startswith("bench_"), n)):
        runs = ours[name]
        binary = is_binary(paths[name]) if name in paths else False
        peer = ezdxf.get(name, {})
        (mb, load, peer_load, load_ratio, save, peer_save, save_ratio, peak, net,
         peer_peak) = figures(runs, probes.get(name, {}), peer, "Load", "Save")
        to_memory = runs.get("SaveToMemory", (None,))[0]
        convert = runs.get("Convert", (None,))[0]
        print(f"{name[:44]:44} {'bin' if binary else 'asc':3} {fmt(mb, 6, 1)} | {pair(load)} "
              f"{fmt(peer_load, 6, 1)} {fmt(load_ratio, 5)} | {pair(save)} "
              f"{fmt(peer_save, 6, 1)} {fmt(save_ratio, 5)} | {fmt(to_memory, 6)} "
              f"{fmt(convert, 7)} | {fmt(peak, 5, 2)} net {fmt(net, 4, 2)} {fmt(peer_peak, 6, 1)}"
              + (f"  ezdxf: {peer['error']}" if "error" in peer else ""))
        if name.startswith("bench_"):
            target = TARGET_LOAD_BINARY if binary else TARGET_LOAD_ASCII
            if load and load[0] < target:
                misses.append(f"{name}: load {load[0]:.0f} MB/s < {target}")
            if save and save[0] < TARGET_SAVE:
                misses.append(f"{name}: save {save[0]:.0f} MB/s < {TARGET_SAVE}")
            if peak and peak > TARGET_PEAK:
                misses.append(f"{name}: peak memory {peak:.2f}x > {TARGET_PEAK}x")
    print()
    print(f"targets on the generated drawings (wall clock): load >= {TARGET_LOAD_ASCII} MB/s "
          f"ASCII and >= {TARGET_LOAD_BINARY} binary, save >= {TARGET_SAVE}, "
          f"peak <= {TARGET_PEAK}x size")
    for miss in misses:
        print(f"  missed: {miss}")
    if not misses:
        print("  all met")
    print()
    db_misses = database_table(ours, db_probes, ezdxf, paths)
    print()
    print(f"targets on the generated drawings: database load >= {TARGET_DB_LOAD_RATIO}x ezdxf's, "
          f"peak <= {TARGET_PEAK}x size")
    for miss in db_misses:
        print(f"  missed: {miss}")
    if not db_misses:
        print("  all met")


def database_table(ours, db_probes, ezdxf, paths):
    """Prints the full-database figures against ezdxf and returns the targets missed."""
    header = (f"{'database':44} {'fmt':3} {'MB':>6} | {'load ours':>13} {'ezdxf':>6} {'x':>5} | "
              f"{'save ours':>13} {'ezdxf':>6} {'x':>5} | {'peak/size ours':>14} {'ezdxf':>6}")
    print(header)
    print("-" * len(header))
    misses = []
    for name in sorted(ours, key=lambda n: (not n.startswith("bench_"), n)):
        runs = ours[name]
        binary = is_binary(paths[name]) if name in paths else False
        (mb, load, peer_load, load_ratio, save, peer_save, save_ratio, peak, net,
         peer_peak) = figures(runs, db_probes.get(name, {}), ezdxf.get(name, {}), "DbLoad",
                              "DbSave")
        print(f"{name[:44]:44} {'bin' if binary else 'asc':3} {fmt(mb, 6, 1)} | {pair(load)} "
              f"{fmt(peer_load, 6, 1)} {fmt(load_ratio, 5)} | {pair(save)} "
              f"{fmt(peer_save, 6, 1)} {fmt(save_ratio, 5)} | {fmt(peak, 5, 2)} net "
              f"{fmt(net, 4, 2)} {fmt(peer_peak, 6, 1)}")
        if name.startswith("bench_"):
            if load_ratio is not None and load_ratio < TARGET_DB_LOAD_RATIO:
                misses.append(f"{name}: database load {load_ratio:.0f}x ezdxf's < "
                              f"{TARGET_DB_LOAD_RATIO}x")
            if peak and peak > TARGET_PEAK:
                misses.append(f"{name}: database peak memory {peak:.2f}x > {TARGET_PEAK}x")
    return misses


if __name__ == "__main__":
    main()
