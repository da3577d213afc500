# Shared by the tests of what is installed.
# shellcheck shell=bash

# ctest takes 77 for a test that was not run; ./test prints the line after "Skipped" as its reason.
skip() { printf '%s:0: Skipped\n%s\n' "${0##*/}" "$1"; exit 77; }

fail() { echo "${0##*/}: $1" >&2; exit 1; }

needs() { local tool && for tool in "$@"; do command -v "$tool" >/dev/null || skip "$tool is not installed"; done; }

# wait_until <command>...: looks again and again, for half a minute at most.
wait_until() {
    local last=$((SECONDS + 30))
    until "$@"; do if [ "$SECONDS" -ge "$last" ]; then return 1; fi && sleep 0.05; done
}

logged() { cat "$1"/Logs/kvmonlog*.txt 2>/dev/null | grep -qF -- "$2"; }

# start_and_end <home> <command>...: starts the program, waits until its log says that it is up, and ends it as the service manager does.
start_and_end() {
    local home=$1 pid
    shift
    rm -rf "$home/Logs"
    "$@" >/dev/null &
    pid=$!
    wait_until logged "$home" "frmMonitor:Form_Load: calling Form_Resize" || { kill -KILL "$pid"; fail "no start within half a minute: $*"; }
    kill -TERM "$pid"
    wait "$pid" || fail "ended with status $?: $*"
    logged "$home" "Korvane Closing: Form_Terminate" || fail "the log does not tell of the end: $*"
}
