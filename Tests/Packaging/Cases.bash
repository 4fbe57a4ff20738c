# Runs the functions of a test script as cases, each in a shell and a folder of its own:
#
#     source Cases.bash
#     theSecondCallDoesNothing() { ...; expect ...; }
#     run_cases "$@"
#
# A case is every function whose name is declared after this file was read and does not begin with "_".
# $root is the tree under test; $work the case's folder, whose path has a blank in it.
set -uo pipefail

root=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/../.." && pwd)

# run COMMAND...: its standard output and error in $out and $err, its exit status in $status.
run() {
    status=0
    "$@" >"$work/.out" 2>"$work/.err" </dev/null || status=$?
    out=$(<"$work/.out")
    err=$(<"$work/.err")
}

# expect DESCRIPTION COMMAND...: the case fails where the command does.
expect() {
    local description=$1
    shift
    "$@" && return
    printf '    expected %s\n    but status %s, out: %s\n    err: %s\n' "$description" "${status:-}" "${out:-}" "${err:-}"
    exit 1
}

contains() { [[ $1 == *"$2"* ]]; }
lacks() { ! contains "$@"; }

# await COMMAND...: until it succeeds; a case that never gets there fails after a minute.
await() {
    local end=$((SECONDS + 60))
    until "$@"; do
        ((SECONDS < end)) || expect "this to become true: $*" false
        sleep 0.02
    done
}

run_cases() {
    local passed=0 failed=0 name
    while read -r name; do
        [[ $name != _* && $_inherited != *" $name "* ]] || continue
        work="$(mktemp -d)/a case"
        mkdir "$work"
        if (cd "$work" && "$name"); then
            passed=$((passed + 1))
        else
            failed=$((failed + 1))
            echo "failed: $name"
        fi
        rm -rf "${work%/*}"
    done < <(compgen -A function)
    echo "$passed passed, $failed failed"
    ((passed > 0 && failed == 0))
}

_inherited=" $(compgen -A function | tr '\n' ' ') "
