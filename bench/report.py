#!/usr/bin/python3
"""Turns what fikleipa_bench measured into docs/performance.md with its plots and its record, or compares with the record.

usage: report.py write DOCS_DIR RESULTS.json...
       report.py compare DOCS_DIR RESULTS.json...  exits with 1 where a converter is more than 15 % slower in all of them
"""
import json
import platform
import re
import statistics
import subprocess
import sys
from pathlib import Path

SLOWER = 1.15
CLIP, CACHED = "1920x1080", "cached"
SIZES = ["cached", "720x486", "1920x1080-reused", "1920x1080", "3840x2160", "7680x4320"]
LEVELS = ["portable", "sse4.1", "avx2", "avx512"]

# A family, the ratio that it is to stay within, and its converters' names. The first that fits counts.
FAMILIES = [
    ("double-precision converters", 3.00, r".*(Float|float).*"),
    ("RGB48/64 and 10-bit RGB to v210 and deep planes", 1.80, r"RGB(64|10|48).*"),
    ("RGB24/32 to v210 with the chroma filter", 1.60, r"(RGB(24|32)_to_012v|v210FromRGB).*"),
    ("RGB24/32 to deep planes", 1.80, r"RGB(24|32)_to_yuv444p10"),
    ("alpha planes", 1.10, r".*[Aa]lpha.*"),
    ("RGB24/32 to 8-bit YCbCr", 1.40, r"RGB(24|32)_to_.*"),
    ("v210 and 10/12-bit planes to 8-bit and 16-bit RGB", 1.30,
     r"(v210ToRGB|10ToRGB|12ToRGB|16ToRGB|planar10ToRGB|012v_to_rgb(24|32)).*"),
    ("v210 to 15/16-bit RGB", 1.30, r"012v_to_rgb5.*"),
    ("8-bit YCbCr to 16-bit-component RGB", 1.30, r"ToRGB(Planar)?Int16.*"),
    ("8-bit YCbCr to 15/16-bit RGB", 1.20, r".*_to_rgb5\d\d"),
    ("8-bit YCbCr to 32- and 24-bit RGB, planes", 1.10, r"(.*_to_rgb(24|32)|ToRGBPlanarInt)"),
    ("v210 to and from every 8- and 10-bit layout", 1.15, r"(.*012v.*|.*yuv4.*|planar.*_unpack_.*|.*v210.*)"),
    ("reorderings, copies, planar and packed 8-bit, flips", 1.05, r".*"),
]


def family_of(name):
    return next(family for family in FAMILIES if re.fullmatch(family[2], name))


class Results:
    """Ratios and counters by (level, converter, size)."""

    def __init__(self, *paths):
        documents = [json.loads(Path(path).read_text()) for path in paths]
        self.context = documents[0]["context"]
        self.rows, self.others = {}, {}
        for each in (benchmark for document in documents for benchmark in document["benchmarks"]):
            parts = each["name"].split("/")
            if parts[0] in LEVELS:
                self.rows[parts[0], parts[1], parts[2]] = each
            else:
                self.others["/".join(parts[:2])] = each
        self.levels = [level for level in LEVELS if any(key[0] == level for key in self.rows)]
        self.best = self.levels[-1]
        self.names = list(dict.fromkeys(key[1] for key in self.rows if key[2] == CLIP))

    def get(self, level, name, size, counter):
        return self.rows.get((level, name, size), {}).get(counter)

    def ratio(self, name, level=None, size=CLIP):
        return self.get(level or self.best, name, size, "ratio")

    def peers(self, name):
        row = self.rows.get((self.best, name, CLIP), {})
        return {key[5:]: value for key, value in row.items() if key.startswith("over ") and key != "over one thread"}


def processor():
    for line in Path("/proc/cpuinfo").read_text().splitlines():
        if line.startswith("model name"):
            return line.split(":")[1].strip()
    return platform.processor() or platform.machine()


def machine(context):
    caches = ", ".join(f"L{c['level']} {c['size'] // 1024} KiB" for c in context["caches"] if c["type"] != "Instruction")
    memory = next(line for line in Path("/proc/meminfo").read_text().splitlines() if line.startswith("MemTotal"))
    compiler = subprocess.run(["c++", "--version"], capture_output=True, text=True, check=True).stdout.splitlines()[0]
    return (f"{processor()}, {context['num_cpus']} processors, {caches}, {int(memory.split()[1]) // 2**20} GiB of memory; "
            f"Linux {platform.release().split('-')[0]}; {compiler}; {context['date'][:10]}")


def table(head, rows, right_from=1):
    rule = ["---" if i < right_from else "---:" for i in range(len(head))]
    return "\n".join("| " + " | ".join(map(str, row)) + " |" for row in [head, rule, *rows]) + "\n"


def figure(value, digits=2):
    return "" if value is None else f"{value:.{digits}f}"


