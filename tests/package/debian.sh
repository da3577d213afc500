#!/usr/bin/env bash
# The life of the Debian package: built, installed, started, upgraded, removed and purged, by the machine's own dpkg in a private view of the
# machine. All that is written there goes to memory, and with the last process of the view it is gone.
# debian.sh <build folder>
set -euo pipefail
. "$(dirname "$0")/lib.sh"
home=/var/lib/korvane

# In the view ------------------------------------------------------------------------------------------------------------------

inside() { "${enter[@]}" "$@"; }
package() { inside dpkg --force-unsafe-io "$1" "$2" >"$root/tmp/dpkg.log" 2>&1 || fail "dpkg $1 $2: $(cat "$root/tmp/dpkg.log")"; }
deb() { inside sh -c "echo /tmp/korvane_*-$1_*.deb"; }
in_unit() { sed -n "s/^$1=//p" "$root/usr/lib/systemd/system/korvane.service" | tr -d '"'; }

make_view() {
    mount -t tmpfs -o mode=755 view "$work/view" || skip "nothing can be mounted here"
    mkdir "$work"/view/{changed,aside,root}
    mount -t overlay -o "lowerdir=/,upperdir=$work/view/changed,workdir=$work/view/aside" overlay "$work/view/root" ||
        skip "no overlay can be mounted here"
    root=$work/view/root
    enter=(chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive)
    mount -t proc proc "$root/proc"
    mount --bind /dev "$root/dev"
    # Without the folders of a running service manager nobody tries to reach it.
    for folder in run tmp home; do mount -t tmpfs -o mode=1777 "$folder" "$root/$folder"; done
    install -m 755 /dev/stdin "$root/usr/sbin/policy-rc.d" <<<$'#!/bin/sh\nexit 101'
    rm -f "$root/var/lib/man-db/auto-update"  # the index of all manual pages takes long and tells nothing about this package
    # What the machine itself has of Korvane is not to be seen in the view.
    if inside dpkg-query -W korvane >/dev/null 2>&1; then package --purge korvane; fi
    if inside getent passwd korvane >/dev/null; then inside deluser --quiet --system korvane; fi
    rm -rf "${root:?}$home"
}

# start_as <home> <user> <command>...
start_as() {
    start_and_end "$root$1" "${enter[@]}" setpriv --reuid "$2" --regid "$2" --clear-groups env HOME="/home/$2" "${@:3}"
}

# Starts it as the unit says.
start_service() { start_as "$home" "$(in_unit User)" env "$(in_unit Environment)" "$(in_unit ExecStart)"; }

# is <pattern> <what> <command>...
is() {
    local found
    found=$("${@:3}" 2>&1) || true
    # shellcheck disable=SC2053
    [[ $found == $1 ]] || fail "$2: $found"
}

check_installed() {
    is "" "not as packed" inside dpkg --verify korvane
    is "*/main.png" "the manual" inside ls /usr/lib/korvane/manual/manual.md /usr/lib/korvane/manual/pictures/main.png
    is "korvane:korvane 750" "the home" inside stat -c '%U:%G %a' "$home"
    is "*complete*" "the completion" inside sh -c 'PATH=/usr/lib/korvane:$PATH bash -c ". /usr/share/bash-completion/completions/korvanecore; complete -p korvanecore"'
    is "" "the units" inside sh -c 'systemd-analyze verify --man=no /usr/lib/systemd/system/korvane.service /usr/lib/systemd/system/korvane@.service 2>&1 | grep korvane'
}

sum_of_database() { md5sum <"$root$home/kvdata2.mdb"; }

live() {
    make_view
    cp "$work"/korvane_*.deb "$root/tmp"
    local database

    package --install "$(deb 1)"
    check_installed
    is "" "the settings of a new home" diff <(inside /usr/lib/korvane/korvanecore --recommended-settings) "$root$home/kvurlwatchn.ini"
    is "korvane:korvane 600" "the settings file" inside stat -c '%U:%G %a' "$home/kvurlwatchn.ini"
    is "" "the service is enabled though nobody asked for it" inside find /etc/systemd -name 'korvane*'
    start_service

    # Somebody starts it by hand: the home is that user's own, and nobody else's.
    mkdir "$root/home/games"
    inside chown games: /home/games
    start_as /home/games/.local/share/korvane games korvanecore
    is 700 "the home of a user" stat -c %a "$root/home/games/.local/share/korvane"

    database=$(sum_of_database) || fail "no database was made in the home of the service"
    inside chmod 700 "$home"
    package --install "$(deb 2)"
    is "*-2" "the version" inside dpkg-query -W korvane
    is "$database" "the database after an upgrade" sum_of_database
    is 700 "the rights that the administrator gave the home" inside stat -c %a "$home"
    inside chmod 750 "$home"
    package --install "$(deb 2)"
    check_installed
    start_service

    database=$(sum_of_database)
    package --remove korvane
    is "" "left after the removal" find "$root"/usr/{bin,lib} -maxdepth 1 -name 'korvane*'
    is "$database" "the database after the removal" sum_of_database
    package --install "$(deb 2)"
    check_installed
    is "$database" "the database after another installation" sum_of_database

    package --remove korvane
    package --purge korvane
    is "" "the user after a purge" inside getent passwd korvane
    # What is deleted stands as a character device there.
    is "" "left after a purge" find "$work/view/changed" -name '*korvane*' ! -type c
}

# On the machine ---------------------------------------------------------------------------------------------------------------

if [ "$1" = --inside ]; then work=$2; live; exit 0; fi

build=$(realpath "$1")
needs dpkg dpkg-deb dpkg-shlibdeps adduser unshare setpriv
[ "$(id -u)" -eq 0 ] || skip "installing a package needs root"

on_machine() { dpkg-query -W korvane 2>&1 || getent passwd korvane || stat -c '%U %a %Y %i' "$home" 2>&1 || true; }
before=$(on_machine)
work=$(mktemp -d) && mkdir "$work/view"
trap 'rm -rf "$work"' EXIT
for revision in 1 2; do
    "$(dirname "$0")/../../scripts/package" --build "$build" --output "$work" --revision "$revision" >"$work/log" 2>&1 || fail "$(cat "$work/log")"
done
status=0
unshare --mount --pid --fork --kill-child -- "$0" --inside "$work" || status=$?
[ "$(on_machine)" = "$before" ] || fail "something got out of the view: $(on_machine)"
exit "$status"
