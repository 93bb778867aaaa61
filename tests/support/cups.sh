#!/bin/bash
# A throwaway CUPS server on loopback for the printing tests.
#   cups.sh start DIR PORT  starts cupsd listening on 127.0.0.1:PORT only, with its own
#                           configuration, spool, cache and logs, and three queues:
#                             VIRTUAL_PDF  cups-pdf, writes each job as a PDF into DIR/out;
#                                          the server's default queue
#                             STOPPED_PDF  the same, but disabled (cupsdisable): it accepts jobs
#                                          and never prints them
#                             REJECTING    the same, but refusing jobs (cupsreject)
#                             HELD         the same, but holding every job until released
#                           and writes "127.0.0.1:PORT" (what CUPS_SERVER takes) to DIR/server
#   cups.sh stop DIR        stops the server, waits for it to exit and removes its files
# Needs root: cupsd starts as root, and the cups-pdf backend reads its per-queue settings only
# from /etc/cups/cups-pdf-<name>.conf, which this script writes and removes again.
set -euo pipefail

usage() { echo "usage: $0 start DIR PORT | stop DIR" >&2; exit 2; }

# The cups-pdf settings file of the queues of the server on "port"; the backend finds it by the
# queue's device URI, cups-pdf:/<name>.
pdf_conf_name() { echo "vantorel-$1"; }

stop_server() {
  local dir=$1
  [[ -f "$dir/state" ]] || return 0
  local state
  state=$(cat "$dir/state")
  if [[ -f "$state/cupsd.pid" ]]; then
    local pid
    pid=$(cat "$state/cupsd.pid")
    if kill -0 "$pid" 2>/dev/null; then
      kill -TERM "$pid"
      for _ in $(seq 100); do kill -0 "$pid" 2>/dev/null || break; sleep 0.1; done
      kill -0 "$pid" 2>/dev/null && kill -KILL "$pid"
    fi
  fi
  [[ -f "$state/port" ]] && rm -f "/etc/cups/cups-pdf-$(pdf_conf_name "$(cat "$state/port")").conf"
  rm -rf "$state" "$dir/state" "$dir/server"
}

start_server() {
  local dir=$1 port=$2
  [[ $(id -u) -eq 0 ]] || { echo "$0: the private cupsd needs root" >&2; exit 1; }
  mkdir -p "$dir"
  dir=$(cd "$dir" && pwd)
  stop_server "$dir"
  # Another build's server on the same port would take our queues' jobs.
  if CUPS_SERVER=127.0.0.1:$port lpstat -r 2>/dev/null | grep -q 'is running'; then
    echo "$0: a CUPS server already listens on 127.0.0.1:$port" >&2
    exit 1
  fi

  # The server's own files live in a private folder under /tmp: cupsd insists on root-owned,
  # not group- or world-writable configuration folders, and its filters run as "lp", which may
  # not enter a build tree under a home folder.
  local state
  state=$(mktemp -d /tmp/vantorel-cups.XXXXXX)
  chmod 755 "$state"
  echo "$state" >"$dir/state"
  echo "$port" >"$state/port"
  mkdir -p "$state/etc/ppd" "$state/spool/tmp" "$state/cache" "$state/run" "$state/log"
  chmod 710 "$state/spool"
  chgrp lp "$state/spool"
  chmod 1770 "$state/spool/tmp"
  chgrp lp "$state/spool/tmp"

  # cups-pdf writes the files as the job's owner or its anonymous user.
  rm -rf "$dir/out"
  mkdir -p "$dir/out"
  chmod 1777 "$dir/out"

  cat >"$state/etc/cups-files.conf" <<EOF
ServerRoot $state/etc
StateDir $state/run
CacheDir $state/cache
RequestRoot $state/spool
TempDir $state/spool/tmp
ErrorLog $state/log/error_log
AccessLog $state/log/access_log
PageLog $state/log/page_log
User lp
Group lp
SystemGroup root
FileDevice No
EOF
  # Loopback only, nothing shared or browsed, and every operation open to local clients: the
  # tests administer the queues and cancel jobs without authenticating.
  cat >"$state/etc/cupsd.conf" <<EOF
LogLevel info
Listen 127.0.0.1:$port
Browsing No
WebInterface No
DefaultAuthType None
JobRetryLimit 0
MaxJobs 0
PreserveJobHistory Yes
<Location />
  Order allow,deny
  Allow 127.0.0.1
</Location>
<Policy default>
  <Limit All>
    Order deny,allow
  </Limit>
</Policy>
EOF
  printf 'Out %s\nLabel 2\nTitlePref 1\nAnonUser nobody\nLog %s\n' "$dir/out" "$state/log" \
    >"/etc/cups/cups-pdf-$(pdf_conf_name "$port").conf"

  setsid cupsd -f -c "$state/etc/cupsd.conf" -s "$state/etc/cups-files.conf" \
    </dev/null >"$state/log/cupsd.out" 2>&1 &
  echo $! >"$state/cupsd.pid"

  export CUPS_SERVER=127.0.0.1:$port
  local up=
  for _ in $(seq 100); do
    if lpstat -r 2>/dev/null | grep -q 'is running'; then up=1; break; fi
    sleep 0.1
  done
  if [[ -z "$up" ]]; then
    echo "$0: cupsd did not start" >&2
    cat "$state/log/cupsd.out" "$state/log/error_log" >&2 2>/dev/null || true
    stop_server "$dir"
    exit 1
  fi

  # cups-pdf takes PostScript. Poppler's pdftops keeps the text as text on the way there, so the
  # tests can read it back; Ghostscript, the usual choice, turns it into outlines.
  local queue=(-E -v "cups-pdf:/$(pdf_conf_name "$port")" -m lsb/usr/cups-pdf/CUPS-PDF_noopt.ppd
               -o pdftops-renderer-default=pdftops)
  lpadmin -p VIRTUAL_PDF "${queue[@]}" 2>/dev/null
  lpadmin -p STOPPED_PDF "${queue[@]}" 2>/dev/null
  cupsdisable -r "stopped by the test fixture" STOPPED_PDF
  lpadmin -p REJECTING "${queue[@]}" 2>/dev/null
  cupsreject -r "rejecting by the test fixture" REJECTING
  lpadmin -p HELD "${queue[@]}" -o job-hold-until-default=indefinite 2>/dev/null
  lpadmin -d VIRTUAL_PDF

  echo "127.0.0.1:$port" >"$dir/server"
  echo "cupsd on 127.0.0.1:$port, state in $state, PDFs in $dir/out"
}

case "${1:-}" in
  start) [[ $# -eq 3 ]] || usage; start_server "$2" "$3" ;;
  stop) [[ $# -eq 2 ]] || usage; stop_server "$(cd "$2" 2>/dev/null && pwd || echo "$2")" ;;
  *) usage ;;
esac
