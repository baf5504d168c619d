# Draws amplification curves in the terminal from readings in CSV. The names in the first line
# select the columns well, stage, cycle and fluorescence. Draws four wells that rise, from the
# earliest to the latest, and one that does not. -v colour=1 colours them. Works with every awk.
BEGIN { FS = ","; wide = 72; high = 20 }

NR == 1 {
  for (i = 1; i <= NF; ++i) column[$i] = i
  next
}

$column["stage"] == "amplification" {
  well = $column["well"]; cycle = $column["cycle"] + 0; value = $column["fluorescence"] + 0
  if (!(well in seen)) { seen[well] = 1; wells[++count] = well }
  reading[well, cycle] = value
  if (cycle > last) last = cycle
  if (!started || value < low) low = value
  if (!started || value > top) top = value
  started = 1
}

# The first cycle in which a well is above a fifth of the range; the last cycle + 1 if there is none.
function rise(well,    cycle) {
  for (cycle = 1; cycle <= last; ++cycle)
    if (reading[well, cycle] > low + (top - low) / 5) return cycle
  return last + 1
}

function sort_by_rise(    i, j, key, well) {
  for (i = 1; i <= count; ++i) {
    well = wells[i]; key = rise(well)
    for (j = i - 1; j > 0 && rises[j] > key; --j) {
      rises[j + 1] = rises[j]; wells[j + 1] = wells[j]
    }
    rises[j + 1] = key; wells[j + 1] = well
    if (key <= last) ++rising
  }
}

function choose(    n, all) {
  all = rising < 4 ? rising : 4
  for (n = 0; n < all; ++n) chosen[++curves] = all == 1 ? 1 : 1 + int(n * (rising - 1) / (all - 1))
  if (rising < count) chosen[++curves] = count
}

function height(value) { return int((value - low) / (top - low) * (high - 1) + 0.5) }

function draw(well, mark,    x, at, cycle, value, y, before) {
  for (x = 0; x < wide; ++x) {
    at = 1 + x * (last - 1) / (wide - 1)
    cycle = int(at)
    value = reading[well, cycle]
    if (cycle < last) value += (at - cycle) * (reading[well, cycle + 1] - value)
    y = height(value)
    cell[x, y] = mark
    for (before = x ? before : y; before < y - 1; ++before) cell[x, before + 1] = mark
    before = y
  }
}

function painted(mark) { return colour ? sprintf("\033[1;3%dm%s\033[0m", mark, mark) : mark }

function show(    x, y, line, label) {
  for (y = high - 1; y >= 0; --y) {
    line = ""
    for (x = 0; x < wide; ++x) line = line ((x, y) in cell ? painted(cell[x, y]) : " ")
    label = y == high - 1 ? sprintf("%.2f", top) : y == 0 ? sprintf("%.2f", low) : ""
    printf "%9s |%s\n", label, line
  }
  line = ""
  for (x = 0; x < wide; ++x) line = line "-"
  printf "%9s +%s\n%9s  cycle 1%*d\n\n", "", line, "", wide - 7, last
}

END {
  if (last < 2 || top <= low) {
    print "curve: no amplification to draw" > "/dev/stderr"
    exit 1
  }
  sort_by_rise()
  choose()
  for (n = curves; n > 0; --n) draw(wells[chosen[n]], n)
  show()
  for (n = 1; n <= curves; ++n) {
    at = rises[chosen[n]]
    legend = at > last ? "never" : "from cycle " at
    printf "%s %s %s: %s", n == 1 ? sprintf("%10s", "") : ",", painted(n), wells[chosen[n]], legend
  }
  print ""
}
