#!/usr/bin/env bash
# A busy dealer's cash book: the ledger of the cash account over a year of 50,000 entries
# (RefLedger, templates/refledger.fr3), printed to PDF by a whole `vantorel call` process as a
# host would. Prints the median wall time of 5 runs after one warm-up, the fastest and slowest,
# the median CPU time (user + system, which a busy machine disturbs less than the wall time), the
# peak RSS of the process, and the pages. Target: under 2 s and 150 MB.
#
#   bench/ledger.sh                   # 50,000 entries
#   ENTRIES=20000 bench/ledger.sh     # another size
# Env: BUILD (default build/release), ENTRIES (default 50000), RUNS (default 5).
set -euo pipefail
ROOT=$(cd "$(dirname "$0")/.." && pwd)
BUILD=${BUILD:-$ROOT/build/release}
ENTRIES=${ENTRIES:-50000}
RUNS=${RUNS:-5}
OUT=$BUILD/bench-out/ledger
mkdir -p "$OUT"

cmake -S "$ROOT" -B "$BUILD" -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$BUILD" -j 2 --target vantorel_cli demo_gen >/dev/null
V=$BUILD/cli/vantorel

"$BUILD/demo/demo_gen" --ledger-entries "$ENTRIES" --sqlite "$OUT/busy.db" --facts "$OUT/facts"
fact() { sed -n "s/^$1=//p" "$OUT/facts"; }
call=("$V" call --report-path "$ROOT/templates/" --db "$OUT/busy.db" --pdf "$OUT/ledger.pdf"
  RefLedger "$(fact cash_account_id)" "$(fact ledger_from)" "$(fact ledger_to)")

: > "$OUT/runs"
for run in $(seq 0 "$RUNS"); do
  start=$(date +%s%N)
  /usr/bin/time -f '%M %U %S' -o "$OUT/rss" "${call[@]}" >/dev/null 2>"$OUT/stderr" || {
    cat "$OUT/stderr" >&2
    exit 1
  }
  end=$(date +%s%N)
  # The first run warms the page cache and the fonts; it is not counted.
  [ "$run" -gt 0 ] && echo "$(( (end - start) / 1000000 )) $(cat "$OUT/rss")" >> "$OUT/runs"
done

entries=$(sqlite3 "$OUT/busy.db" "select count(*) from vu_ledger where am_id = \
  $(fact cash_account_id) and vm_date between '$(fact ledger_from)' and '$(fact ledger_to)'")
pages=$(pdfinfo "$OUT/ledger.pdf" | sed -n 's/^Pages: *//p')
cpu=$(awk '{ print ($3 + $4) * 1000 }' "$OUT/runs" | sort -n | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }')
sort -n "$OUT/runs" | awk -v entries="$entries" -v pages="$pages" -v runs="$RUNS" -v cpu="$cpu" '
  { ms[NR] = $1; if ($2 > rss) rss = $2 }
  END {
    printf "cash book of %d entries, %d pages, %d runs\n", entries, pages, runs
    printf "median %d ms (fastest %d, slowest %d), median CPU %d ms, peak RSS %.1f MB\n",
      ms[int((NR + 1) / 2)], ms[1], ms[NR], cpu, rss / 1024
  }'
