#!/usr/bin/env bash
# Packs a signed "Halvora Pro.app" for download: a zip made with ditto (which
# keeps the bundle's symlinks, permissions and signature) and a disk image made
# with hdiutil. With a Developer ID the disk image is signed too, and with
# notarisation credentials it is notarised and stapled (the app inside already
# is: scripts/sign-app.sh).
#
#   scripts/package-app.sh APP OUTDIR
#
# Environment: as scripts/sign-app.sh (HALVORA_SIGN_IDENTITY, HALVORA_NOTARY_*).
# Sources: the ditto(1) and hdiutil(1) manuals; Apple, "Notarizing macOS
# software before distribution".
set -euo pipefail

say() { printf 'package-app: %s\n' "$*"; }
fail() { printf 'package-app: %s\n' "$*" >&2; exit 1; }

[ $# -eq 2 ] || { echo "usage: scripts/package-app.sh APP OUTDIR" >&2; exit 2; }
app=${1%/}
out=$2
[ "$(uname -s)" = Darwin ] || fail "packaging needs macOS (ditto, hdiutil)"
[ -d "$app/Contents/MacOS" ] || fail "$app is not an application bundle"
codesign --verify --deep --strict "$app" || fail "$app is not signed: run make app first"

version=$(plutil -extract CFBundleShortVersionString raw "$app/Contents/Info.plist")
name="Halvora-Pro-$version"
mkdir -p "$out"

ditto -c -k --keepParent "$app" "$out/$name.zip"
say "wrote $out/$name.zip"

# The disk image holds the app and a link to /Applications to drag it onto.
stage=$(mktemp -d)
trap 'rm -rf "$stage"' EXIT
ditto "$app" "$stage/$(basename "$app")"
ln -s /Applications "$stage/Applications"
rm -f "$out/$name.dmg"
hdiutil create -volname "Halvora Pro" -srcfolder "$stage" -fs HFS+ -format UDZO -quiet "$out/$name.dmg" ||
  fail "hdiutil could not make the disk image"
say "wrote $out/$name.dmg"

identity=${HALVORA_SIGN_IDENTITY:-}
if [ -z "$identity" ] || [ "$identity" = - ]; then
  say "the disk image is not signed (ad hoc build)"
  exit 0
fi
codesign --force --timestamp --sign "$identity" "$out/$name.dmg" || fail "codesign failed on the disk image"
say "signed the disk image with \"$identity\""

notary=()
if [ -n "${HALVORA_NOTARY_PROFILE:-}" ]; then
  notary=(--keychain-profile "$HALVORA_NOTARY_PROFILE")
elif [ -n "${HALVORA_NOTARY_APPLE_ID:-}" ] && [ -n "${HALVORA_NOTARY_TEAM_ID:-}" ] &&
     [ -n "${HALVORA_NOTARY_PASSWORD:-}" ]; then
  notary=(--apple-id "$HALVORA_NOTARY_APPLE_ID" --team-id "$HALVORA_NOTARY_TEAM_ID"
          --password "$HALVORA_NOTARY_PASSWORD")
fi
if [ ${#notary[@]} -eq 0 ]; then
  say "the disk image is not notarised (no notarisation credentials)"
  exit 0
fi
say "submitting the disk image to Apple's notary service"
xcrun notarytool submit "$out/$name.dmg" "${notary[@]}" --wait || fail "notarytool submit failed"
xcrun stapler staple "$out/$name.dmg" || fail "stapling the ticket to the disk image failed"
say "notarised and stapled $out/$name.dmg"
