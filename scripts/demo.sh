#!/usr/bin/env bash
# Shows the main job of the halvora command on the sample monitors that ship
# with the project: decode a wide monitor's EDID, write its split version,
# decode that, and deal with a monitor that reports only one half. Then the
# whole application runs on the recorded machine through a scripted tour.
set -euo pipefail
halvora=$1
root=$(cd "$(dirname "$0")/.." && pwd)
samples="$root/Resources/samples"
out="$root/build/demo"
mkdir -p "$out"

if [ -t 1 ]; then bold=$'\033[1m'; plain=$'\033[0m'; else bold=; plain=; fi
step() { printf '\n%s== %s%s\n' "$bold" "$*" "$plain"; }
run() { printf '$ %s\n' "$*"; "$@"; }

step "A 34-inch 3440x1440 ultrawide: its EDID lacks the 1720x1440 half that picture-by-picture needs"
run "$halvora" decode "$samples/ultrawide-34.bin"

step "Write the split EDID that Halvora Pro would give the display"
run "$halvora" split "$samples/ultrawide-34.bin" -o "$out/ultrawide-34-split.bin"

step "The split EDID lists both the native and the half-width timing"
run "$halvora" decode "$out/ultrawide-34-split.bin"

step "The same monitor in picture-by-picture mode reports only one half; halvora will not guess"
run "$halvora" split "$samples/ultrawide-34-pbp.bin" -o "$out/never.bin" || true

step "Told the panel's native resolution, it restores the native timing and keeps the half"
run "$halvora" split "$samples/ultrawide-34-pbp.bin" --native 3440x1440 -o "$out/ultrawide-34-pbp-split.bin"
run "$halvora" decode --json "$out/ultrawide-34-pbp-split.bin"

step "A 49-inch 5120x1440 superwide: the native timing lives in DisplayID, and 2560x1440 is already there"
run "$halvora" split "$samples/superwide-49.bin" -o "$out/superwide-49-split.bin"

step "The CVT reduced-blanking timing Halvora Pro synthesises for the half"
run "$halvora" cvt 1720 1440

step "The whole application on a recorded machine: a scripted tour (scripts/tour.halvora)"
run "$halvora" simulate --strict --script "$root/scripts/tour.halvora"

printf '\nDemo files are in %s\n' "$out"
