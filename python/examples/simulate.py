"""Records a simulated run: standards, two samples in four replicates, and water as control.

    simulate.py RUN.vex [SEED]
"""

import sys

import numpy as np
from numpy.typing import NDArray

import vex2

CYCLES = 40
TEMPERATURES = np.arange(60.0, 95.5, 0.5)
STANDARDS = (1e6, 1e5, 1e4, 1e3, 1e2, 1e1)
SAMPLES = {"kidney": 2.5e4, "liver": 4e3}


def wells(factor: float) -> tuple[list[vex2.Well], NDArray[np.float64]]:
    """Returns the plate setup, and the number of copies with which each well begins."""
    setup: list[vex2.Well] = []
    copies: list[float] = []

    def add(sample: str, task: str, quantity: float | None, amount: float) -> None:
        target = vex2.Target("GENE", task, quantity, "FAM")
        setup.append(vex2.Well(len(setup) + 1, "", sample, (target,)))
        copies.append(amount)

    for quantity in STANDARDS:
        for _ in range(4):
            add(f"standard {quantity:g}", "STND", quantity, quantity)
    for sample, amount in SAMPLES.items():
        for _ in range(4):
            add(sample, "UNKN", None, amount * factor)
    for _ in range(4):
        add("water", "NTC", None, 0.0)
    return setup, np.array(copies)


def main(path: str, seed: int = 1) -> None:
    chance = np.random.default_rng(seed)
    setup, copies = wells(1 + (seed - 1) / 2)
    amount = copies * chance.normal(1, 0.05, len(copies))
    baseline = chance.normal(1.0, 0.05, len(copies))
    melts_at = 82 + chance.normal(0, 0.1, len(copies))

    def noise() -> NDArray[np.float64]:
        return chance.normal(0, 0.004, len(copies))

    plate = vex2.Plate(wells=tuple(setup))
    with vex2.record(path, plate, scale=1000, started="2026-03-05T08:00:00Z") as rec:
        for cycle in range(1, CYCLES + 1):
            product = amount * 1.95**cycle
            signal = 12 * product / (product + 3e11)
            readings = baseline + 0.002 * cycle + signal + noise()
            rec.append(readings, cycle=cycle, time_s=60.0 * cycle, temperature_c=60.0)
        for step, temperature in enumerate(TEMPERATURES, start=1):
            bound = 1 / (1 + np.exp((temperature - melts_at) / 0.7))
            signal = np.where(copies > 0, 12 * bound, 0) * (1 - (temperature - 60) / 120)
            rec.append(
                baseline + signal + noise(),
                stage="melt",
                cycle=step,
                time_s=60.0 * CYCLES + 10.0 * step,
                temperature_c=temperature,
            )


if __name__ == "__main__":
    main(sys.argv[1], *map(int, sys.argv[2:]))
