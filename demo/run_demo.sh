#!/usr/bin/env bash
# The main job: builds the demo dealership database, prints every document of it through
# the component into out/, and writes out/index.html with a picture of each first page.
#   demo/run_demo.sh [BUILD_DIR]     (default build/release, configured by `make demo`)
set -euo pipefail
ROOT=$(cd "$(dirname "$0")/.." && pwd)
BUILD=${1:-build/release}
case $BUILD in /*) ;; *) BUILD=$ROOT/$BUILD ;; esac
OUT=$ROOT/out

cmake --build "$BUILD" -j "${JOBS:-2}" --target vantorel_cli demo_gen demo_print

rm -rf "$OUT"
mkdir -p "$OUT/thumbs" "$OUT/assets"
cp "$ROOT/demo/assets/logo.png" "$OUT/assets/logo.png"
"$BUILD/demo/demo_gen" --sqlite "$OUT/demo.db" --sql "$OUT/demo-data.sql" --facts "$OUT/facts.txt"
"$BUILD/demo/demo_print" --db "$OUT/demo.db" --facts "$OUT/facts.txt" \
  --templates "$ROOT/templates" --assets "$OUT/assets" --out "$OUT"

# A page listing every document with a picture of its first page.
{
  cat <<'HTML'
<!DOCTYPE html>
<html lang="en"><head><meta charset="utf-8"><title>Vantorel demo documents</title>
<style>
body { font-family: "Liberation Sans", Arial, sans-serif; margin: 24px; color: #222; }
h1 { color: #8b1a1a; margin: 0 0 4px 0; } p { margin: 0 0 18px 0; color: #555; }
.grid { display: flex; flex-wrap: wrap; gap: 18px; }
.doc { width: 200px; border: 1px solid #ccc; padding: 8px; background: #fafafa; }
.doc img { width: 200px; border: 1px solid #999; background: white; }
.doc a { text-decoration: none; color: #222; }
.m { font-weight: bold; font-size: 13px; } .t { font-size: 12px; color: #666; }
</style></head><body>
<h1>Shivneri Motors — demo documents</h1>
<p>Every document of the demo dealership — sales, workshop and accounts — printed through the component by <code>make demo</code>.</p>
<div class="grid">
HTML
  while IFS=$'\t' read -r pdf method template arguments; do
    stem=${pdf%.pdf}
    pdftoppm -r 40 -f 1 -l 1 -png -singlefile "$OUT/$pdf" "$OUT/thumbs/$stem"
    pages=$(pdfinfo "$OUT/$pdf" | awk '/^Pages:/{print $2}')
    printf '<div class="doc"><a href="%s"><img src="thumbs/%s.png" alt="%s"><div class="m">%s</div>' \
      "$pdf" "$stem" "$stem" "$method"
    printf '<div class="t">%s.fr3 · %s · %s page(s)</div></a></div>\n' "$template" "$arguments" "$pages"
  done < "$OUT/manifest.tsv"
  echo '</div></body></html>'
} > "$OUT/index.html"
echo "demo: $(wc -l < "$OUT/manifest.tsv") documents in $OUT (open $OUT/index.html)"
