"""Draws the plate, each well coloured by its quantification cycle.

    plate_heat_map.py RUN.vex PICTURE.png
"""

import string
import sys

import matplotlib.pyplot as plt
import numpy as np

import vex2


def main(document: str, picture: str) -> None:
    run = vex2.open(document)
    plate = run.plate
    cycles = np.full(plate.rows * plate.columns, np.nan)
    table = run.cq().drop_duplicates("number")
    cycles[table["number"] - 1] = table["cq"]
    grid = cycles.reshape(plate.rows, plate.columns)
    figure, axes = plt.subplots(figsize=(9, 5), layout="constrained")
    image = axes.imshow(grid, cmap="viridis_r")
    for row, column in np.argwhere(~np.isnan(grid)):
        value = grid[row, column]
        is_dark = image.norm(value) > 0.6
        style = {"ha": "center", "va": "center", "color": "white" if is_dark else "black"}
        axes.text(column, row, f"{value:.1f}", fontsize=8, **style)
    axes.set_xticks(range(plate.columns), [str(column + 1) for column in range(plate.columns)])
    axes.set_yticks(range(plate.rows), list(string.ascii_uppercase[: plate.rows]))
    axes.xaxis.tick_top()
    axes.set_title(run.path)
    figure.colorbar(image, label="quantification cycle")
    figure.savefig(picture, dpi=120)


if __name__ == "__main__":
    main(*sys.argv[1:])
