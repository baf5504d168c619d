#!/bin/sh
# Creates the files that every slip starts with, in the current folder. `vex` must be on the PATH.
set -eu

cat > wells.csv <<'END'
well,sample,target,task,quantity,reporter
A1,liver,MYC,UNKN,,FAM
A2,liver,MYC,STND,1000,FAM
A3,kidney,MYC,NTC,,FAM
END

{
  echo well,stage,cycle,time_s,temperature_c,fluorescence
  for well in 1 2 3; do
    echo "A$well,amplification,1,20,60,0.31$well"
    echo "A$well,amplification,2,59.5,60.25,0.42$well"
    echo "A$well,melt,1,100,65,1.53$well"
  done
} > readings.csv

# A measured run of 3 wells and 3 frames, and simulated ones of 96 wells and 2 frames.
vex record measured.vex --readings readings.csv --wells wells.csv
vex simulate run.vex --cycles 2 --seed 1
vex simulate other.vex --cycles 2 --seed 2

# A recording that was killed after its first frame.
vex simulate cut.vex --cycles 2 --pace 1000 2> /dev/null &
until vex info --json cut.vex 2> /dev/null | grep -q '"frames": *1'; do sleep 0.05; done
kill $!
wait $! || true

# A study and its plates.
cp run.vex plate1.vex
cp other.vex plate2.vex
vex study new study.vex plate1.vex plate2.vex > /dev/null

# Damaged documents: one ends within a frame, the start of the other is overwritten.
head -c 10000 run.vex > damaged.vex
{ head -c 100 /dev/zero; tail -c +101 run.vex; } > zeroed.vex

# Files that are not documents.
vex calibration run.vex --export calibration.csv
: > empty.vex
echo 'Do not forget the controls.' > notes.txt
mkdir folder

# Overwrites bytes of a file with standard input: sh put.sh FILE OFFSET
echo 'dd of="$1" bs=1 seek="$2" conv=notrunc status=none' > put.sh
