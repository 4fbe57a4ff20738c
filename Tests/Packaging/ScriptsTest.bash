#!/bin/bash
# What ./run and ./test are put together from: the quiet build, the count of cases and the house checks.
source "$(dirname -- "${BASH_SOURCE[0]}")/Cases.bash"

# A project whose build appends a line to $work/tree/made, with the real Packaging/build.
_project() {
    mkdir -p tree/Packaging
    cp "$root/Packaging/build" tree/Packaging/
    cat >tree/CMakeLists.txt <<'CMAKE'
cmake_minimum_required(VERSION 3.25)
project(Small LANGUAGES NONE)
add_custom_command(OUTPUT result DEPENDS "${CMAKE_SOURCE_DIR}/input" VERBATIM
    COMMAND sh -c "echo built >>made && cp input \"$1\" && ! grep failure input" make "${CMAKE_BINARY_DIR}/result"
    WORKING_DIRECTORY "${CMAKE_SOURCE_DIR}")
add_custom_target(everything ALL DEPENDS result)
CMAKE
    cat >tree/CMakePresets.json <<'JSON'
{
  "version": 6,
  "configurePresets": [ { "name": "small", "generator": "Ninja", "binaryDir": "${sourceDir}/build/small" } ],
  "buildPresets": [ { "name": "small", "configurePreset": "small" } ]
}
JSON
    echo one >tree/input
}

aBuildWithNothingToDoIsSilent() {
    _project
    run tree/Packaging/build small everything
    expect "success" [ "$status" = 0 ]
    expect "nothing on standard output" [ -z "$out" ]
    expect "the result" [ -f tree/build/small/result ]
    run tree/Packaging/build small everything
    expect "success without a word" [ "$status:$out:$err" = "0::" ]
    expect "one build" [ "$(wc -l <tree/made)" = 1 ]
}

aBuildThatFailsShowsItsEndAndNamesItsLog() {
    _project
    echo "failure in line 7" >tree/input
    run env -u CI tree/Packaging/build small
    expect "failure" [ "$status" = 1 ]
    expect "the compiler's words" contains "$err" "failure in line 7"
    expect "the log's name" contains "$err" "the whole log is build/small.log"
    expect "the log" grep -q "failure in line 7" tree/build/small.log
}

aCopiedTreeBuildsItselfNotTheOriginal() {
    _project
    run tree/Packaging/build small
    cp -a tree copy
    rm copy/made
    echo two >copy/input
    run copy/Packaging/build small
    expect "success" [ "$status" = 0 ]
    expect "the copy to be built" [ "$(<copy/build/small/result)" = two ]
    expect "the original to be left alone" [ "$(wc -l <tree/made)" = 1 ]
}

_count() { run "$root/Packaging/count-cases" last closing; }

casesOfBothKindsAreCounted() {
    printf '%s\n' '[ RUN      ] A.b' '[       OK ] A.b (0 ms)' '[       OK ] A.c/1 (12 ms)' \
        '[  SKIPPED ] A.d (0 ms)' '[  PASSED  ] 2 tests.' '7 passed, 0 failed' >last
    echo '100% tests passed, 0 tests failed out of 2' >closing
    _count
    expect "the sum" [ "$status:$out" = "0:9 passed, 0 failed, 1 skipped" ]
}

aFailedCaseIsCountedOnceAndFailsTheRun() {
    printf '%s\n' '[       OK ] A.b (0 ms)' '[  FAILED  ] A.c (1 ms)' ' 1 FAILED TEST' '[  FAILED  ] A.c' >last
    { cat last && echo '50% tests passed, 1 tests failed out of 2'; } >closing # shows what failed once more
    _count
    expect "one failure" [ "$status:$out" = "1:1 passed, 1 failed" ]
}

aProgramThatDiedBetweenCasesCountsAsFailed() {
    printf '%s\n' '[       OK ] A.b (0 ms)' 'AddressSanitizer: heap-use-after-free' >last
    echo '0% tests passed, 1 tests failed out of 1' >closing
    _count
    expect "a failure" [ "$status:$out" = "1:1 passed, 1 failed" ]
}

aRunWithoutCasesFails() {
    : >last
    : >closing
    _count
    expect "failure" [ "$status:$out" = "1:0 passed, 0 failed" ]
}

# A tree without findings but for the line given: _house_checks FILE LINE
_house_checks() {
    rm -rf tree
    mkdir -p tree/Packaging tree/Sources/Vesk/{Foundation,Platform/Linux} tree/Tests tree/Benchmarks
    cp "$root/Packaging/house-checks" tree/Packaging/
    cp "$root/.clang-format" tree/
    printf '#pragma once\n' >tree/Sources/Vesk/Foundation/Thing.h
    printf '#include "Foundation/Thing.h"\n' | tee tree/Sources/Vesk/{Foundation/Thing,Platform/Linux/Other}.cpp \
        >tree/Tests/ThingTest.cpp
    printf 'add_library(x Thing.cpp Other.cpp)\n' >tree/Sources/CMakeLists.txt
    printf 'add_executable(t ThingTest.cpp)\n' >tree/Tests/CMakeLists.txt
    [[ -z $1 ]] || printf '%s\n' "$2" >>"tree/$1"
    run tree/Packaging/house-checks
}

eachHouseCheckFindsWhatItLooksFor() {
    _house_checks '' ''
    expect "no finding in a clean tree" [ "$status:$out" = "0:" ]
    local row file line sentence
    while IFS='|' read -r file line sentence; do
        _house_checks "$file" "$line"
        expect "failure: $sentence" [ "$status" = 1 ]
        expect "$file to be named: $sentence" grep -Eq "^$file:[0-9]+: .*$sentence" .out
        expect "one finding: $sentence" contains "$out" "1 findings"
    done <<'ROWS'
Sources/Vesk/Foundation/Thing.cpp|int   x;|is not formatted
Sources/Vesk/Foundation/Thing.h|#include "Platform/Clock.h"|includes from a folder above
Sources/Vesk/Foundation/Naked.h|class Naked;|without #pragma once
Sources/Vesk/Foundation/Forgotten.cpp|class Forgotten;|stands in no CMakeLists.txt
Tests/ForgottenTest.cpp|class Forgotten;|stands in no CMakeLists.txt
Sources/Vesk/Foundation/Thing.cpp|#ifdef Q_OS_MACOS|asks for the system
Sources/Vesk/Foundation/Thing.h|#include <xcb/xcb.h>|knows a desktop
Sources/Vesk/Platform/Linux/Other.cpp|auto x = QCoro::waitFor(task());|waits for a Task
Tests/ThingTest.cpp|void wait() { QTest::qWait(5); }|sleeps in a test
ROWS
    _house_checks Sources/Vesk/Platform/Linux/Other.cpp '#ifdef Q_OS_MACOS'
    expect "systems to be told apart in Platform/" lacks "$out" "asks for the system"
}

withoutAnythingToLookAtTheHouseChecksFail() {
    _house_checks '' ''
    mkdir tools
    ln -s "$(command -v dirname)" "$(command -v find)" tools/
    run env PATH="$PWD/tools" tree/Packaging/house-checks
    expect "failure without clang-format" [ "$status:$err" = "1:The house checks need clang-format-19." ]
    find tree \( -name '*.cpp' -o -name '*.h' \) -delete
    run tree/Packaging/house-checks
    expect "failure without files" [ "$status:$err" = "1:The house checks find no file to look at." ]
}

run_cases
