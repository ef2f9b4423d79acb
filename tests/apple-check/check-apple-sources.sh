#!/usr/bin/env bash
# Syntax- and type-checks every Apple-only source against the declarations in
# declarations/ beside this script (Apple's public signatures of the calls they
# use): C++ files as C++, Objective-C++ files with ARC and blocks, and the Apple
# branches (`#if defined(__APPLE__)`) of the portable sources. It compiles for a
# macOS target at the deployment target, so availability is checked as on a Mac:
# an API newer than the deployment target needs `if (@available(...))`.
# It proves the files parse and call what is declared; a macOS build proves
# the rest.
#   tests/apple-check/check-apple-sources.sh [CLANG++ [FILE...]]
#   (FILE relative to the repository's root; default: the sources found below.
#   HALVORA_DEPLOYMENT_TARGET overrides the one in CMakeLists.txt)
set -euo pipefail
cd "$(dirname "$0")/../.."

# The sources are found, not listed (below): every C++ and Objective-C++ file
# under a macos/ folder, and every portable source with an Apple branch outside
# tests/. Each sees the public headers its own build sees, no more: the
# platform's its own and those below it, the app's the shell's too, and only
# the self-test build the simulated world and the command-line front end. A
# module that moves or joins changes these lists, the one place that names
# modules.
platform_includes=(EDIDKit/include HalvoraCore/include HalvoraPlatform/include)
app_includes=("${platform_includes[@]}" HalvoraPro/include)
selftest_includes=("${app_includes[@]}" HalvoraSimulation/include tools/halvora/src)

compiler=${1:-clang++}
shift || true

deployment=${HALVORA_DEPLOYMENT_TARGET:-$(sed -n 's/.*CMAKE_OSX_DEPLOYMENT_TARGET "\([0-9.]*\)".*/\1/p' CMakeLists.txt)}
if [ -z "$deployment" ]; then
  echo "check-apple-sources: no deployment target (CMAKE_OSX_DEPLOYMENT_TARGET in CMakeLists.txt)" >&2
  exit 2
fi

common=(-std=c++20 -fsyntax-only -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion
        -Wnon-virtual-dtor -Wold-style-cast -Wimplicit-fallthrough
        -Wundeclared-selector -Wunguarded-availability-new -Wbridge-cast -Wformat=2 -Werror
        -isystem tests/apple-check/declarations)

if [ "$(uname -s)" = Darwin ]; then
  common+=(-target "arm64-apple-macos$deployment")
else
  # No macOS SDK here: compile for an Intel Mac (the declarations make BOOL a
  # bool, as on arm64) with this machine's C++ library, whose headers are
  # built for x86-64. Clang keeps `__nonnull` for Apple targets; the C
  # library's headers need their own.
  common+=(-target "x86_64-apple-macos$deployment" -D_GNU_SOURCE -U__nonnull -U__nullable -nostdinc++)
  while IFS= read -r dir; do
    case "$dir" in
      */c++/*|*/include/*-linux-gnu) common+=(-isystem "$dir") ;;
    esac
  done < <("$compiler" -x c++ -E -v /dev/null 2>&1 >/dev/null |
           sed -n '/^#include <...> search starts here:/,/^End of search list./p' | sed 's/^ *//')
fi

# A compiler or C++ library that cannot build for a macOS target here checks
# nothing: say so, and exit 77 (CTest counts the check as skipped).
if ! printf '#include <string>\n#include <functional>\n' |
     "$compiler" "${common[@]}" -x c++ - 2>/dev/null; then
  echo "check-apple-sources: $compiler cannot compile for macOS $deployment with this machine's C++ library;" \
       "nothing was checked" >&2
  exit 77
fi

if [ $# -gt 0 ]; then
  sources="$*"
else
  sources=$(git ls-files --cached --others --exclude-standard 2>/dev/null '*/macos/*.cpp' '*/macos/*.mm' || true)
  [ -n "$sources" ] ||
    sources=$(find . -path ./build -prune -o -path '*/macos/*' \( -name '*.cpp' -o -name '*.mm' \) -print)
  apple_branches=$(git grep -l -e '__APPLE__' -- '*.cpp' ':!tests/*' ':!*/macos/*' 2>/dev/null || true)
  [ -n "$apple_branches" ] ||
    apple_branches=$(grep -rl --include='*.cpp' --exclude-dir=build --exclude-dir=tests --exclude-dir=macos \
                     -e '__APPLE__' . || true)
  sources="$sources $apple_branches"
fi
checked=0
for source in $sources; do
  case "$source" in
    HalvoraPlatform/*|./HalvoraPlatform/*) module_includes=("${platform_includes[@]}") ;;
    */macos/SelfTest*)                     module_includes=("${selftest_includes[@]}") ;;
    *)                                     module_includes=("${app_includes[@]}") ;;
  esac
  local_include=(-I"$(dirname "$source")")
  for dir in "${module_includes[@]}"; do
    local_include+=(-I"$dir")
  done
  case "$source" in
    *.mm) "$compiler" "${common[@]}" "${local_include[@]}" -x objective-c++ -fobjc-arc -fblocks \
            "$source" ;;
    *)    "$compiler" "${common[@]}" "${local_include[@]}" -x c++ "$source" ;;
  esac
  checked=$((checked + 1))
done
echo "checked $checked Apple-only sources (macOS $deployment)"
[ "$checked" -gt 0 ]
