#!/usr/bin/env bash
# The stock valuation of a large dealer's parts master as a whole `vantorel call` process, the
# way a host runs it: a 20,000-part master from demo_gen, the valuation of every type at purchase
# price with zero balances left out, printed to a PDF. Five runs; prints each run's wall time and
# peak resident memory (from /usr/bin/time -v) and their medians, and the CPU time (user +
# system), which a busy machine disturbs less than the wall time. The aim: under 1 s and under
# 100 MB.
#
#   bench/stock_valuation.sh [BUILD_DIR] [PARTS]     (defaults: build, 20000)
set -euo pipefail

build=${1:-build}
parts=${2:-20000}
root=$(cd "$(dirname "$0")/.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

"$build/demo/demo_gen" --parts "$parts" --sqlite "$work/demo.db" --facts "$work/facts"
fact() { grep "^$1=" "$work/facts" | cut -d= -f2-; }
ason=$(fact stock_date)
types=$(fact stock_types)

times=()
cpus=()
peaks=()
for run in 1 2 3 4 5; do
  /usr/bin/time -v "$build/cli/vantorel" call --report-path "$root/templates/" \
    --db "$work/demo.db" --pdf "$work/valuation.pdf" \
    w_Stockvaluation "$ason" false "$types" PP 2> "$work/time" > /dev/null
  wall=$(sed -n 's/.*Elapsed (wall clock) time (h:mm:ss or m:ss): //p' "$work/time" |
    awk -F: '{ s = 0; for (i = 1; i <= NF; i++) s = s * 60 + $i; printf "%.3f", s }')
  peak=$(sed -n 's/.*Maximum resident set size (kbytes): //p' "$work/time")
  cpu=$(awk -F': ' '/User time|System time/ { s += $2 } END { printf "%.2f", s }' "$work/time")
  times+=("$wall")
  cpus+=("$cpu")
  peaks+=("$peak")
  printf 'run %d: %s s wall, %s s CPU, %s MB peak\n' "$run" "$wall" "$cpu" \
    "$(awk -v k="$peak" 'BEGIN { printf "%.1f", k / 1024 }')"
done

median() { printf '%s\n' "$@" | sort -g | sed -n 3p; }
pages=$(pdfinfo "$work/valuation.pdf" 2>/dev/null | sed -n 's/^Pages: *//p' || true)
rows=$(sqlite3 "$work/demo.db" "select count(*) from ws_partmaster where part_balance1 <> 0" \
  2>/dev/null || echo "?")
printf 'stock valuation of %s parts (%s rows, %s pages): median %s s wall, %s s CPU, peak %s MB\n' \
  "$parts" "$rows" "${pages:-?}" "$(median "${times[@]}")" "$(median "${cpus[@]}")" \
  "$(awk -v k="$(median "${peaks[@]}")" 'BEGIN { printf "%.1f", k / 1024 }')"
