#!/usr/bin/env bash
# Speech as a person hears it, on a sound server of the test's own whose
# output goes nowhere (PulseAudio's null sink), so speaking takes as long as
# the words do: speak:usingVoice: waits for the whole utterance, however
# long, and two runs speaking at once take their turns.
#   speech_test.sh NOMEN_SCRIPT
set -uo pipefail
script=$1
runtime=$(mktemp -d)
trap 'pulseaudio --kill >/dev/null 2>&1; rm -rf "$runtime"' EXIT
chmod 700 "$runtime"
export XDG_RUNTIME_DIR=$runtime QT_QPA_PLATFORM=offscreen HOME=$runtime
pulseaudio --daemonize=yes --exit-idle-time=-1 -n --load=module-null-sink --load=module-native-protocol-unix \
    >/dev/null 2>&1 || { echo "FAIL: no sound server" >&2; exit 1; }
for _ in $(seq 100); do pactl list short sinks 2>/dev/null | grep -q null && break; sleep 0.1; done
failures=0
fail() { echo "FAIL: $*" >&2; failures=$((failures + 1)); }

speak() { "$script" -e "callClassMethod('ROZ_MiscMethods', 'speak:usingVoice:', ['$1', '']); 'spoken'" >/dev/null 2>&1; }
seconds() { local start=$(date +%s.%N); "$@" >/dev/null; echo "$(date +%s.%N) - $start" | bc; }

# A short text that takes long to say: no deadline made of its length cuts it.
long=$(seconds speak '9,999,999,999,999,999,999')
(( $(echo "$long > 5.5" | bc) )) || fail "a six-second utterance returned after $long s"

# Two runs at once: the second waits for the first to finish.
one=$(seconds speak 'one two three four five six')
both=$( { start=$(date +%s.%N); speak 'one two three four five six' & speak 'one two three four five six'; wait; \
          echo "$(date +%s.%N) - $start" | bc; } )
(( $(echo "$both > 1.4 * $one" | bc) )) || fail "two runs took $both s, one alone $one s: they spoke over each other"

echo "long utterance $long s; one $one s, two at once $both s"
exit $((failures > 0))
