#!/usr/bin/env bash
# Whether the desktop entry and the manual page are as their readers want them.
# documents.sh <folder of the sources>
set -euo pipefail
. "$(dirname "$0")/lib.sh"
cd "$1"
needs desktop-file-validate groff

complaints=$(desktop-file-validate data/system/korvane.desktop; groff -man -ww -z -Tutf8 data/system/korvanecore.1 2>&1)
[ -z "$complaints" ] || fail "$complaints"
