#!/usr/bin/env python3
"""Computes quantification cycles independently and compares them: cq_reference.py VEX [FOLDER]

This program was written from the definitions in lab/analysis/Cq.h, not from the sources. It records
runs, reads their readings with `vex export`, and compares each value of `vex cq` with its own: the
cycles, the thresholds and the baselines of both methods. FOLDER holds readings of real runs; the
default is ../shared/data/real next to the source tree. If the folder is missing, only simulated
runs are compared. The results of a real calibration must also have the known properties: see
`judge`. With --self-test as the first argument, it changes one value of each run, and must notice
each change.
"""

import csv
import io
import math
import pathlib
import statistics
import subprocess
import sys
import tempfile

TOLERANCE = 0.001
FEWEST = 10  # cycles


def line(xs, ys):
    """Intercept and slope by least squares."""
    mean_x, mean_y = statistics.fmean(xs), statistics.fmean(ys)
    slope = (sum((x - mean_x) * (y - mean_y) for x, y in zip(xs, ys))
             / sum((x - mean_x) ** 2 for x in xs))
    return mean_y - slope * mean_x, slope


def reading_noise(values):
    """The standard deviation of a reading, from the median size of the second differences."""
    bends = [abs(a - 2 * b + c) for a, b, c in zip(values, values[1:], values[2:])]
    return 1.4826 / math.sqrt(6) * statistics.median(bends) if bends else 0.0


def without_outliers(known):
    """The readings without those that lie far outside of three of their four neighbours."""
    values = [value for _, value in known]
    if len(values) < FEWEST:
        return known
    limit = max(10 * reading_noise(values), 0.05 * (max(values) - min(values)))
    kept = []
    for i, value in enumerate(values):
        first = min(max(i - 2, 0), len(values) - 5)
        beside = sorted(values[first:i] + values[i + 1:first + 5])
        above, below = value - beside[2], beside[1] - value
        is_high = above > max(limit, beside[2] - beside[0]) and first + 2 == i
        is_low = below > max(limit, beside[3] - beside[1])
        if i in (0, len(values) - 1) or not (is_high or is_low):
            kept.append(known[i])
    return kept


def without_gaps(known):
    """Readings at consecutive cycles; missing ones between others are interpolated linearly."""
    filled = []
    for cycle in range(int(known[0][0]), int(known[-1][0]) + 1) if known else ():
        before = [point for point in known if point[0] <= cycle]
        after = [point for point in known if point[0] >= cycle]
        (x0, y0), (x1, y1) = before[-1], after[0]
        filled.append((cycle, y0 if x0 == x1 else y0 + (y1 - y0) * (cycle - x0) / (x1 - x0)))
    return filled


def second_derivative(y, i):
    """Twice the quadratic term of the parabola through five readings, by its normal equations."""
    window = [(k, y[i + k]) for k in range(-2, 3)]
    # The sums of k^0, k^2 and k^4 over the window are 5, 10 and 34.
    level = sum(value for _, value in window)
    square = sum(k * k * value for k, value in window)
    return 2 * (5 * square - 10 * level) / (5 * 34 - 10 * 10)


