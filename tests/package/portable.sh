#!/usr/bin/env bash
# Whether the folder that cmake --install lays out is whole: copied elsewhere, it starts with nothing but itself and is its own home.
# portable.sh <build folder>
set -euo pipefail
. "$(dirname "$0")/lib.sh"
build=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cmake --install "$build" --prefix "$work/installed" >/dev/null
mv "$work/installed" "$work/a folder"
start_and_end "$work/a folder" env -i "$work/a folder/korvanecore"
[ -e "$work/a folder/kvdata2.mdb" ] || fail "no database was made in the folder"

# The windows are loaded by name, so that nothing but this notices a part that they lack.
undefined=$(ldd -r "$work/a folder/korvanedesktop.so" 2>&1 | grep -E 'undefined symbol|not found' || true)
[ -z "$undefined" ] || fail "$undefined"

# Whatever is there beside the home's own files is what the build has laid out.
compare=$(diff -rq "$build/dist" "$work/a folder" | grep -v "^Only in $work/a folder: \(Logs\|Reports\|kvdata2.mdb\|kvurlwatchn.ini\|korvane.lock\)$" || true)
# Installing takes the paths of the build machine out of the programs, so these may differ.
compare=$(grep -v '^Files .*/\(korvanecore\|korvanedesktop.so\) differ$' <<<"$compare" || true)
[ -z "$compare" ] || fail "$compare"