def family_rows(results):
    rows = []
    for family in FAMILIES:
        members = [n for n in results.names if family_of(n) is family]
        ratios = {n: results.ratio(n) for n in members if results.ratio(n) is not None}
        if not ratios:
            continue
        worst = max(ratios, key=ratios.get)
        over = sorted((n for n in ratios if ratios[n] > family[1]), key=ratios.get, reverse=True)
        avx2 = [results.ratio(n, "avx2") for n in members if results.ratio(n, "avx2") is not None]
        rows.append([family[0], len(ratios), figure(family[1]), figure(statistics.median(ratios.values())),
                     f"{ratios[worst]:.2f} `{worst}`", len(over), figure(statistics.median(avx2)) if avx2 else "",
                     figure(max(avx2)) if avx2 else ""])
    return rows


def converter_rows(results):
    rows = []
    for name in results.names:
        bar = family_of(name)[1]
        ratio = results.ratio(name)
        mark = "" if ratio is None or ratio <= bar else " over"
        rows.append([f"`{name}`", figure(bar), figure(ratio) + mark]
                    + [figure(results.ratio(name, level)) for level in reversed(results.levels[:-1])]
                    + [figure(results.get(results.best, name, size, "Mpx/s"), 0) for size in SIZES]
                    + [figure(results.get(results.best, name, CLIP, "GB/s"), 1)])
    return rows


def peer_rows(results):
    rows = []
    for name in results.names:
        for peer, gain in sorted(results.peers(name).items(), key=lambda item: item[1]):
            rows.append([f"`{name}`", peer, figure(results.get(results.best, name, CLIP, "Mpx/s"), 0),
                         figure(results.get(results.best, name, CLIP, f"{peer} Mpx/s"), 0), figure(gain)])
    return rows


def growth_rows(results):
    """Nanoseconds a pixel at the largest size over those at 1920x1080."""
    growth = {}
    for name in results.names:
        small = results.get(results.best, name, CLIP, "Mpx/s")
        large = results.get(results.best, name, "7680x4320", "Mpx/s")
        if small and large:
            growth[name] = small / large
    return growth


def split_rows(results):
    rows = []
    for (level, name, size), row in results.rows.items():
        if "over one thread" in row:
            rows.append([f"`{name}`", level, size, figure(row["Mpx/s"], 0), figure(row["one thread Mpx/s"], 0),
                         figure(row["over one thread"])])
    return rows


def plot(results, docs):
    import matplotlib
    matplotlib.use("Agg")
    from matplotlib import pyplot as plt

    plt.rcParams.update({"font.size": 9, "axes.spines.top": False, "axes.spines.right": False})

    families = [f for f in FAMILIES if any(family_of(n) is f for n in results.names)]
    fig, ax = plt.subplots(figsize=(9, 0.45 * len(families) + 1.2))
    for y, family in enumerate(reversed(families)):
        ratios = [results.ratio(n) for n in results.names if family_of(n) is family and results.ratio(n) is not None]
        ax.scatter(ratios, [y] * len(ratios), s=18, alpha=0.6, color="#1f77b4", zorder=3)
        ax.plot([family[1]] * 2, [y - 0.35, y + 0.35], color="#d62728", lw=2)
    ax.axvline(1, color="grey", lw=1, ls=":")
    ax.set_yticks(range(len(families)), [f[0] for f in reversed(families)])
    ax.set_xlabel(f"time over that of copying the same bytes, 1920x1080, {results.best}, one core; red: the bar")
    ax.set_xlim(left=0)
    fig.tight_layout()
    fig.savefig(docs / "performance-families.png", dpi=110)

    rivals = [(n, results.peers(n)) for n in results.names if results.peers(n)]
    fig, ax = plt.subplots(figsize=(9, 0.24 * len(rivals) + 1.4))
    names = sorted({p for _, peers in rivals for p in peers})
    colours = dict(zip(names, ["#ff7f0e", "#2ca02c", "#9467bd", "#8c564b"]))
    for y, (name, peers) in enumerate(reversed(rivals)):
        ours = results.get(results.best, name, CLIP, "Mpx/s")
        ax.barh(y, ours, color="#1f77b4", height=0.7, label="fikleipa" if y == 0 else None)
        for peer in peers:
            theirs = results.get(results.best, name, CLIP, f"{peer} Mpx/s")
            ax.plot([theirs] * 2, [y - 0.42, y + 0.42], color=colours[peer], lw=3)
    for peer in names:
        ax.plot([], [], color=colours[peer], lw=3, label=peer)
    ax.set_yticks(range(len(rivals)), [name for name, _ in reversed(rivals)])
    ax.set_ylim(-0.8, len(rivals) - 0.2)
    ax.set_xlabel("megapixels a second, 1920x1080, one core")
    ax.legend(loc="lower right")
    fig.tight_layout()
    fig.savefig(docs / "performance-peers.png", dpi=110)

    fig, ax = plt.subplots(figsize=(9, 5))
    sizes = [s for s in SIZES if any(key[2] == s and key[0] == results.best for key in results.rows)]
    for family in families:
        members = [n for n in results.names if family_of(n) is family]
        medians = []
        for size in sizes:
            speeds = [results.get(results.best, n, size, "GB/s") for n in members]
            speeds = [s for s in speeds if s]
            medians.append(statistics.median(speeds) if speeds else None)
        ax.plot(sizes, medians, marker="o", label=family[0])
    ax.set_ylabel("gigabytes read and written a second (median of the family)")
    ax.set_yscale("log")
    ax.legend(fontsize=7, loc="upper right")
    fig.tight_layout()
    fig.savefig(docs / "performance-sizes.png", dpi=110)


