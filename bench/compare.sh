#!/usr/bin/env bash
# Our engine against the peer kit on the same two documents, in one run: the reference GST
# invoice and the 3,000-row stock register, warm in one process and as whole processes, peak
# memory, and a 100,000-row register for scaling. Prints one table with the ratios.
#
#   bench/compare.sh            # ours now; the peers' figures as recorded in their kit
#   PEERS=1 bench/compare.sh    # also runs the peer kit now (installs WeasyPrint, wkhtmltopdf,
#                               # Chromium and the kit's npm packages; about 10 minutes)
# Env: BUILD (default build/release), KIT (default ../shared/bench/peers).
set -euo pipefail
ROOT=$(cd "$(dirname "$0")/.." && pwd)
BUILD=${BUILD:-$ROOT/build/release}
KIT=${KIT:-$ROOT/../shared/bench/peers}
OUT=$BUILD/bench-out
mkdir -p "$OUT"

cmake -S "$ROOT" -B "$BUILD" -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$BUILD" -j 2 --target vantorel_cli engine_bench make_bench_data >/dev/null
V=$BUILD/cli/vantorel
T=$ROOT/bench/templates
LOGO=$KIT/build/logo.png

"$BUILD/bench/make_bench_data" "$KIT/build" "$OUT/bench.db"
"$BUILD/bench/make_bench_data" "$KIT/build" "$OUT/bench100k.db" 100000

echo "== warm, in one process (Google Benchmark)" >&2
"$BUILD/bench/engine_bench" --db "$OUT/bench.db" --templates "$T" --logo "$LOGO" \
  --benchmark_format=json --benchmark_repetitions=5 --benchmark_report_aggregates_only=true \
  > "$OUT/engine.json"

echo "== whole processes (the kit's own timer: median of 5 after 1 warm-up)" >&2
: > "$OUT/cold.jsonl"
for doc in invoice register; do
  args=("$V" render "$T/$doc.fr3" --db "$OUT/bench.db" --pdf "$OUT/${doc}_vantorel.pdf")
  [ "$doc" = invoice ] && args+=(--var "Company.logo=$LOGO")
  python3 "$KIT/bench.py" --label "vantorel:$doc" --runs 5 --warmup 1 --log "$OUT/cold.log" \
    --jsonl "$OUT/cold.jsonl" -- "${args[@]}" >/dev/null
done

echo "== 100,000-row register" >&2
"$BUILD/bench/engine_bench" --db "$OUT/bench100k.db" --templates "$T" --once register \
  > "$OUT/big.txt"
"$BUILD/bench/engine_bench" --db "$OUT/bench.db" --templates "$T" --once register \
  > "$OUT/small.txt"

PEER_RESULTS=$KIT/results
if [ "${PEERS:-0}" = 1 ]; then
  echo "== the peer kit" >&2
  rm -rf "$OUT/peers" && cp -r "$KIT" "$OUT/peers" && chmod -R u+w "$OUT/peers"
  sudo=(); [ "$(id -u)" -eq 0 ] || sudo=(sudo)
  "${sudo[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq weasyprint wkhtmltopdf \
    chromium imagemagick >/dev/null
  (cd "$OUT/peers" && [ -d node_modules ] || npm install --silent >/dev/null)
  # The kit reads PEERS itself, as its list of peers.
  (cd "$OUT/peers" && env -u PEERS ./run_peers.sh cold && env -u PEERS ./run_peers.sh warm) >&2
  PEER_RESULTS=$OUT/peers/results
fi

python3 "$ROOT/bench/summarize.py" "$OUT" "$PEER_RESULTS"
