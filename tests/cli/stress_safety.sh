#!/usr/bin/env bash
# Puts nomen-cli through what users and bad luck do to it, many times over,
# on 2,000 files, and counts the runs that end wrong. Run by hand (it takes
# minutes): tests/cli/stress_safety.sh [build folder] [runs per experiment]
# A run is wrong when a file's contents are missing or there twice, when a
# file is left under a temporary name, or when the files do not end exactly
# as the experiment says they must.
set -uo pipefail
cd "$(dirname "$0")/../.."
build=${1:-build}
runs=${2:-30}
cli=$PWD/$build/cli/nomen-cli
script=$PWD/$build/cli/nomen-script
faults=$PWD/$build/tests/cli/librename_faults.so
for tool in "$cli" "$script" "$faults"; do
  [[ -e $tool ]] || { echo "missing $tool: build first" >&2; exit 1; }
done

work=$(mktemp -d /tmp/nomen-stress-XXXXXX)
trap 'umount "$work/small" 2>/dev/null; rm -rf "$work"' EXIT
d=$work/files
export XDG_DATA_HOME=$work/data

swap_rule=(--grep --search '^(s\d+)-(\w)-(\w)$' --replace '$1-$3-$2')
cycle_rule=(--grep --search '^(r\d+)-(\w)-(\w)-(\w)$' --replace '$1-$3-$4-$2')

# 1,000 swapped pairs, or 666 three-cycles and two chains; each file holds
# its first name. The layouts before and after are written beside.
make_files() {
  rm -rf "$d" "$XDG_DATA_HOME"; mkdir -p "$d"
  if [[ $1 == swaps ]]; then
    rule=("${swap_rule[@]}")
    for i in $(seq -w 1 1000); do
      printf 's%s-a-b' "$i" >"$d/s$i-a-b"; printf 's%s-b-a' "$i" >"$d/s$i-b-a"
      echo "s$i-a-b=s$i-b-a"; echo "s$i-b-a=s$i-a-b"
    done | LC_ALL=C sort >"$work/after"
  else
    rule=("${cycle_rule[@]}")
    for i in $(seq -w 1 666); do
      for n in a-b-c b-c-a c-a-b; do printf 'r%s-%s' "$i" "$n" >"$d/r$i-$n"; done
      echo "r$i-b-c-a=r$i-a-b-c"; echo "r$i-c-a-b=r$i-b-c-a"; echo "r$i-a-b-c=r$i-c-a-b"
    done >"$work/after.unsorted"
    for i in 9001 9002; do
      printf 'r%s-a-b-c' "$i" >"$d/r$i-a-b-c"; printf 'r%s-b-c-a' "$i" >"$d/r$i-b-c-a"
      echo "r$i-b-c-a=r$i-a-b-c" >>"$work/after.unsorted"; echo "r$i-c-a-b=r$i-b-c-a" >>"$work/after.unsorted"
    done
    LC_ALL=C sort "$work/after.unsorted" >"$work/after"
  fi
  snapshot >"$work/before"
}

shopt -s nullglob dotglob # hidden names too: a temporary name must be seen
snapshot() { (cd "$d" && grep -H '' -- * /dev/null | sed 's/:/=/' | LC_ALL=C sort); }
is() { snapshot | cmp -s - "$work/$1"; }
present() { # every content exactly once, under whatever name
  local s; s=$(snapshot)
  [[ $(cut -d= -f2 <<<"$s" | LC_ALL=C sort | uniq -d | wc -l) -eq 0 ]] &&
    [[ $(wc -l <<<"$s") -eq $(wc -l <"$work/before") ]]
}
whole() { # and nothing under a temporary name: how a batch must end
  present && ! snapshot | grep -q '^\.nomen-moving'
}
pending() { [[ -e $XDG_DATA_HOME/nomen/pending.journal ]]; }
now_ms() { echo $(( $(date +%s%N) / 1000000 )); }
# Random kills fall between the time a dry run takes (listing, composing,
# planning: nothing moves yet) and the time a whole batch takes.
calibrate() {
  make_files swaps
  local t0 t1 t2; t0=$(now_ms)
  "$cli" "${rule[@]}" "$d" >/dev/null 2>&1; t1=$(now_ms)
  "$cli" "${rule[@]}" --apply "$d" >/dev/null 2>&1; t2=$(now_ms)
  "$cli" --undo >/dev/null 2>&1; t3=$(now_ms)
  apply_window=($(( (t1 - t0) * 9 / 10 )) $(( (t2 - t1) - (t1 - t0) * 9 / 10 + 20 )))
  undo_window=($(( (t3 - t2) / 4 )) $(( (t3 - t2) + 10 )))
}
kill_at_random() { # the command, killed at a random moment of its window
  local -n window=$1
  "${@:2}" >/dev/null 2>&1 & local pid=$!
  local ms=$(( window[0] + RANDOM % (window[1] > 0 ? window[1] : 50) ))
  sleep "$(( ms / 1000 )).$(printf '%03d' $(( ms % 1000 )))"; kill -9 $pid 2>/dev/null; wait $pid 2>/dev/null
}
kill_after_rename() { # the command, killed right after its k-th rename
  LD_PRELOAD=$faults NOMEN_FAULT_SIGNAL_AFTER=$1 "${@:2}" >/dev/null 2>&1
}
pattern() { (( $1 % 2 )) && echo swaps || echo cycles; }