def write(docs, results):
    docs.mkdir(exist_ok=True)
    plot(results, docs)
    growth = growth_rows(results)
    bands = [[name.split("/")[1], figure(row["Mpx/s"], 0), figure(row["ratio"])]
             for name, row in results.others.items() if name.startswith("bands/")]
    start = {name: row["real_time"] for name, row in results.others.items() if name.startswith("start/")}
    worst_growth = max(growth, key=growth.get) if growth else None
    slower = [row for row in peer_rows(results) if float(row[4]) < 1]
    text = f"""# Performance

Written by `scripts/bench`. Machine: {machine(results.context)}.

A ratio is the median time of a conversion over the median time of copying the same bytes in the same run, on one core.
`1920x1080` is a clip larger than the caches, `1920x1080-reused` one frame over and over, `cached` two rows that stay in
the first cache. Figures without a level are those of {results.best}, the best this machine has.

## Against the copy

![ratio to the copy per family](performance-families.png)

{table(["family", "converters", "bar", "median", "worst", "over the bar", "median avx2", "worst avx2"],
       family_rows(results))}
## Against other libraries

The blue bar is ours, the marks are theirs. They do the same work on the same frames, though not to the same bytes.

![megapixels a second beside peers](performance-peers.png)

Slower than a peer: {", ".join(f"{row[0]} ({row[1]}, {row[4]})" for row in slower) or "none"}.

{table(["converter", "peer", "Mpx/s", "theirs", "times theirs"], peer_rows(results), 2)}
## Over frame sizes

![throughput over frame size](performance-sizes.png)

Nanoseconds a pixel at 7680x4320 over those at 1920x1080: median {figure(statistics.median(growth.values()) if growth else None)},
at most {figure(growth.get(worst_growth))} (`{worst_growth}`).

## Bands on threads

Frames of 3840x2160 that the library splits over eight threads, beside one thread in the same turns
(`-reused`: one frame over and over):

{table(["converter", "level", "size", "Mpx/s", "one thread", "times one thread"], split_rows(results), 3)}
`yuv422p10_to_012v` at 3840x2160 in one to eight bands, each on a thread of its own:

{table(["bands", "Mpx/s", "ratio"], bands)}
To start eight threads and hear from the last takes {figure(start.get("start/kept"), 0)} us with the threads that
`libpxutil` keeps; to start and join eight of the system's, {figure(start.get("start/system"), 0)} us.

## Every converter

Ratios by level, megapixels a second by size.

{table(["converter", "bar", results.best, *reversed(results.levels[:-1]), *SIZES, "GB/s"], converter_rows(results))}"""
    (docs / "performance.md").write_text(text)
    record = {"machine": machine(results.context), "level": results.best,
              "ratios": {n: round(results.ratio(n), 3) for n in results.names if results.ratio(n)}}
    (docs / "performance.json").write_text(json.dumps(record, indent=1) + "\n")


def compare(docs, *runs):
    record = json.loads((docs / "performance.json").read_text())
    if record["level"] != runs[0].best:
        sys.exit(f"the record is of {record['level']}, this machine's best level is {runs[0].best}")
    slower = {}
    for name in runs[0].names:
        before = record["ratios"].get(name)
        now = min(run.ratio(name) for run in runs)
        if before is not None and now > SLOWER * before:
            slower[name] = f"{name}: ratio {now:.2f}, {now / before - 1:.0%} slower than the recorded {before:.2f}"
    print("\n".join(slower.values()) or f"{len(runs[0].names)} converters, none more than 15 % slower than recorded")
    sys.exit(1 if slower else 0)


if __name__ == "__main__":
    if len(sys.argv) < 4 or sys.argv[1] not in ("write", "compare"):
        sys.exit(__doc__)
    if sys.argv[1] == "write":
        write(Path(sys.argv[2]), Results(*sys.argv[3:]))
    else:
        compare(Path(sys.argv[2]), *map(Results, sys.argv[3:]))
