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
# shellcheck disable=SC2016
version() { inside dpkg-query -W -f '${Version}' korvane; }
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
    printf '#!/bin/sh\nexit 101\n' >"$root/usr/sbin/policy-rc.d"
    chmod 755 "$root/usr/sbin/policy-rc.d"
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

# Starts it as the unit says, and listens as the manager does: a service of this type has not started before it says so.
start_service() {
    python3 "$(dirname "$0")/manager.py" "$root/run/notify" >"$root/tmp/told" &
    local manager=$!
    wait_until [ -S "$root/run/notify" ] || fail "nobody listens"
    start_as "$home" "$(in_unit User)" env "$(in_unit Environment)" NOTIFY_SOCKET=/run/notify "$(in_unit ExecStart)"
    kill "$manager"
    wait "$manager" || true
    rm "$root/run/notify"
    if [ "$(in_unit Type)" = notify ]; then
        grep -qx READY=1 "$root/tmp/told" || fail "the unit waits for READY=1, and the program said: $(cat "$root/tmp/told")"
    fi
}

check_installed() {
    [ -z "$(inside dpkg --verify korvane)" ] || fail "not as packed: $(inside dpkg --verify korvane)"
    local owner
    owner=$(inside stat -c '%U:%G %a' "$home")
    [ "$owner" = "korvane:korvane 750" ] || fail "the home is $owner"
    if inside sh -c 'command -v systemd-analyze' >/dev/null; then
        local complaints
        complaints=$(inside systemd-analyze verify --man=no /usr/lib/systemd/system/korvane.service 2>&1 | grep korvane || true)
        [ -z "$complaints" ] || fail "$complaints"
    fi
}

live() {
    make_view
    cp "$work"/korvane_*.deb "$root/tmp"
    local first second
    first=$(cd "$root" && echo tmp/korvane_*-1_*.deb)
    second=$(cd "$root" && echo tmp/korvane_*-2_*.deb)

    package --install "/$first"
    check_installed
    [ -z "$(inside find /etc/systemd -name 'korvane*')" ] || fail "the service is enabled though nobody asked for it"
    start_service
    [ -e "$root$home/kvdata2.mdb" ] || fail "no database was made in the home of the service"

    # Somebody starts it by hand: the home is that user's own, and nobody else's.
    mkdir "$root/home/games"
    inside chown games: /home/games
    start_as /home/games/.local/share/korvane games korvanecore
    [ "$(stat -c %a "$root/home/games/.local/share/korvane")" = 700 ] || fail "others can look into a user's home"

    local database
    database=$(md5sum <"$root$home/kvdata2.mdb")
    inside chmod 700 "$home"
    package --install "/$second"
    [[ "$(version)" == *-2 ]] || fail "after the upgrade the version is $(version)"
    [ "$(md5sum <"$root$home/kvdata2.mdb")" = "$database" ] || fail "the upgrade changed the database"
    [ "$(inside stat -c %a "$home")" = 700 ] || fail "the upgrade changed the rights that the administrator gave the home"
    inside chmod 750 "$home"
    package --install "/$second"
    check_installed
    start_service

    database=$(md5sum <"$root$home/kvdata2.mdb")
    package --remove korvane
    for file in usr/lib/korvane usr/bin/korvanecore; do
        [ ! -e "$root/$file" ] || fail "/$file is still there after the removal"
    done
    [ "$(md5sum <"$root$home/kvdata2.mdb")" = "$database" ] || fail "the removal changed the database"
    package --install "/$second"
    check_installed
    [ "$(md5sum <"$root$home/kvdata2.mdb")" = "$database" ] || fail "another installation changed the database"

    package --remove korvane
    package --purge korvane
    [ ! -e "$root$home" ] || fail "the home is still there after a purge"
    if inside getent passwd korvane; then fail "the user is still there after a purge"; fi
    # What is deleted stands as a character device there.
    local left
    left=$(find "$work/view/changed" -name '*korvane*' ! -type c)
    [ -z "$left" ] || fail "left behind: $left"
}

# On the machine ---------------------------------------------------------------------------------------------------------------

if [ "$1" = --inside ]; then
    work=$2
    live
    exit 0
fi

build=$(realpath "$1")
needs dpkg dpkg-deb dpkg-shlibdeps adduser unshare setpriv python3
[ "$(id -u)" -eq 0 ] || skip "installing a package needs root"

on_machine() { dpkg-query -W korvane 2>&1 || getent passwd korvane || stat -c '%U %a %Y %i' "$home" 2>&1 || true; }
before=$(on_machine)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir "$work/view"
for revision in 1 2; do
    "$(dirname "$0")/../../scripts/package" --build "$build" --output "$work" --revision "$revision" >"$work/log" 2>&1 || fail "$(cat "$work/log")"
done
status=0
unshare --mount --pid --fork --kill-child -- "$0" --inside "$work" || status=$?
[ "$(on_machine)" = "$before" ] || fail "something got out of the view: $(on_machine)"
exit "$status"