declare -A total wrong note short
cut_short() { pending && short[$1]=$(( ${short[$1]:-0} + 1 )); }
fail() { ok=0; echo "  wrong at line $1 (run $r)" >&2; }
count() { total[$1]=$(( ${total[$1]:-0} + 1 )); (( $2 )) || wrong[$1]=$(( ${wrong[$1]:-0} + 1 )); }

calibrate
echo "random kills: apply after ${apply_window[0]} ms + up to ${apply_window[1]}, undo after ${undo_window[0]} + up to ${undo_window[1]}" >&2

# 1. kill -9 in the middle of a batch; running it again is refused; --finish
#    completes it; --undo puts everything back.
for ((r = 0; r < runs; r++)); do
  make_files "$(pattern $r)"
  kill_at_random apply_window "$cli" "${rule[@]}" --apply "$d"
  cut_short "kill -9 mid-batch, then --finish (and --undo)"
  ok=1
  present || fail $LINENO
  if pending; then
    "$cli" "${rule[@]}" --apply "$d" >/dev/null 2>&1; [[ $? -eq 3 ]] || fail $LINENO
    "$cli" --finish >/dev/null 2>&1; is after || fail $LINENO
  fi
  "$cli" --undo >/dev/null 2>&1; is before || fail $LINENO
  whole || fail $LINENO
  count "kill -9 mid-batch, then --finish (and --undo)" $ok
done

# 2. kill -9 in the middle, then rollBackUnfinishedRename from a script.
for ((r = 0; r < runs; r++)); do
  make_files "$(pattern $r)"
  kill_at_random apply_window "$cli" "${rule[@]}" --apply "$d"
  cut_short "kill -9 mid-batch, then rollBackUnfinishedRename"
  ok=1
  present || fail $LINENO
  if pending; then
    "$script" -e 'callMethod(application, "rollBackUnfinishedRename", []).length' >/dev/null 2>&1 || fail $LINENO
  fi
  is before || { is after && ! pending; } || fail $LINENO
  count "kill -9 mid-batch, then rollBackUnfinishedRename" $ok
done

# 3. kill -9 in the middle, then --undo: refused, nothing moves, and a dry
#    run moves nothing either.
for ((r = 0; r < runs; r++)); do
  make_files "$(pattern $r)"
  kill_at_random apply_window "$cli" "${rule[@]}" --apply "$d"
  cut_short "kill -9 mid-batch, then --undo"
  ok=1
  if pending; then
    state=$(snapshot)
    "$cli" --undo >/dev/null 2>&1; [[ $? -eq 3 ]] || fail $LINENO
    "$cli" "${rule[@]}" "$d" >/dev/null 2>&1
    [[ $(snapshot) == "$state" ]] || fail $LINENO
    "$cli" --roll-back >/dev/null 2>&1
  else
    "$cli" --undo >/dev/null 2>&1
  fi
  is before || fail $LINENO
  count "kill -9 mid-batch, then --undo" $ok
done

# 4. killed right after the k-th rename, before anything records it; then
#    --finish and --undo, or --roll-back.
for ((r = 0; r < runs; r++)); do
  make_files "$(pattern $r)"
  kill_after_rename $((RANDOM % 2600 + 1)) "$cli" "${rule[@]}" --apply "$d"
  cut_short "kill right after a rename"
  ok=1
  present || fail $LINENO
  if (( r % 4 < 2 )); then
    pending && "$cli" --finish >/dev/null 2>&1
    is after || fail $LINENO
    "$cli" --undo >/dev/null 2>&1
  elif pending; then
    "$cli" --roll-back >/dev/null 2>&1
  else
    "$cli" --undo >/dev/null 2>&1 # k was past the last rename: the batch ended
  fi
  is before || fail $LINENO
  whole || fail $LINENO
  count "kill right after a rename" $ok
done

# 5. kill -9 during --undo of swaps; --undo again is refused; --finish ends it.
for ((r = 0; r < runs; r++)); do
  make_files swaps
  "$cli" "${rule[@]}" --apply "$d" >/dev/null 2>&1
  kill_at_random undo_window "$cli" --undo
  cut_short "kill -9 during --undo, then --undo again (swaps)"
  ok=1
  present || fail $LINENO
  if pending; then
    "$cli" --undo >/dev/null 2>&1; [[ $? -eq 3 ]] || fail $LINENO
    "$cli" --finish >/dev/null 2>&1
  elif is after; then
    "$cli" --undo >/dev/null 2>&1
  fi
  is before || fail $LINENO
  "$cli" --undo >/dev/null 2>&1; is before || fail $LINENO # never undone twice
  count "kill -9 during --undo, then --undo again (swaps)" $ok