class Curve:
    def __init__(self, well, points):
        self.well = well
        known = [(cycle, value) for cycle, value in points if value is not None]
        self.reading_noise = reading_noise([value for _, value in known])
        points = without_gaps(without_outliers(known))
        self.cycles = [cycle for cycle, _ in points]
        self.y = [value for _, value in points]
        self.usable = len(points) >= FEWEST
        if not self.usable:
            return
        self.find_take_off()
        self.find_baseline()

    def find_take_off(self):
        places = range(4, len(self.y) - 2)  # from the fifth cycle to the last but two
        best = max(places, key=lambda i: (second_derivative(self.y, i), -i))
        self.ends_rising = best == places[-1]
        self.begins_rising = best == places[0]
        self.take_off = float(best)
        if not self.ends_rising:
            left, top, right = (second_derivative(self.y, best + k) for k in (-1, 0, 1))
            if left + right - 2 * top < 0:
                shift = (left - right) / (2 * (left + right - 2 * top))
                self.take_off += min(max(shift, -0.5), 0.5)

    def fit(self, first, last):
        """`first` and `last` are indexes."""
        xs, ys = self.cycles[first:last + 1], self.y[first:last + 1]
        self.baseline = xs[0], xs[-1]
        intercept, slope = line(xs, ys) if len(xs) >= 8 else (statistics.fmean(ys), 0.0)
        rest = sum((y - intercept - slope * x) ** 2 for x, y in zip(xs, ys))
        is_line = len(xs) >= 8
        self.noise = math.sqrt(rest / (len(xs) - (2 if is_line else 1)))
        if not is_line:
            self.noise = max(self.noise, self.reading_noise)
        mean = statistics.fmean(xs)
        spread = sum((x - mean) ** 2 for x in xs) if is_line else math.inf
        scatter = max(self.noise, self.reading_noise)
        self.errors = [scatter * math.sqrt(1 + 1 / len(xs) + (x - mean) ** 2 / spread)
                       for x in self.cycles]
        self.corrected = [y - intercept - slope * x for x, y in zip(self.cycles, self.y)]
        top = max(range(int(self.take_off), len(self.y)), key=lambda i: (self.corrected[i], -i))
        self.top, self.amplitude = top, self.corrected[top]
        begin = int(self.take_off)
        self.lasting = max(min(pair) for pair in zip(self.corrected[begin:],
                                                     self.corrected[begin + 1:]))
        is_sure = [value > 0 and value >= 7 * error
                   for value, error in zip(self.corrected, self.errors)][begin:]
        self.is_sure = any(map(all, zip(is_sure, is_sure[1:])))

    def find_baseline(self):
        third = 2
        eight_before = math.floor(self.take_off) - 8
        self.fit(third, max(eight_before, third + 2))

    def is_early(self, least):
        """Whether half of the rise is in cycles 3 to 10, and the rise is at least `least`."""
        rise = statistics.median(self.y[-3:]) - self.y[2]
        return (rise > 0 and rise >= max(least, 10 * self.reading_noise)
                and self.y[9] - self.y[2] >= rise / 2)

    def between(self, values, place):
        low = math.floor(place)
        if low + 1 >= len(values):
            return values[-1]
        return values[low] + (place - low) * (values[low + 1] - values[low])

    def crossing(self, threshold):
        if self.amplitude < threshold:
            return None
        passes = [i for i in range(1, self.top + 1)
                  if self.corrected[i - 1] < threshold <= self.corrected[i]]
        if not passes:
            return None
        low, high = self.corrected[passes[-1] - 1], self.corrected[passes[-1]]
        if low > 0:
            part = math.log(threshold / low) / math.log(high / low)
        else:
            part = (threshold - low) / (high - low)
        return self.between(self.cycles, passes[-1] - 1 + part)


def analyse(curves):
    """The values of each curve for each method: cq, threshold, begin and end of the baseline."""
    usable = [curve for curve in curves if curve.usable]
    highest = max(statistics.median(curve.corrected[-3:]) for curve in usable)
    rising = [curve for curve in usable if curve.lasting > 0 and curve.is_sure
              and curve.lasting >= 10 * curve.noise and curve.lasting >= 0.05 * highest
              and not (curve.begins_rising and curve.is_early(0.05 * highest))]
    levels = {}
    for curve in rising:
        level = curve.between(curve.corrected, curve.take_off)
        if not curve.ends_rising and not curve.begins_rising and level > 0:
            kinds = levels.setdefault(curve.well["target"], ([], []))
            kinds[curve.well["task"] == "NTC"].append(level)
    thresholds = {name: statistics.median(kinds[0] or kinds[1]) for name, kinds in levels.items()}
    found = {"threshold": [], "sdm": []}
    for curve in curves:
        threshold = thresholds.get(curve.well["target"])
        crossing = take_off = None
        if curve in rising:
            crossing = curve.crossing(threshold) if threshold else None
            if not curve.ends_rising and not curve.begins_rising:
                take_off = curve.between(curve.cycles, curve.take_off)
        elif curve.usable and not curve.is_early(0.05 * highest):
            curve.fit(2, len(curve.y) - 1)
        begin, end = curve.baseline if curve.usable else (None, None)
        found["threshold"].append((crossing, threshold, begin, end))
        found["sdm"].append((take_off, threshold, begin, end))
    return found


