#!/bin/sh
# A dry run over one big folder, timed as a user would time it: the
# natural-order dry run of `nomen-cli --prefix 'x«#»_' FOLDER`, the same with
# --json, and `ls -f` over the folder, each the best of three, with the
# peak memory of each (`/usr/bin/time -v`).
#
#   bench/dry_run_scale.sh [COUNT] [PARENT]
#
# COUNT files (100000 unless given) are made, empty, in a new folder under
# PARENT (/dev/shm, a tmpfs, unless given) and removed afterwards.
set -eu

count=${1:-100000}
parent=${2:-/dev/shm}
here=$(cd "$(dirname "$0")/.." && pwd)
cli=${NOMEN_CLI:-$here/build/cli/nomen-cli}
[ -x "$cli" ] || { echo "dry_run_scale: build nomen-cli first ($cli)" >&2; exit 1; }

work=$(mktemp -d "$parent/nomen-scale.XXXXXX")
data=$(mktemp -d)
trap 'rm -rf "$work" "$data"' EXIT
mkdir "$work/photos"
# Made in one process: touch with a hundred thousand arguments at a time.
seq -f "$work/photos/IMG_%07g.jpg" 1 "$count" | xargs -n 100000 touch

best() { # label, then the command: best elapsed seconds and its peak memory
    label=$1
    shift
    best_time=
    best_peak=
    for _ in 1 2 3; do
        XDG_DATA_HOME=$data /usr/bin/time -v -o "$data/time" "$@" >/dev/null
        elapsed=$(sed -n 's/.*Elapsed (wall clock) time (h:mm:ss or m:ss): //p' "$data/time" \
            | awk -F: '{ print (NF == 3 ? $1 * 3600 + $2 * 60 + $3 : $1 * 60 + $2) }')
        peak=$(sed -n 's/.*Maximum resident set size (kbytes): //p' "$data/time")
        if [ -z "$best_time" ] || awk "BEGIN { exit !($elapsed < $best_time) }"; then
            best_time=$elapsed
            best_peak=$peak
        fi
    done
    printf '%-28s %8.2f s %8d MB peak\n' "$label" "$best_time" "$((best_peak / 1024))"
}

echo "$count files in $parent"
best "nomen-cli dry run" "$cli" --prefix 'x«#»_' "$work/photos"
best "nomen-cli dry run --json" "$cli" --json --prefix 'x«#»_' "$work/photos"
best "ls -f" ls -f "$work/photos"
