#!/usr/bin/env bash
# Installs the Debian packages Vantorel builds, tests and runs with. Safe to run again: packages
# already present are skipped, and nothing is installed when all of them are.
set -euo pipefail

packages=(
  # build, test, bench
  cmake ninja-build ccache g++ pkg-config clang libclang-rt-14-dev clang-format clang-tidy
  googletest libgtest-dev libgmock-dev libbenchmark-dev
  # libraries
  libpugixml-dev libpango1.0-dev libcairo2-dev libgdk-pixbuf-2.0-dev libzint-dev libcups2-dev
  libgtk-3-dev libsqlite3-dev unixodbc-dev libcli11-dev nlohmann-json3-dev libjpeg62-turbo-dev
  libharfbuzz-dev zlib1g-dev
  # ODBC drivers
  odbc-postgresql odbc-mariadb tdsodbc
  # fonts
  fonts-liberation2 fonts-noto-core fonts-dejavu-core
  # test and demo tools
  sqlite3 qpdf poppler-utils xvfb xdotool x11-utils xauth postgresql mariadb-server mariadb-client
  cups cups-client cups-bsd
  printer-driver-cups-pdf hyperfine valgrind imagemagick zbar-tools
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'ok installed' || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

sudo=()
[ "$(id -u)" -eq 0 ] || sudo=(sudo)
export DEBIAN_FRONTEND=noninteractive
"${sudo[@]}" apt-get update -qq
"${sudo[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
