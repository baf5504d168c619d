#!/bin/sh
# study.sh FOLDER: joins two simulated plates into a study and extracts one again, in FOLDER. Set
# VEX to the path of the command if it is not on the search path.
set -eu
vex=${VEX:-vex}
cd "$1"

"$vex" simulate liver.vex --cycles 5 --seed 1 --force
"$vex" simulate kidney.vex --cycles 5 --seed 2 --force
"$vex" study new study.vex liver.vex kidney.vex --force
"$vex" study set study.vex calibrator=liver endogenous-control=18S confidence=95
"$vex" study list study.vex

# Each plate can be shown within its study, or extracted as a separate document.
"$vex" export study.vex --plate kidney -o kidney.csv --force
"$vex" study extract study.vex kidney kidney-again.vex --force
"$vex" export kidney-again.vex | cmp - kidney.csv
