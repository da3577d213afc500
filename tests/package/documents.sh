#!/usr/bin/env bash
# Whether the desktop entry, the manual page and the icons are as their readers want them.
# documents.sh <folder of the sources>
set -euo pipefail
. "$(dirname "$0")/lib.sh"
cd "$1"
needs desktop-file-validate groff

complaints=$(desktop-file-validate data/system/korvane.desktop; groff -man -ww -z -Tutf8 data/system/korvanecore.1 2>&1)
[ -z "$complaints" ] || fail "$complaints"

# The size of a PNG stands in its bytes 17 to 24.
for side in 16 22 24 32 48 64 128 256; do
    icon=data/icons/${side}x${side}/apps/korvane.png
    size=$(od -An -tu4 --endian=big -j16 -N8 "$icon" | xargs)
    [ "$size" = "$side $side" ] || fail "$icon is $size"
done
