#!/usr/bin/env bash
# Runs the EDID fuzzer for a number of seconds, seeded with the bundled sample
# EDIDs (and the real-EDID corpus beside the repository when it is there).
# A finding is kept as build/fuzz/findings/crash-*; the exit status is then 1.
set -euo pipefail
fuzzer=$1
seconds=${2:-60}
root=$(cd "$(dirname "$0")/.." && pwd)
work="$root/build/fuzz"
mkdir -p "$work/corpus" "$work/findings"
seeds=("$root/Resources/samples")
[ -d "$root/../shared/edid-corpus" ] && seeds+=("$root/../shared/edid-corpus")
echo "Fuzzing the EDID model for ${seconds} s ..."
if ! "$fuzzer" -max_total_time="$seconds" -max_len=2048 -print_final_stats=1 \
      -artifact_prefix="$work/findings/" "$work/corpus" "${seeds[@]}" > "$work/fuzz.log" 2>&1; then
  tail -n 40 "$work/fuzz.log"
  echo "The fuzzer found a problem; the input is in $work/findings/" >&2
  exit 1
fi
grep -E '^stat::number_of_executed_units|^Done' "$work/fuzz.log" | sed 's/^/  /'
echo "Fuzzing found nothing."
