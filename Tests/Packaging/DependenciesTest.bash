#!/bin/bash
# Packaging/dependencies against a dpkg and an apt-get that are told what to answer. Nothing is installed.
source "$(dirname -- "${BASH_SOURCE[0]}")/Cases.bash"

# A computer with the programs named and nothing else on PATH. Its apt-get writes down how it was called and acts out
# $work/refuses (a package that is unknown until the lists are refreshed), $work/removes, $work/offline.
_computer() {
    local program
    mkdir bin
    for program in bash awk xargs grep tail cat env rm; do
        ln -s "$(command -v "$program")" bin/
    done
    _program dpkg-query 'while read -r package; do echo "$package installed"; done <'"'$work/installed'"
    _program id 'echo 0'
    printf '%s\n' build-essential cmake ninja-build ccache pkg-config >installed
    for program; do _program "$program" "${_programs[$program]}"; done
}

_program() {
    printf '#!/bin/bash\n%s\n' "$2" >"bin/$1"
    chmod +x "bin/$1"
}

declare -A _programs=(
    [apt-get]='here=${0%/*}/..
        echo "$*" >>"$here/calls"
        case "$*" in
        *update*)
            [[ ! -e $here/offline ]] || { echo "E: Failed to fetch the list"; exit 100; }
            rm -f "$here/refuses" ;;
        *--simulate*)
            [[ ! -e $here/refuses ]] || { echo "E: Unable to locate package qcoro-qt6-dev"; exit 100; }
            [[ ! -e $here/removes ]] || echo "Remv $(<"$here/removes") [1.0]"
            echo "Inst cmake (3.25 Debian)" ;;
        *) [[ ! -e $here/broken ]] || { echo "E: Sub-process dpkg returned an error code (1)"; exit 100; } ;;
        esac'
    [sudo]='echo "sudo: a password is required" >&2; exit 1'
)

_dependencies() { run env "PATH=$work/bin" "$root/Packaging/dependencies" "$@"; }

_installations() { [[ ! -e calls ]] || grep -v -e --simulate -e update calls; }
_nothing_was_installed() { [[ -z $(_installations) ]]; }

nothingMissingAsksAptGetNothing() {
    _computer apt-get
    awk '/^build="/ { on = 1; next } /^"/ { on = 0 } on { print $1 }' "$root/Packaging/dependencies" >installed
    expect "the list to have been read" [ "$(wc -l <installed)" -gt 10 ]
    _dependencies build
    expect "success without a word" [ "$status:$out:$err" = "0::" ]
    expect "no call of apt-get" [ ! -e calls ]
}

whatIsMissingIsNamedWithItsReasonAndInstalledWithoutRecommendations() {
    _computer apt-get
    _dependencies build test
    expect "success" [ "$status" = 0 ]
    expect "nothing on standard output" [ -z "$out" ]
    expect "the package and its reason" grep -Eq '^qcoro-qt6-dev +coroutines over Qt$' .err
    expect "packages of both lists" contains "$(_installations)" clang-format-19
    expect "no package that is there" lacks "$(_installations)" cmake
    expect "no recommendations, no questions" contains "$(_installations)" "install --yes --no-install-recommends"
}

aRemovalStopsTheInstallationAndIsNamed() {
    _computer apt-get
    echo libqt5core5a >removes
    _dependencies build
    expect "failure" [ "$status" = 1 ]
    expect "the package in the sentence" contains "$err" "would remove libqt5core5a; nothing was installed."
    expect "nothing to be installed" _nothing_was_installed
}

anUnknownPackageRefreshesTheListsOnce() {
    _computer apt-get
    touch refuses
    _dependencies build
    expect "success" [ "$status" = 0 ]
    expect "one refreshing" [ "$(grep -c update calls)" = 1 ]
    expect "one installation" [ "$(_installations | wc -l)" = 1 ]
}

whatStandsInTheWayIsOneSentence() {
    local row way sentence
    for row in \
        "noAptGet|this system has no apt-get to install them with." \
        "noNetwork|The package lists could not be refreshed, so" \
        "broken|could not install" \
        "noSudo|installing them takes root: please run apt-get install" \
        "sudoAsks|a password is required"; do
        way=${row%%|*} sentence=${row#*|}
        rm -rf bin calls refuses offline broken
        case $way in
        noAptGet) _computer ;;
        noNetwork) _computer apt-get; touch refuses offline ;;
        broken) _computer apt-get; touch broken ;;
        noSudo) _computer apt-get; _program id 'echo 1000' ;;
        sudoAsks) _computer apt-get sudo; _program id 'echo 1000' ;;
        esac
        _dependencies build
        expect "failure: $way" [ "$status" = 1 ]
        expect "'$sentence': $way" contains "$err" "$sentence"
        expect "the packages to be named: $way" contains "$err" qt6-base-dev
    done
}

anUnknownListIsRefused() {
    _computer apt-get
    _dependencies build tset
    expect "failure" [ "$status" = 1 ]
    expect "its name" contains "$err" "no list named tset"
    expect "nothing to be installed" _nothing_was_installed
}

run_cases
