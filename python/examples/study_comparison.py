"""Compares the samples of a study across its plates: mean quantity and standard deviation.

    study_comparison.py STUDY.vex PICTURE.png
"""

import sys

import matplotlib.pyplot as plt

import vex2


def main(document: str, picture: str) -> None:
    study = vex2.open(document)
    quantities = {
        name: plate.cq().dropna(subset=["estimate"]).groupby("sample")["estimate"]
        for name, plate in study.plates.items()
    }
    figure, axes = plt.subplots(figsize=(7, 5), layout="constrained")
    width = 0.8 / len(quantities)
    samples = sorted({sample for groups in quantities.values() for sample in groups.groups})
    for index, (name, groups) in enumerate(quantities.items()):
        places = [place + index * width for place in range(len(samples))]
        means, errors = groups.mean().reindex(samples), groups.std().reindex(samples)
        axes.bar(places, means, width * 0.9, yerr=errors, capsize=4, label=name)
    middle = (len(quantities) - 1) * width / 2
    axes.set_xticks([place + middle for place in range(len(samples))], samples)
    axes.set(title=study.path, ylabel="quantity")
    axes.legend(title="plate", frameon=False)
    figure.savefig(picture, dpi=120)


if __name__ == "__main__":
    main(*sys.argv[1:])