def read_curves(vex, path):
    wells = list(csv.DictReader(io.StringIO(run(vex, "wells", path, "--csv"))))
    points = {}
    for row in csv.DictReader(io.StringIO(run(vex, "export", path))):
        if row["stage"] == "amplification":
            value = None if row["fluorescence"] == "NA" else float(row["fluorescence"])
            points.setdefault(row["well"], []).append((float(row["cycle"]), value))
    return [Curve(well, points[well["well"]]) for well in wells if well["target"]]


def run(vex, *arguments):
    done = subprocess.run([vex, *map(str, arguments)], capture_output=True, text=True)
    if done.returncode:
        sys.exit(f"vex {' '.join(map(str, arguments))}: {done.stderr}")
    return done.stdout


def differs(own, theirs, scale=1.0):
    if own is None or theirs == "":
        return (own is None) != (theirs == "")
    return not abs(own - float(theirs)) <= TOLERANCE * scale


def compare(vex, path, spoil):
    """The differences in one run, and the number of cycles that agree."""
    curves = read_curves(vex, path)
    faults, agreed = [], 0
    for method, values in analyse(curves).items():
        rows = list(csv.DictReader(io.StringIO(
            run(vex, "cq", path, "--method", method, "--format", "csv"))))
        if len(rows) != len(curves):
            return [f"{path.name}: {len(rows)} rows for {len(curves)} curves"], 0
        if spoil:
            place = next(i for i, row in enumerate(rows) if row["cq"])
            rows[place]["cq"] = str(float(rows[place]["cq"]) + 2 * TOLERANCE)
        for curve, row, (cq, threshold, begin, end) in zip(curves, rows, values):
            name = f"{path.name}, {method}, {row['well']}"
            if row["well"] != curve.well["well"] or row["detector"] != curve.well["target"]:
                faults.append(f"{name}: stands for {curve.well['well']}")
            if differs(cq, row["cq"]):
                faults.append(f"{name}: Cq {row['cq'] or 'none'}, by definition {cq}; {row['note']}")
            if differs(threshold, row["threshold"], threshold or 1):
                faults.append(f"{name}: threshold {row['threshold']}, by definition {threshold}")
            if differs(begin, row["baseline_start"]) or differs(end, row["baseline_end"]):
                faults.append(f"{name}: baseline {row['baseline_start']}-{row['baseline_end']}, "
                              f"by definition {begin}-{end}")
            agreed += cq is not None and not differs(cq, row["cq"])
    return faults, agreed


def r_squared(xs, ys):
    intercept, slope = line(xs, ys)
    mean = statistics.fmean(ys)
    return 1 - (sum((y - intercept - slope * x) ** 2 for x, y in zip(xs, ys))
                / sum((y - mean) ** 2 for y in ys))


def judge(vex, path):
    """Describes what is wrong with the results of a real calibration, a dilution series for each
    detector.

    For 12 of 16 detectors, the mean cycles of the quantities must be on a line over the logarithm
    of the quantity. Means are used because the series come from two cultures, which differ by up to
    a cycle. Wells without template must have no cycle, or a later one than every sample of the
    detector. In 95 % of the wells, the two methods must agree within 0.7 cycles.
    """
    by_method = [list(csv.DictReader(io.StringIO(
        run(vex, "cq", path, "--method", method, "--format", "csv")))) for method in
        ("threshold", "sdm")]
    rows = by_method[0]
    faults = []
    detectors = {row["detector"] for row in rows}
    straight = 0
    for detector in detectors:
        levels, latest, controls = {}, 0, []
        for row in rows:
            if row["detector"] != detector or not row["cq"]:
                continue
            if row["task"] == "STND":
                levels.setdefault(float(row["quantity"]), []).append(float(row["cq"]))
                latest = max(latest, float(row["cq"]))
            elif row["sample"].endswith(" NT"):
                controls.append((row["well"], float(row["cq"])))
        straight += r_squared([math.log10(quantity) for quantity in levels],
                              [statistics.fmean(cqs) for cqs in levels.values()]) >= 0.98
        faults += [f"{well}: no template, but Cq {cq}" for well, cq in controls if cq <= latest]
    if straight < 0.75 * len(detectors):
        faults.append(f"{straight} of {len(detectors)} detectors have a straight line")
    both = [abs(float(one["cq"]) - float(other["cq"])) for one, other in zip(*by_method)
            if one["cq"] and other["cq"]]
    agreed = sum(difference <= 0.7 for difference in both)
    print(f"{path.name}: {straight} of {len(detectors)} lines are straight, the methods agree in "
          f"{agreed} of {len(both)} wells")
    if agreed < 0.95 * len(both):
        faults.append(f"the methods agree in {agreed} of {len(both)} wells")
    return faults


