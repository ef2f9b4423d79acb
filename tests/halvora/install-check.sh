#!/usr/bin/env bash
# Installs the build into a new temporary prefix, as a packager would, and
# checks what lands there: the tool runs, its manual page renders without a
# warning, and both shells' completions are where those shells look.
#   install-check.sh BUILD_DIR
set -euo pipefail
build=$1
prefix=$(mktemp -d)
log=$(mktemp)
trap 'rm -rf "$prefix" "$log"' EXIT

fail() { echo "install check: $*" >&2; exit 1; }

cmake --install "$build" --prefix "$prefix" > "$log" 2>&1 || { cat "$log" >&2; fail "cmake --install failed"; }

tool="$prefix/bin/halvora"
page="$prefix/share/man/man1/halvora.1"
bash_completion="$prefix/share/bash-completion/completions/halvora"
zsh_completion="$prefix/share/zsh/site-functions/_halvora"
for file in "$tool" "$page" "$bash_completion" "$zsh_completion"; do
  [ -f "$file" ] || fail "nothing installed at ${file#"$prefix"/}"
done
[ -x "$tool" ] || fail "bin/halvora is not executable"
"$tool" --version | grep -q '^halvora [0-9]' || fail "the installed halvora does not print its version"

# The page renders, and groff finds nothing to warn about in it.
if command -v groff > /dev/null; then
  warnings=$(groff -man -Tutf8 -ww -z "$page" 2>&1)
  [ -z "$warnings" ] || fail "groff warns about the manual page: $warnings"
fi
# man-db's man (Linux) reads a page given by path with -l; macOS's man has no -l.
if [ "$(uname -s)" = Linux ] && command -v man > /dev/null; then
  MANWIDTH=80 man -l "$page" 2> /dev/null | grep -q 'split-resolution EDIDs for picture-by-picture monitors' ||
    fail "man -l does not show the page"
  MANPATH="$prefix/share/man" man -w halvora > /dev/null 2>&1 || fail "man does not find the page under the prefix"
fi

bash -n "$bash_completion" || fail "the bash completion does not parse"
if command -v zsh > /dev/null; then
  zsh -n "$zsh_completion" || fail "the zsh completion does not parse"
fi
echo "install check: the tool, its manual page and both completions install and work under a new prefix"
