"""Draws the standard curves with the standards and the samples.

    standard_curve.py RUN.vex PICTURE.png
"""

import sys

import matplotlib.pyplot as plt
import numpy as np

import vex2


def main(document: str, picture: str) -> None:
    run = vex2.open(document)
    wells = run.cq()
    figure, axes = plt.subplots(figsize=(7, 5), layout="constrained")
    for index, curve in enumerate(run.standard_curves().itertuples()):
        mine = wells[wells["target"] == curve.target]
        standards = mine[mine["task"] == "STND"]
        samples = mine.dropna(subset=["estimate"])
        ends = np.array([standards["quantity"].min(), standards["quantity"].max()])
        line = curve.intercept + curve.slope * np.log10(ends)
        text = f"{curve.target}: slope {curve.slope:.2f}, R² {curve.r_squared:.4f}"
        axes.plot(ends, line, color=f"C{index}", label=f"{text}, efficiency {curve.efficiency:.0%}")
        axes.plot(standards["quantity"], standards["cq"], "o", color=f"C{index}", ms=5)
        axes.plot(samples["estimate"], samples["cq"], "k+", ms=9)
    axes.set(title=run.path, xscale="log", xlabel="quantity", ylabel="quantification cycle")
    axes.grid(alpha=0.3)
    axes.legend(frameon=False)
    figure.savefig(picture, dpi=120)


if __name__ == "__main__":
    main(*sys.argv[1:])
