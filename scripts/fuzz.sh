#!/usr/bin/env bash
# Runs the fuzz targets for a number of seconds each, seeded with real files:
#   edid      the EDID model: the sample EDIDs and the real-EDID corpus
#   settings  the settings file decoder: settings files the application wrote
#   rig       the simulator's rig reader: the sample rig and one of corpus monitors
#   command   the simulator's command parser: the demo's tour and short scripts
# Usage: scripts/fuzz.sh BUILD_DIR [SECONDS] [TARGET...]   (default: all four)
# A finding is kept as build/fuzz/findings/TARGET/crash-*; the exit status is then 1.
# The last lines of each run (executions per second, coverage) are printed.
set -euo pipefail
bin=$1
seconds=${2:-60}
shift $(($# < 2 ? $# : 2))
targets=("$@")
[ ${#targets[@]} -eq 0 ] && targets=(edid settings rig command)
root=$(cd "$(dirname "$0")/.." && pwd)
work="$root/build/fuzz"
found=0
for target in "${targets[@]}"; do
  seeds=()
  extra=()
  case $target in
    edid)
      seeds=("$root/Resources/samples")
      seeds+=("$root/tests/data/edid-corpus")
      extra=(-max_len=2048) ;;
    settings) seeds=("$root/fuzz/seeds/settings"); extra=(-max_len=8192 -dict="$root/fuzz/settings.dict") ;;
    rig)      seeds=("$root/fuzz/seeds/rigs"); extra=(-max_len=4096 -dict="$root/fuzz/rig.dict") ;;
    command)  seeds=("$root/fuzz/seeds/scripts"); extra=(-max_len=2048 -dict="$root/fuzz/command.dict") ;;
    *) echo "unknown fuzz target '$target' (edid, settings, rig or command)" >&2; exit 2 ;;
  esac
  corpus="$work/corpus-$target"
  findings="$work/findings/$target"
  log="$work/$target.log"
  mkdir -p "$corpus" "$findings"
  [ "$target" = command ] && cp "$root/scripts/tour.halvora" "$corpus/tour.halvora"
  echo "Fuzzing $target for ${seconds} s ..."
  if ! "$bin/$target-fuzzer" -max_total_time="$seconds" -print_final_stats=1 -timeout=20 "${extra[@]}" \
        -artifact_prefix="$findings/" "$corpus" "${seeds[@]}" > "$log" 2>&1; then
    tail -n 40 "$log"
    echo "The $target fuzzer found a problem; the input is in $findings/" >&2
    found=1
    continue
  fi
  # Coverage as libFuzzer reports it last ("cov: edges ft: features corp: inputs"),
  # then the run's totals.
  grep -E '#[0-9]+.*(DONE|pulse|REDUCE|NEW).*cov:' "$log" | tail -n 1 | sed 's/^/  /'
  grep -E '^stat::number_of_executed_units|^stat::average_exec_per_sec|^stat::peak_rss_mb' "$log" | sed 's/^/  /'
done
[ $found -eq 0 ] && echo "Fuzzing found nothing."
exit $found