def with_gaps(path):
    """Copies a table of readings and leaves some readings out."""
    lines = path.read_text(encoding="utf-8").splitlines()
    for i in range(1, len(lines), 17):
        lines[i] = lines[i].rsplit(",", 1)[0] + ",NA"
    copy = path.with_name("gaps.csv")
    copy.write_text("\n".join(lines) + "\n", encoding="utf-8")
    return copy


def with_faults(path):
    """Copies a table of readings, leaves two cycles out and adds outliers."""
    rows = list(csv.reader(path.open(encoding="utf-8")))
    cycle, light = rows[0].index("cycle"), rows[0].index("fluorescence")
    amplification = [row for row in rows[1:] if row[rows[0].index("stage")] == "amplification"]
    brightest = max(float(row[light]) for row in amplification)
    for row in amplification[5::43]:
        row[light] = f"{min(float(row[light]) + 0.5 * brightest, brightest):.3f}"
    for row in amplification[9::61]:
        row[light] = f"{0.6 * float(row[light]):.3f}"
    copy = path.with_name("faults.csv")
    with copy.open("w", encoding="utf-8", newline="") as file:
        csv.writer(file).writerows(row for row in rows if row[cycle] not in ("12", "27"))
    return copy


def make_runs(vex, folder, real):
    runs = []
    for seed, wells in ((1, 96), (2, 384)):
        runs.append(folder / f"simulated{seed}.vex")
        run(vex, "simulate", runs[-1], "--seed", seed, "--wells", wells, "--cycles", 45,
            "--readings-out", folder / f"readings{seed}.csv", "--wells-out", folder / "wells.csv",
            "--force")
    runs.append(folder / "gaps.vex")
    run(vex, "record", runs[-1], "--readings", with_gaps(folder / "readings2.csv"),
        "--wells", folder / "wells.csv")
    runs.append(folder / "faults.vex")
    run(vex, "record", runs[-1], "--readings", with_faults(folder / "readings2.csv"),
        "--wells", folder / "wells.csv")
    for readings in sorted(real.glob("*-readings.csv")):
        runs.append(folder / readings.name.replace("-readings.csv", ".vex"))
        run(vex, "record", runs[-1], "--readings", readings,
            "--wells", str(readings).replace("-readings", "-wells"))
    return runs


def main():
    arguments = sys.argv[1:]
    spoil = arguments[0] == "--self-test"
    vex = pathlib.Path(arguments[spoil]).resolve()
    root = pathlib.Path(__file__).resolve().parents[2]
    real = pathlib.Path(arguments[spoil + 1] if len(arguments) > spoil + 1
                        else root.parent / "shared" / "data" / "real")
    missed = False
    with tempfile.TemporaryDirectory() as folder:
        for path in make_runs(vex, pathlib.Path(folder), real):
            faults, agreed = compare(vex, path, spoil)
            if path.name.startswith("calibration-384") and not spoil:
                faults += judge(vex, path)
            print(f"{path.name}: {agreed} cycles agree, {len(faults)} values differ")
            if spoil:
                missed = missed or len(faults) != 2
            else:
                print("\n".join(faults[:20]), end="\n" if faults else "")
                missed = missed or bool(faults) or agreed == 0
    return 1 if missed else 0


if __name__ == "__main__":
    sys.exit(main())
