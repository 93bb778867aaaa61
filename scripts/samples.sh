#!/usr/bin/env bash
# Pictures of demo documents before and after a change, for docs/samples/:
#   scripts/samples.sh BEFORE_DIR AFTER_DIR NAME[:PAGE]...
# BEFORE_DIR and AFTER_DIR hold the PDFs `make demo` writes (out/); each NAME is a PDF's stem.
# PAGE is a number or "last" (default 1). Writes docs/samples/NAME-before.jpg and
# NAME-after.jpg (NAME-before-pPAGE.jpg… for other pages) at 60 dpi, as JPEG.
set -euo pipefail
ROOT=$(cd "$(dirname "$0")/.." && pwd)
before=$1 after=$2
shift 2
for item in "$@"; do
  name=${item%%:*} page=1
  [[ $item == *:* ]] && page=${item##*:}
  for side in before after; do
    dir=$before
    [[ $side == after ]] && dir=$after
    at=$page
    [[ $at == last ]] && at=$(pdfinfo "$dir/$name.pdf" | awk '/^Pages:/ {print $2}')
    suffix=$side
    [[ $page != 1 ]] && suffix=$side-p$page
    pdftoppm -r 60 -f "$at" -l "$at" -jpeg -jpegopt quality=70 -singlefile "$dir/$name.pdf" \
      "$ROOT/docs/samples/$name-$suffix"
  done
done
