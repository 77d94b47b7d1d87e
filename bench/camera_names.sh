#!/bin/sh
# Names from what camera files say, timed as a user would time them: dry
# runs of nomen-cli over COPIES copies of the real camera JPEGs in
# tests/data/cameras (with their maker notes and XMP), with dates taken
# alone and with «camera» «lens» «date %Y%m%d», beside `jhead -c` (a C
# reader of JPEG headers) and nomen-cli without reading the files; each the
# best of five, with its peak memory (`/usr/bin/time -v`).
#
#   bench/camera_names.sh [COPIES] [PARENT]
#
# COPIES is 2000 unless given; the folder is made under PARENT (/tmp unless
# given) and removed afterwards.
set -eu

copies=${1:-2000}
parent=${2:-/tmp}
here=$(cd "$(dirname "$0")/.." && pwd)
cli=${NOMEN_CLI:-$here/build/cli/nomen-cli}
[ -x "$cli" ] || { echo "camera_names: build nomen-cli first ($cli)" >&2; exit 1; }

work=$(mktemp -d "$parent/nomen-cameras.XXXXXX")
data=$(mktemp -d)
trap 'rm -rf "$work" "$data"' EXIT
i=0
while [ "$i" -lt "$copies" ]; do
    for photo in "$here"/tests/data/cameras/*.jpg; do
        [ "$i" -lt "$copies" ] || break
        cp "$photo" "$work/$(printf '%05d' "$i")_$(basename "$photo")"
        i=$((i + 1))
    done
done
cat "$work"/* >/dev/null # in the page cache for every run alike

best() { # label, then the command: best elapsed seconds and its peak memory
    label=$1
    shift
    best_time=
    best_peak=
    for _ in 1 2 3 4 5; do
        XDG_DATA_HOME=$data /usr/bin/time -v -o "$data/time" "$@" >/dev/null
        elapsed=$(sed -n 's/.*Elapsed (wall clock) time (h:mm:ss or m:ss): //p' "$data/time" \
            | awk -F: '{ print (NF == 3 ? $1 * 3600 + $2 * 60 + $3 : $1 * 60 + $2) }')
        peak=$(sed -n 's/.*Maximum resident set size (kbytes): //p' "$data/time")
        if [ -z "$best_time" ] || awk "BEGIN { exit !($elapsed < $best_time) }"; then
            best_time=$elapsed
            best_peak=$peak
        fi
    done
    printf '%-44s %6.3f s %6d MB peak\n' "$label" "$best_time" "$((best_peak / 1024))"
}

echo "$copies copies of the camera JPEGs"
best "jhead -c" sh -c 'jhead -c "$0"/*' "$work"
best "nomen-cli, names only" "$cli" --prefix 'x ' "$work"
best "nomen-cli --exif «date %Y%m%d»" "$cli" --exif --date-source created --prefix '«date %Y%m%d» ' "$work"
best "nomen-cli --exif «camera» «lens» «date %Y%m%d»" "$cli" --exif --date-source created \
    --prefix '«camera» «lens» «date %Y%m%d» ' "$work"
