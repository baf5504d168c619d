"""Draws the amplification curves, coloured by sample.

    amplification_plot.py RUN.vex PICTURE.png
"""

import sys

import matplotlib.pyplot as plt

import vex2


def main(document: str, picture: str) -> None:
    run = vex2.open(document)
    curves = run.amplification
    table = run.cq()
    figure, axes = plt.subplots(figsize=(8, 5), layout="constrained")
    colours = {sample: f"C{index % 10}" for index, sample in enumerate(table["sample"].unique())}
    for sample, wells in table.groupby("sample", sort=False):
        for number, well in enumerate(wells["well"]):
            label = str(sample) if number == 0 else None
            axes.plot(curves.cycle, curves.well(well), color=colours[sample], lw=1, label=label)
    axes.set(title=run.path, xlabel="cycle", ylabel="fluorescence")
    axes.margins(x=0)
    axes.grid(alpha=0.3)
    axes.legend(loc="upper left", bbox_to_anchor=(1, 1), frameon=False)
    figure.savefig(picture, dpi=120)


if __name__ == "__main__":
    main(*sys.argv[1:])
