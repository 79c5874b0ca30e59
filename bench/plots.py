"""Pictures of what was measured."""
import statistics

import matplotlib

matplotlib.use("Agg")
from matplotlib import pyplot as plt  # noqa: E402

from results import CLIP, FAMILIES, SIZES  # noqa: E402

OURS, BAR = "#1f77b4", "#d62728"
FARTHEST = 4  # what takes longer stands at the edge
PEERS = ["#ff7f0e", "#2ca02c", "#9467bd", "#8c564b"]


def save(fig, path):
    fig.tight_layout()
    fig.savefig(path, dpi=110)
    plt.close(fig)


def draw_families(results, path):
    """A dot for each converter beside the bar of its family."""
    families = [family for family in FAMILIES if results.members(family)]
    fig, ax = plt.subplots(figsize=(10, 0.5 * len(families) + 1.3))
    missed = set(results.missed())
    for y, family in enumerate(reversed(families)):
        ax.plot([0, family[1]], [y, y], color="#e8eef4", lw=14, solid_capstyle="butt", zorder=1)
        ax.plot([family[1]] * 2, [y - 0.3, y + 0.3], color=BAR, lw=2, zorder=2)
        ratios = {name: results.ratio(name) for name in results.members(family)}
        for name, ratio in ratios.items():
            ax.scatter(min(ratio, FARTHEST), y, s=20, alpha=0.6, color=BAR if name in missed else OURS, zorder=3)
        if (worst := max(ratios, key=ratios.get)) in missed:
            text = f"{worst} {ratios[worst]:.2f}"
            far = ratios[worst] > 0.7 * FARTHEST
            ax.annotate(text, (min(ratios[worst], FARTHEST), y), (-6 if far else 6, -3), textcoords="offset points",
                        ha="right" if far else "left", fontsize=7, color=BAR)
    ax.axvline(1, color="grey", lw=1, ls=":")
    ax.set_yticks(range(len(families)), [family[0] for family in reversed(families)])
    ax.set_xlabel(f"time over that of copying the same bytes, {CLIP}, {results.best}, one core\n"
                  "a dot is a converter, the red line the bar of its family")
    ax.set_xlim(0, FARTHEST + 0.1)
    save(fig, path)


def draw_peers(results, path):
    """Our throughput as a bar, that of peers as marks on it."""
    rivals = [(name, results.peers(name)) for name in results.names if results.peers(name)]
    if not rivals:
        return
    fig, ax = plt.subplots(figsize=(10, 0.24 * len(rivals) + 1.4))
    names = sorted({peer for _, peers in rivals for peer in peers})
    colours = dict(zip(names, PEERS))
    for y, (name, peers) in enumerate(reversed(rivals)):
        ax.barh(y, results.get(name, "Mpx/s"), color="#a6c8e4", height=0.7, label="fikleipa" if y == 0 else None)
        for peer in peers:
            ax.plot([results.get(name, f"{peer} Mpx/s")] * 2, [y - 0.42, y + 0.42], color=colours[peer], lw=3)
    for peer in names:
        ax.plot([], [], color=colours[peer], lw=3, label=peer)
    ax.set_yticks(range(len(rivals)), [name for name, _ in reversed(rivals)])
    ax.set_ylim(-0.8, len(rivals) - 0.2)
    ax.set_xlabel(f"megapixels a second, {CLIP}, one core")
    ax.legend(loc="lower right")
    save(fig, path)


def draw_sizes(results, path):
    """A panel for each family: throughput over frame size, a thin line for each converter, a thick one for the median."""
    families = [family for family in FAMILIES if results.members(family)]
    sizes = [size for size in SIZES if any(key[0] == results.best and key[2] == size for key in results.rows)]
    columns = 3
    rows = -(-len(families) // columns)
    fig, axes = plt.subplots(rows, columns, figsize=(11, 2.3 * rows), sharex=True, sharey=True, squeeze=False)
    for ax, family in zip(axes.flat, families):
        lines = [[results.get(name, "Mpx/s", size) for size in sizes] for name in results.members(family)]
        for line in lines:
            ax.plot(sizes, [speed or float("nan") for speed in line], color="#a6c8e4", lw=0.8)
        known = [[speed for speed in column if speed] for column in zip(*lines)]
        ax.plot(sizes, [statistics.median(column) if column else float("nan") for column in known], color=OURS, lw=2,
                marker="o", ms=3)
        ax.set_title(family[0], fontsize=7.5)
        ax.set_yscale("log")
        ax.yaxis.set_major_formatter("{x:,.0f}")
        ax.grid(axis="y", lw=0.3)
        ax.tick_params(axis="x", rotation=40, labelsize=7)
    for ax in axes.flat[len(families):]:
        ax.set_axis_off()
    for ax in axes.flat[max(0, len(families) - columns):len(families)]:
        ax.tick_params(axis="x", labelbottom=True)
    fig.supylabel("megapixels a second", fontsize=9)
    save(fig, path)


def draw_bands(results, path):
    bands = results.bands()
    if not bands:
        return
    fig, (speed, start) = plt.subplots(1, 2, figsize=(10, 3.2))
    counts = sorted(bands)
    speed.bar(counts, [bands[count]["Mpx/s"] for count in counts], color=OURS)
    speed.set_xlabel("bands")
    speed.set_ylabel("megapixels a second")
    took = results.starts()
    start.plot(sorted(took), [took[count] for count in sorted(took)], marker="o", color=OURS)
    start.set_xlabel("threads started")
    start.set_ylabel("microseconds")
    start.set_ylim(bottom=0)
    save(fig, path)


def draw(results, docs):
    plt.rcParams.update({"font.size": 9, "axes.spines.top": False, "axes.spines.right": False})
    for name, plot in {"families": draw_families, "peers": draw_peers, "sizes": draw_sizes, "bands": draw_bands}.items():
        plot(results, docs / f"performance-{name}.png")
