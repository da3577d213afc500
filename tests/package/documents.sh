#!/usr/bin/env bash
# Whether the desktop entry, the manual page and the manual are as their readers want them.
# documents.sh <folder of the sources>
set -euo pipefail
. "$(dirname "$0")/lib.sh"
cd "$1"
needs desktop-file-validate groff

complaints=$(desktop-file-validate data/system/korvane.desktop; groff -man -ww -z -Tutf8 data/system/korvanecore.1 2>&1)
[ -z "$complaints" ] || fail "$complaints"

# The window that shows the manual follows its links to chapters and pictures.
chapters=$(sed -n 's/^## //p' docs/manual.md | tr '[:upper:] ' '[:lower:]-' | tr -cd 'a-z0-9\n-')
for target in $(grep -oE '\]\([^)]+\)' docs/manual.md | sed 's/^](//; s/)$//'); do
    case $target in
    '#'*) grep -qx -- "${target#?}" <<<"$chapters" || fail "the manual has no chapter $target" ;;
    http*) ;;
    *) [ -e "docs/$target" ] || fail "the manual has no $target" ;;
    esac
done
