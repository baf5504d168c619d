"""Draws the melting curves and their negative derivatives, with the peaks.

    melting_curves.py RUN.vex PICTURE.png
"""

import sys

import matplotlib.pyplot as plt
import numpy as np

import vex2


def main(document: str, picture: str) -> None:
    run = vex2.open(document)
    table = run.melting.to_frame()
    peaks = run.melting_peaks()
    figure, (above, below) = plt.subplots(2, 1, figsize=(8, 7), sharex=True, layout="constrained")
    above.plot(table.index, table.to_numpy(), lw=0.8)
    slopes = -np.gradient(table.to_numpy(), table.index.to_numpy(), axis=0)
    below.plot(table.index, slopes, lw=0.8)
    below.plot(peaks["temperature_c"], peaks["height"], "k.", ms=5, label="peaks of the smoothed curves")
    above.set(title=run.path, ylabel="fluorescence")
    below.set(xlabel="temperature in °C", ylabel="−dF/dT per °C")
    below.legend(frameon=False)
    below.margins(x=0)
    figure.savefig(picture, dpi=120)


if __name__ == "__main__":
    main(*sys.argv[1:])
