#!/usr/bin/env bash
# Syntax- and type-checks every Apple-only source against the declarations in
# macos/declarations (Apple's public signatures of the calls they use): C++
# files as C++, Objective-C++ files with ARC and blocks. It proves the files
# parse and call what is declared; a macOS build proves the rest.
#   scripts/check-apple-sources.sh [CLANG++ [FILE...]]   (default: every */macos/*.cpp and *.mm)
set -euo pipefail
cd "$(dirname "$0")/.."
compiler=${1:-clang++}
shift || true
common=(-std=c++20 -fsyntax-only -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion
        -Wnon-virtual-dtor -Wold-style-cast -Wimplicit-fallthrough -Werror -isystem macos/declarations
        -IEDIDKit/include -IDisplayHardware/include -IHalvoraCore/include -IHalvoraPro/include)
if [ $# -gt 0 ]; then
  sources="$*"
else
  sources=$(git ls-files 2>/dev/null '*/macos/*.cpp' '*/macos/*.mm' || true)
  [ -n "$sources" ] ||
    sources=$(find . -path ./build -prune -o -path '*/macos/*' \( -name '*.cpp' -o -name '*.mm' \) -print)
fi
checked=0
for source in $sources; do
  local_include=(-I"$(dirname "$source")")
  case "$source" in
    *.mm) "$compiler" "${common[@]}" "${local_include[@]}" -x objective-c++ -fobjc-arc -fblocks \
            -fobjc-runtime=macosx-13.0 "$source" ;;
    *)    "$compiler" "${common[@]}" "${local_include[@]}" -x c++ "$source" ;;
  esac
  checked=$((checked + 1))
done
echo "checked $checked Apple-only sources"
[ "$checked" -gt 0 ]
