#!/usr/bin/python3
"""Turns what fikleipa_bench measured into documents, or compares it with the record of an earlier run.

usage: report.py write DOCS_DIR RESULTS.json...     writes performance.md, its plots and the record performance.json
       report.py doubtful DOCS_DIR RESULTS.json...  prints a filter of what misses a bar or loses to a peer
       report.py suspects DOCS_DIR RESULTS.json     prints a filter of the benchmarks that seem more than 15 % slower
       report.py compare DOCS_DIR RESULTS.json...   names those that are by the median of all runs; exits with 1
                                                    unless it is the copy alone that differs from the record
"""
import json
import platform
import re
import statistics
import subprocess
import sys
from pathlib import Path

import plots
from results import (AS_FAST, CACHED, CLIP, FAMILIES, GROWTH_BAR, LARGER, LARGEST, SIZES, Results, family_of, medians,
                     slower)


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


def beside_bar(ratio, bar):
    text = figure(ratio)
    return f"**{text}**" if ratio is not None and round(ratio, 2) > bar else text


def listed(items):
    return ", ".join(items) or "none"


def family_table(results):
    rows = []
    for family in FAMILIES:
        name, bar, _ = family
        ratios = {n: results.ratio(n) for n in results.members(family)}
        if not ratios:
            continue
        worst = max(ratios, key=ratios.get)
        over = [n for n in results.missed() if n in ratios]
        rows.append([name, len(ratios), figure(bar), beside_bar(statistics.median(ratios.values()), bar),
                     f"{beside_bar(ratios[worst], bar)} `{worst}`", len(over) or ""])
        for level in reversed(results.levels[:-1]):
            lower = [r for r in (results.ratio(n, level) for n in ratios) if r is not None]
            rows[-1].append(figure(statistics.median(lower) if lower else None))
    return table(["family", "converters", "bar", "median", "worst", "over the bar",
                  *(f"median, {level}" for level in reversed(results.levels[:-1]))], rows)


def missed_table(results):
    rows = []
    for name in results.missed():
        bar, ratio, took, arithmetic = (family_of(name)[1], results.ratio(name), results.nanoseconds(name),
                                        results.nanoseconds(name, CACHED))
        limit = "" if arithmetic is None else "arithmetic" if arithmetic > 0.75 * took else "memory"
        rows.append([f"`{name}`", figure(bar), figure(ratio), figure(took / ratio, 3), figure(took, 3),
                     figure(arithmetic, 3), limit])
    return table(["converter", "bar", "ratio", "copy, ns a pixel", "conversion", "in cache", "limit"], rows)


def missed_text(results):
    if not results.missed():
        return "Every bar is met.\n"
    return f"""{missed_table(results)}
The times are nanoseconds a pixel. In cache a conversion takes what its arithmetic takes: where that is three quarters of
the whole, arithmetic is the limit, elsewhere it is how rows come from memory and go there.
"""


def peer_gains(results):
    """What a peer takes over what the converter takes, at both sizes."""
    for name in results.names:
        at = {size: results.peers(name, size) for size in (CLIP, LARGER)}
        for peer in sorted(at[CLIP], key=at[CLIP].get):
            yield name, peer, [at[size].get(peer) for size in at]


def peer_table(results):
    rows = []
    for name, peer, gains in peer_gains(results):
        rows.append([f"`{name}`", peer, figure(results.get(name, "Mpx/s"), 0), figure(results.get(name, f"{peer} Mpx/s"), 0)]
                    + [f"**{figure(gain)}**" if gain and gain < 1 else figure(gain) for gain in gains])
    return table(["converter", "peer", "Mpx/s", "theirs", "times theirs", f"at {LARGER}"], rows, 2)


def slower_than_peers(results):
    found = []
    for name, peer, gains in peer_gains(results):
        if gains[0] < 1:
            found.append(f"`{name}` ({peer}, {gains[0]:.2f})")
    return listed(found)


def growth_text(results):
    growth = results.growth()
    if not growth:
        return "not measured."
    over = sorted((n for n in growth if round(growth[n], 2) > GROWTH_BAR), key=growth.get, reverse=True)
    return (f"median {statistics.median(growth.values()):.2f}, bar {GROWTH_BAR}.\n"
            f"Above the bar: {listed(f'`{n}` ({growth[n]:.2f})' for n in over)}.")


def cell_table(results):
    """A row for each source, a column for each destination."""
    layouts = list(dict.fromkeys(cell.split("/")[1] for cell in results.cells))
    rows = [[source] + [figure(results.ratio(f"transcode/{source}/{destination}")) for destination in layouts]
            for source in layouts]
    return table(["from, to", *layouts], rows)


def cell_size_table(results):
    rows = []
    for size in SIZES:
        ratios = {cell: ratio for cell in results.cells if (ratio := results.get(cell, "ratio", size))}
        if ratios:
            worst = max(ratios, key=ratios.get)
            rows.append([size, len(ratios), figure(statistics.median(ratios.values())), figure(ratios[worst]),
                         "`{1}` to `{2}`".format(*worst.split("/"))])
    return table(["size", "cells", "median", "highest", "which"], rows)


