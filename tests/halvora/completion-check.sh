#!/usr/bin/env bash
# Drives the bash completion as bash does (COMP_WORDS, COMP_CWORD, then the
# completion function) and checks what it offers.
#   completion-check.sh COMPLETION_FILE HALVORA SAMPLES_DIR CORPUS_DIR
set -euo pipefail
completion=$1 tool=$2 samples=$3 corpus=$4
# shellcheck source=/dev/null
source "$completion"

failures=0
offers() { # offers EXPECTED WORD...: completing the last WORD offers exactly EXPECTED
  local expected=$1
  shift
  COMP_WORDS=("$tool" "$@")
  COMP_CWORD=$(($# ))
  COMPREPLY=()
  _halvora
  local got want
  got=$(printf '%s\n' "${COMPREPLY[@]}" | sort | tr '\n' ' ')
  # shellcheck disable=SC2086 # the expected words, one a line
  want=$(printf '%s\n' $expected | sort | tr '\n' ' ')
  if [ "$got" != "$want" ]; then
    echo "completing '$*': offered '$got', expected '$want'" >&2
    failures=$((failures + 1))
  fi
}

offers "decode split merge cvt simulate --help --version" ""
offers "simulate split" "s"
offers "--json --native-sizes --help" decode "-"
offers "--native-sizes" decode "--nat" # decode has no --native: only its own flag
offers "--rig --settings --script --strict --safe --help" simulate "--"
offers "-o --output --hex --fix-checksums --accept-extension-count --help" merge "-"
offers "--fix-checksums" split x.bin "--fix"
# --native offers the panel sizes of the EDID named before it: the ultrawide's
# own 3440x1440, the panel its half-only PBP EDID belongs to, and every size a
# real 1280x1440 monitor's EDID may be part of.
offers "3440x1440" split "$samples/ultrawide-34.bin" --native ""
offers "3440x1440" split --hex "$samples/ultrawide-34-pbp.bin" --native ""
uncertain="$corpus/6A00A2E322F2.bin"
sizes=$("$tool" decode --native-sizes "$uncertain")
[ "$(printf '%s\n' "$sizes" | wc -l)" -ge 2 ] ||
  { echo "$uncertain should name more than one panel size, not '$sizes'" >&2; failures=$((failures + 1)); }
offers "$sizes" split "$uncertain" -o out.bin --native ""
offers "" split --native ""                       # no EDID named yet: nothing to offer
offers "" split /no/such/file.bin --native ""     # an unreadable EDID: nothing, and no error

[ "$failures" -eq 0 ] || exit 1
echo "completion check: every case offers what it should"