done

# 6. The journal folder on a full 2 MB tmpfs.
mkdir -p "$work/small"
if mount -t tmpfs -o size=2m tmpfs "$work/small" 2>/dev/null; then
  umount "$work/small"
  for ((r = 0; r < runs / 4 + 1; r++)); do
    make_files "$(pattern $r)"
    mount -t tmpfs -o size=2m tmpfs "$work/small"
    head -c $((2048 * 1024 - (RANDOM % 64) * 1024)) /dev/zero >"$work/small/filler" 2>/dev/null
    XDG_DATA_HOME=$work/small "$cli" "${rule[@]}" --apply "$d" >/dev/null 2>&1
    status=$?
    ok=1
    (( status == 2 || status == 0 )) || fail $LINENO # not a crash
    is before || is after || fail $LINENO
    whole || fail $LINENO
    umount "$work/small"
    count "journal folder on a full 2 MB tmpfs" $ok
  done
else
  note["journal folder on a full 2 MB tmpfs"]="not run: cannot mount here"
fi

# 7. Two --apply at once on the same folder: one after the other, never
#    mixed; each that renamed can be undone.
for ((r = 0; r < runs; r++)); do
  make_files "$(pattern $r)"
  "$cli" "${rule[@]}" --apply "$d" >/dev/null 2>&1 & first=$!
  "$cli" "${rule[@]}" --apply "$d" >/dev/null 2>&1 & second=$!
  wait $first; a=$?; wait $second; b=$?
  ok=1
  renamed=$(( (a == 0) + (b == 0) ))
  (( (a == 0 || a == 75) && (b == 0 || b == 75) && renamed >= 1 )) || fail $LINENO
  if (( renamed == 1 )); then is after || fail $LINENO; fi
  if (( renamed == 2 )) && [[ $(pattern $r) == swaps ]]; then is before || fail $LINENO; fi
  whole || fail $LINENO
  for ((u = 0; u < renamed; u++)); do "$cli" --undo >/dev/null 2>&1; done
  is before || fail $LINENO
  count "two --apply at once" $ok
done

# 8. A journal left in the data folder: garbage, one byte changed, or a real
#    one whose files were replaced since. Nothing is carried out by surprise.
for ((r = 0; r < runs; r++)); do
  make_files swaps
  kill_after_rename 500 "$cli" "${rule[@]}" --apply "$d"
  journal=$XDG_DATA_HOME/nomen/pending.journal
  case $((r % 3)) in
    0) echo "nomen-journal 1 garbage" >"$journal" ;;
    1) sed -i '0,/^item /s/^item 1/item 7/' "$journal" ;;
    2) for f in "$d"/s0*; do c=$(cat "$f"); rm "$f"; printf '%s' "$c" >"$f"; done
       replaced=$(cd "$d" && stat -c '%n %i %s' s0*) ;;
  esac
  state=$(snapshot)
  ok=1
  "$cli" "${rule[@]}" "$d" >/dev/null 2>&1 # a dry run goes on and moves nothing
  [[ $(snapshot) == "$state" ]] || fail $LINENO
  "$cli" "${rule[@]}" --apply "$d" >/dev/null 2>&1; [[ $? -eq 3 || $((r % 3)) -eq 2 ]] || fail $LINENO
  if (( r % 3 == 2 )); then
    # The files under s0… are new files: finishing leaves them alone (the
    # batch's own files, still under a temporary name, are finished).
    "$cli" --finish >/dev/null 2>&1
    [[ $(cd "$d" && stat -c '%n %i %s' $(cut -d' ' -f1 <<<"$replaced")) == "$replaced" ]] || fail $LINENO
  else
    [[ $(snapshot) == "$state" ]] || fail $LINENO
    [[ -e $journal ]] || fail $LINENO # kept for inspection
  fi
  present || fail $LINENO
  count "a journal file left in the data folder" $ok
done

printf '| %-52s | %5s | %9s | %5s |\n' Experiment Runs "Cut short" Wrong
printf '|%s|%s|%s|%s|\n' "$(printf -- '-%.0s' {1..54})" "-------" "-----------" "-------"
for name in "kill -9 mid-batch, then --finish (and --undo)" "kill -9 mid-batch, then rollBackUnfinishedRename" \
            "kill -9 mid-batch, then --undo" "kill right after a rename" "kill -9 during --undo, then --undo again (swaps)" \
            "journal folder on a full 2 MB tmpfs" "two --apply at once" "a journal file left in the data folder"; do
  if [[ -n ${note[$name]:-} ]]; then printf '| %-52s | %s |\n' "$name" "${note[$name]}"; continue; fi
  printf '| %-52s | %5d | %9s | %5d |\n' "$name" "${total[$name]:-0}" "${short[$name]:--}" "${wrong[$name]:-0}"
done
