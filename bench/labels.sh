#!/usr/bin/env bash
# A sheet of 1,000 spare-part QR labels (42 A4 pages of 24) as a host prints it: a whole
# `vantorel call PartsQrPrint` process with the host's SQL selecting 1,000 parts of the demo
# parts master. Prints the median wall time of 5 runs (after 1 warm-up) and the peak resident
# memory, with the median CPU time (user + system) beside it, since a busy machine stretches the
# wall time. Target: under 1 s.
#
#   bench/labels.sh                 # BUILD=build/release by default
# Env: BUILD (the build folder), RUNS (default 5).
set -euo pipefail
ROOT=$(cd "$(dirname "$0")/.." && pwd)
BUILD=${BUILD:-$ROOT/build/release}
RUNS=${RUNS:-5}
OUT=$BUILD/bench-out/labels
mkdir -p "$OUT"

cmake --build "$BUILD" -j 2 --target vantorel_cli demo_gen >/dev/null
"$BUILD/demo/demo_gen" --sqlite "$OUT/demo.db"
SQL="select part_no, part_desc, part_mrp, part_uqc, part_location from ws_partmaster where part_id <= 1000 order by part_no"
count=$(sqlite3 "$OUT/demo.db" "select count(*) from ($SQL)")
[ "$count" = 1000 ] || { echo "the demo parts master gave $count labels, not 1000" >&2; exit 1; }

run() {
  TEMP="$ROOT/demo/assets/" /usr/bin/time -f "%e %M %U %S" -o "$OUT/time.txt" \
    "$BUILD/cli/vantorel" call --report-path "$ROOT/templates/" --db "$OUT/demo.db" \
    --pdf "$OUT/labels.pdf" PartsQrPrint "$SQL" 0 >/dev/null
  cat "$OUT/time.txt"
}

run >/dev/null
: > "$OUT/runs.txt"
for _ in $(seq "$RUNS"); do run >> "$OUT/runs.txt"; done
pages=$(pdfinfo "$OUT/labels.pdf" | awk '/^Pages:/ {print $2}')
sort -n "$OUT/runs.txt" | awk -v runs="$RUNS" -v pages="$pages" '
  { time[NR] = $1; cpu[NR] = $3 + $4; if ($2 > rss) rss = $2 }
  END {
    median = time[int((runs + 1) / 2)]
    n = asort(cpu)
    printf "PartsQrPrint, 1000 labels (%d pages): median %.2f s of %d runs (min %.2f, max %.2f), median CPU %.2f s, peak RSS %.1f MB\n",
           pages, median, runs, time[1], time[runs], cpu[int((n + 1) / 2)], rss / 1024
  }'
