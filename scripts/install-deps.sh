#!/usr/bin/env bash
# Installs what building and testing Halvora Pro needs and this machine lacks.
#   scripts/install-deps.sh test|demo|app|fuzz|bench
# Debian (as root): installs the missing packages with apt-get.
# macOS: prints the one Homebrew command to run when something is missing.
set -euo pipefail

purpose=${1:-test}
case "$purpose" in
  test)  debian=(cmake ninja-build g++ libgtest-dev libgmock-dev nlohmann-json3-dev edid-decode xcvt python3
                zsh groff-base man-db)
         # edid-decode and xcvt have no Homebrew formula: the tests that
         # compare with them run on Linux and are skipped on a Mac.
         brew=(cmake ninja googletest nlohmann-json) ;;
  demo)  debian=(cmake ninja-build g++ nlohmann-json3-dev libbenchmark-dev)
         brew=(cmake ninja nlohmann-json google-benchmark) ;;
  bench) debian=(cmake ninja-build g++ nlohmann-json3-dev libbenchmark-dev)
         brew=(cmake ninja nlohmann-json google-benchmark) ;;
  app)   debian=()
         brew=(cmake ninja nlohmann-json) ;;
  fuzz)  debian=(cmake ninja-build clang libclang-rt-dev nlohmann-json3-dev)
         brew=(cmake ninja llvm nlohmann-json) ;;
  *) echo "usage: $0 test|demo|app|fuzz|bench" >&2; exit 2 ;;
esac

if [ "$(uname -s)" = Darwin ]; then
  if ! command -v brew >/dev/null 2>&1; then
    echo "Halvora Pro builds with Homebrew's packages; install Homebrew from brew.sh, then run:" >&2
    echo "  brew install ${brew[*]}" >&2
    exit 1
  fi
  missing=()
  for formula in "${brew[@]}"; do
    brew list --formula "$formula" >/dev/null 2>&1 || missing+=("$formula")
  done
  if [ ${#missing[@]} -gt 0 ]; then
    echo "Missing for '$purpose'. Run:" >&2
    echo "  brew install ${missing[*]}" >&2
    exit 1
  fi
  exit 0
fi

if ! command -v dpkg-query >/dev/null 2>&1; then
  echo "Not a Debian system: make sure these (Debian names) are installed: ${debian[*]}" >&2
  exit 0
fi

missing=()
for package in "${debian[@]}"; do
  dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed" || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

if [ "$(id -u)" -ne 0 ]; then
  echo "Missing for '$purpose': ${missing[*]}" >&2
  echo "Run: sudo apt-get update && sudo apt-get install -y ${missing[*]}" >&2
  exit 1
fi
echo "Installing for '$purpose': ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
apt-get update -qq
apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