def split_table(results):
    rows = []
    for (_, name, size), row in results.rows.items():
        if "over one thread" in row:
            rows.append([f"`{name.removesuffix('(split)')}`", size, figure(row["Mpx/s"], 0),
                         figure(row["one thread Mpx/s"], 0), figure(row["over one thread"])])
    return table(["converter", "size", "Mpx/s", "one thread", "times one thread"], rows, 2)


def band_table(results):
    one = results.bands().get(1)
    rows = [[count, figure(row["Mpx/s"], 0), figure(row["Mpx/s"] / one["Mpx/s"]), figure(3840 * 2160 / row["Mpx/s"], 0),
             figure(results.starts().get(count), 0)]
            for count, row in sorted(results.bands().items())]
    return table(["bands", "Mpx/s", "times one band", "us a frame", "us to start as many threads"], rows)


def converter_table(results):
    rows = []
    for name in results.names:
        bar = family_of(name)[1]
        rows.append([f"`{name}`", figure(bar), beside_bar(results.ratio(name), bar)]
                    + [figure(results.ratio(name, level)) for level in reversed(results.levels[:-1])]
                    + [figure(results.get(name, "Mpx/s", size), 0) for size in SIZES]
                    + [figure(results.get(name, "GB/s"), 1)])
    return table(["converter", "bar", results.best, *reversed(results.levels[:-1]), *SIZES, "GB/s"], rows)


def document(results, notes):
    return f"""# Performance

Written by `scripts/bench`. Machine: {machine(results.context)}.

A ratio is the median time of a conversion over the median time of copying the same bytes in the same run, on one core.
What missed a bar or lost to a peer at first was measured five times; the run with the median ratio counts.
`1920x1080` is a clip larger than the caches, `1920x1080-reused` one frame over and over, `cached` two rows that stay in
the first cache. Figures without a level are those of {results.best}, the best this machine has. What does not reach its
bar stands in **bold**.

## Against the copy

![ratio to the copy per family](performance-families.png)

{family_table(results)}
## Not met, and why

{missed_text(results)}
{notes}
## Against other libraries

The blue bar is ours, the marks are theirs. They do the same work on the same frames, though not to the same bytes.

![megapixels a second beside peers](performance-peers.png)

Slower than a peer at 1920x1080: {slower_than_peers(results)}.

{peer_table(results)}
## Over frame sizes

![time a pixel over frame size](performance-sizes.png)

Nanoseconds a pixel at {LARGEST} over those at {CLIP}: {growth_text(results)}

## Bands on threads

`yuv422p10_to_012v` at {LARGER} in one to eight bands, each on a thread of its own, and what it costs to start as many
threads and hear from the last.

![throughput over bands](performance-bands.png)

{band_table(results)}
Frames that the library splits over eight threads, beside one thread in the same turns (`-reused`: one frame over and
over, of which the caches keep some):

{split_table(results)}
## By way of the dispatcher

Ratios of `cycbcr_transcode()` from each layout in the rows to each in the columns, at {CLIP}.

{cell_table(results)}
At every size:

{cell_size_table(results)}
## Every converter

Ratios by level, megapixels a second by size.

{converter_table(results)}"""


def write(docs, results):
    notes = (docs / "performance-notes.md").read_text()
    plots.draw(results, docs)
    (docs / "performance.md").write_text(document(results, notes))
    record = {"machine": machine(results.context), "ratios": results.recorded(), "speeds": results.recorded("Mpx/s")}
    (docs / "performance.json").write_text(json.dumps(record, indent=1) + "\n")


def read_record(docs):
    return json.loads((docs / "performance.json").read_text())


def print_filter(names):
    if names:
        print("^(" + "|".join(map(re.escape, names)) + ")/iterations")


def print_suspects(docs, run):
    print_filter(slower(read_record(docs)["ratios"], [run]))


def print_doubtful(_, results):
    print_filter(results.doubtful())


def compare(docs, *runs):
    """The copy drifts on a shared machine. What lags behind it alone is named, but counts as no slower."""
    record = read_record(docs)
    same_machine = machine(runs[0].context).split(";")[0] == record["machine"].split(";")[0]
    speeds = medians(runs, "Mpx/s")
    status = 0
    found = slower(record["ratios"], runs)
    for name, (now, before) in found.items():
        line = f"{name}: ratio {now:.2f}, {now / before - 1:.0%} slower than the recorded {before:.2f}"
        if same_machine and speeds[name] * AS_FAST > record["speeds"][name]:
            line += f", yet {speeds[name]:.0f} Mpx/s as against {record['speeds'][name]:.0f}: it is the copy that differs"
        else:
            status = 1
        print(line)
    measured = runs[0].recorded()
    if unknown := [name for name in measured if name not in record["ratios"]]:
        print(f"{len(unknown)} without a record, the first is {unknown[0]}")
    if not found:
        print(f"{len(measured) - len(unknown)} measured, none more than 15 % slower than recorded")
    sys.exit(status)


if __name__ == "__main__":
    modes = {"write": write, "doubtful": print_doubtful, "suspects": print_suspects, "compare": compare}
    if len(sys.argv) < 4 or sys.argv[1] not in modes:
        sys.exit(__doc__)
    docs_dir, *paths = map(Path, sys.argv[2:])
    if sys.argv[1] in ("write", "doubtful"):
        modes[sys.argv[1]](docs_dir, Results(*paths))
    else:
        modes[sys.argv[1]](docs_dir, *map(Results, paths))
