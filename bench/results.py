"""What fikleipa_bench measured, and the record of it that later runs are compared with."""
import json
import re
import statistics

CLIP, CACHED, LARGER, LARGEST = "1920x1080", "cached", "3840x2160", "7680x4320"
SIZES = [CACHED, "720x486", f"{CLIP}-reused", CLIP, LARGER, LARGEST]
LEVELS = ["portable", "sse4.1", "avx2", "avx512"]
NAME = re.compile(rf"({'|'.join(LEVELS)})/(.+)/({'|'.join(SIZES)}|{LARGER}-reused)/iterations:.*")
RECORDED = [CLIP, CACHED]
SLOWER = 1.15
AS_FAST = 1.05

# A family, the ratio that it is to stay within, and its converters' names. The first that fits counts.
FAMILIES = [
    ("double-precision converters", 3.00, r".*[Ff]loat.*"),
    ("RGB48/64 and 10-bit RGB to v210 and deep planes", 1.80, r"RGB(64|10)_.*"),
    ("alpha planes", 1.15, r".*_Alpha.*"),
    ("RGB24/32 to v210 with the chroma filter", 1.60, r"(RGB(24|32)_to_012v|v210FromRGB).*"),
    ("RGB24/32 to 8-bit YCbCr and 10-bit planes", 1.40, r"RGB(24|32)_to_.*"),
    ("to 15/16-bit RGB", 1.20, r".*_to_rgb5\d\d"),
    ("v210 and 10/12-bit planes to 8-bit and 16-bit RGB", 1.30,
     r"(v210ToRGB|10ToRGB|12ToRGB|16ToRGB|planar10ToRGB|012v_to_rgb).*"),
    ("8-bit YCbCr to 16-bit-component RGB", 1.30, r"ToRGB(Planar)?Int16.*"),
    ("8-bit YCbCr to 32- and 24-bit RGB, planes", 1.10, r"(.*_to_rgb(24|32)|ToRGBPlanarInt)"),
    ("v210 and deep planes to and from every 8- and 10-bit layout", 1.15, r".*(012v|yuv4|planar_?16|v210).*"),
    ("reorderings, copies, planar and packed 8-bit, flips", 1.05, r".*"),
]
GROWTH_BAR = 1.25


def family_of(name):
    return next(family for family in FAMILIES if re.fullmatch(family[2], name))


class Results:
    """Counters by (level, converter, size): of several readings, those of the one with the median ratio."""

    def __init__(self, *paths):
        documents = [json.loads(path.read_text()) for path in paths]
        self.context = documents[0]["context"]
        readings, self.others = {}, {}
        for each in (benchmark for document in documents for benchmark in document["benchmarks"]):
            if match := NAME.fullmatch(each["name"]):
                readings.setdefault(match.groups(), []).append(each)
            else:
                self.others[each["name"]] = each
        self.rows = {key: sorted(rows, key=lambda row: row["ratio"])[len(rows) // 2] for key, rows in readings.items()}
        self.levels = [level for level in LEVELS if any(key[0] == level for key in self.rows)]
        self.best = self.levels[-1] if self.levels else None
        names = dict.fromkeys(name for level, name, size in self.rows if size == CLIP and level == self.best)
        self.cells = [name for name in names if name.startswith("transcode/")]
        self.names = [name for name in names if name not in self.cells]

    def get(self, name, counter, size=CLIP, level=None):
        return self.rows.get((level or self.best, name, size), {}).get(counter)

    def ratio(self, name, level=None):
        return self.get(name, "ratio", level=level)

    def nanoseconds(self, name, size=CLIP):
        speed = self.get(name, "Mpx/s", size)
        return 1e3 / speed if speed else None

    def members(self, family):
        return [name for name in self.names if family_of(name) is family]

    def missed(self):
        """Converters above the bar of their family, the farthest first."""
        over = {name: self.ratio(name) / family_of(name)[1] for name in self.names
                if round(self.ratio(name), 2) > family_of(name)[1]}
        return sorted(over, key=over.get, reverse=True)

    def doubtful(self):
        """Benchmarks that miss something, which a busy machine may be the cause of."""
        beaten = [name for name in self.names if min(self.peers(name).values(), default=1) < 1]
        grown = [name for name, growth in self.growth().items() if growth > GROWTH_BAR]
        return ([f"{self.best}/{name}/{CLIP}" for name in dict.fromkeys(self.missed() + beaten)]
                + [f"{self.best}/{name}/{LARGEST}" for name in grown])

    def peers(self, name, size=CLIP):
        row = self.rows.get((self.best, name, size), {})
        return {key.removeprefix("over "): value for key, value in row.items()
                if key.startswith("over ") and key != "over one thread"}

    def growth(self):
        """Nanoseconds a pixel at the largest size over those of smaller frames in the same turns."""
        all_growth = {name: self.get(name, "growth", LARGEST) for name in self.names}
        return {name: growth for name, growth in all_growth.items() if growth}

    def bands(self):
        """Rows by the number of bands."""
        return {int(name.split("/")[1]): row for name, row in self.others.items() if name.startswith("bands/")}

    def starts(self):
        """Microseconds to start threads, by their number."""
        return {int(name.split("/")[1]): row["us"] for name, row in self.others.items() if name.startswith("start/")}

    def recorded(self, counter="ratio"):
        """What a record keeps of a counter, by the name of the benchmark."""
        return {f"{level}/{name}/{size}": round(row[counter], 3)
                for (level, name, size), row in self.rows.items() if size in RECORDED}


def medians(runs, counter="ratio"):
    """Of several runs, by the name of the benchmark."""
    readings = {}
    for run in runs:
        for name, value in run.recorded(counter).items():
            readings.setdefault(name, []).append(value)
    return {name: statistics.median(values) for name, values in readings.items()}


def slower(record, runs):
    """The median ratio of several runs and the recorded one, of the benchmarks that are slower beyond bearing."""
    return {name: (now, record[name]) for name, now in medians(runs).items()
            if name in record and now > SLOWER * record[name]}
