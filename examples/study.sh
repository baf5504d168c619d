#!/bin/sh
# Joins two simulated plates into a study and takes one out again, in the folder that is named:
# study.sh FOLDER. VEX says where the command is, if it is not on the path.
set -eu
vex=${VEX:-vex}
cd "$1"

"$vex" simulate liver.vex --cycles 5 --seed 1 --force
"$vex" simulate kidney.vex --cycles 5 --seed 2 --force
"$vex" study new study.vex liver.vex kidney.vex --force
"$vex" study set study.vex calibrator=liver endogenous-control=18S confidence=95
"$vex" study list study.vex

# Each plate can be shown in its study, or be a document of its own again.
"$vex" export study.vex --plate kidney -o kidney.csv
"$vex" study extract study.vex kidney kidney-again.vex
"$vex" export kidney-again.vex | cmp - kidney.csv
