#!/usr/bin/env bash
# Signs "Halvora Pro.app" inside out with the hardened runtime and checks the
# signature; with a Developer ID and notarisation credentials it also has the
# app notarised and staples the ticket. With no identity named it signs ad hoc,
# which is enough to run the app on this Mac (and for the login item).
#
#   scripts/sign-app.sh APP
#
# Environment:
#   HALVORA_SIGN_IDENTITY    a codesign identity, e.g. "Developer ID Application: Name (TEAMID)";
#                            empty or "-": ad hoc
#   HALVORA_NOTARY_PROFILE   a notarytool keychain profile (xcrun notarytool store-credentials), or
#   HALVORA_NOTARY_APPLE_ID, HALVORA_NOTARY_TEAM_ID, HALVORA_NOTARY_PASSWORD
#                            an Apple ID, its team and an app-specific password
#
# Sources: Apple, "Notarizing macOS software before distribution" and the
# codesign(1), notarytool and stapler manuals; Sparkle's documentation, "Basic
# Setup" (ad-hoc signing and library validation) and "Sandboxing" (its helpers'
# signatures); docs/macos-platform.md.
set -euo pipefail

say() { printf 'sign-app: %s\n' "$*"; }
fail() { printf 'sign-app: %s\n' "$*" >&2; exit 1; }

[ $# -eq 1 ] || { echo "usage: scripts/sign-app.sh APP" >&2; exit 2; }
app=${1%/}
[ "$(uname -s)" = Darwin ] || fail "code signing needs macOS (codesign)"
[ -d "$app/Contents/MacOS" ] || fail "$app is not an application bundle"
here=$(cd "$(dirname "$0")" && pwd)

identity=${HALVORA_SIGN_IDENTITY:-}
[ -n "$identity" ] || identity=-
if [ "$identity" = - ]; then
  say "signing ad hoc (set HALVORA_SIGN_IDENTITY to a Developer ID to ship)"
  # Under the hardened runtime, library validation refuses an ad-hoc signed
  # framework (Sparkle's "Basic Setup"); a local build turns it off.
  entitlements=("--entitlements" "$here/../HalvoraPro/macos/AdHoc.entitlements")
  timestamp=(--timestamp=none)
else
  security find-identity -v -p codesigning | grep -qF "$identity" ||
    fail "no code signing identity \"$identity\" in the keychain (security find-identity -v -p codesigning)"
  say "signing with \"$identity\""
  entitlements=()
  timestamp=(--timestamp)
fi

sign() { # sign PATH [codesign options...]
  local path=$1
  shift
  codesign --force --options runtime "${timestamp[@]}" --sign "$identity" "$@" "$path" ||
    fail "codesign failed on $path"
  say "signed ${path#"$app"/}"
}

# Inside out: Sparkle's helpers, then its framework, then the app.
sparkle="$app/Contents/Frameworks/Sparkle.framework"
if [ -d "$sparkle" ]; then
  version="$sparkle/Versions/Current"
  for xpc in "$version"/XPCServices/*.xpc; do
    [ -e "$xpc" ] || continue
    case "$(basename "$xpc")" in
      Downloader.xpc) sign "$xpc" --preserve-metadata=entitlements ;;
      *) sign "$xpc" ;;
    esac
  done
  [ -e "$version/Autoupdate" ] && sign "$version/Autoupdate"
  [ -e "$version/Updater.app" ] && sign "$version/Updater.app"
  sign "$sparkle"
fi
# An empty array is "unbound" to set -u in bash before 4.4 (macOS's /bin/bash is 3.2).
sign "$app" ${entitlements[@]+"${entitlements[@]}"}

codesign --verify --deep --strict --verbose=2 "$app" || fail "the signature of $app does not verify"
say "verified: codesign --verify --deep --strict"

# Notarisation: only with a Developer ID and credentials.
notary=()
if [ -n "${HALVORA_NOTARY_PROFILE:-}" ]; then
  notary=(--keychain-profile "$HALVORA_NOTARY_PROFILE")
elif [ -n "${HALVORA_NOTARY_APPLE_ID:-}${HALVORA_NOTARY_TEAM_ID:-}${HALVORA_NOTARY_PASSWORD:-}" ]; then
  if [ -z "${HALVORA_NOTARY_APPLE_ID:-}" ] || [ -z "${HALVORA_NOTARY_TEAM_ID:-}" ] ||
     [ -z "${HALVORA_NOTARY_PASSWORD:-}" ]; then
    fail "notarisation needs all of HALVORA_NOTARY_APPLE_ID, HALVORA_NOTARY_TEAM_ID and HALVORA_NOTARY_PASSWORD"
  fi
  notary=(--apple-id "$HALVORA_NOTARY_APPLE_ID" --team-id "$HALVORA_NOTARY_TEAM_ID"
          --password "$HALVORA_NOTARY_PASSWORD")
fi
if [ ${#notary[@]} -eq 0 ]; then
  say "not notarised (no notarisation credentials: see the README)"
  exit 0
fi
[ "$identity" != - ] || fail "notarisation needs a Developer ID identity (HALVORA_SIGN_IDENTITY), not ad hoc"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
ditto -c -k --keepParent "$app" "$work/upload.zip"
say "submitting to Apple's notary service (this waits for the verdict)"
xcrun notarytool submit "$work/upload.zip" "${notary[@]}" --wait --output-format plist > "$work/result.plist" ||
  fail "notarytool submit failed"
status=$(plutil -extract status raw "$work/result.plist" 2>/dev/null || echo unknown)
if [ "$status" != Accepted ]; then
  id=$(plutil -extract id raw "$work/result.plist" 2>/dev/null || echo "?")
  fail "notarisation was not accepted ($status); see: xcrun notarytool log $id ${notary[*]:0:2}"
fi
xcrun stapler staple "$app" || fail "stapling the ticket to $app failed"
spctl --assess --type execute --verbose=2 "$app" || fail "Gatekeeper does not accept $app"
say "notarised and stapled"
