#!/bin/bash
# An installation of the build tree given: InstallTest.bash BUILD_FOLDER
source "$(dirname -- "${BASH_SOURCE[0]}")/Cases.bash"
build=$1

_libraries_from_elsewhere() {
    ldd prefix/bin/vesk prefix/lib/vesk/*.so |
        grep -E '(vesk|sherpa|onnxruntime).* => |not found' | grep -v "=> $work/prefix/"
}

aMovedPrefixHearsTheSample() {
    run cmake --install "$build" --prefix "$work/first"
    expect "success" [ "$status" = 0 ]
    mv first prefix
    mkdir home
    run env "HOME=$work/home" prefix/bin/vesk --file prefix/share/vesk/speech/sample.wav --raw
    expect "the words of the sample" contains "$out" "fail better"
    expect "every library from the prefix: $(_libraries_from_elsewhere)" [ -z "$(_libraries_from_elsewhere)" ]
    local library
    for library in "$build"/lib/vesk/*.so; do
        expect "${library##*/} in the prefix" [ -f "prefix/lib/vesk/${library##*/}" ]
    done
    expect "nothing that leads out of the prefix" [ -z "$(find prefix -type l)" ]
    cd prefix/share/vesk
    expect "the model's bytes" sha256sum --check --quiet <(grep ' speech/' "$root/Packaging/speech/SHA256SUMS")
}

aDesktopFindsTheProgramAndItsIcon() {
    run cmake --install "$build" --prefix "$work/prefix"
    expect "success" [ "$status" = 0 ]
    run desktop-file-validate prefix/share/applications/*.desktop
    expect "a valid entry" [ "$status" = 0 ]
    run appstreamcli validate --no-net prefix/share/metainfo/*.xml
    expect "valid metadata" [ "$status" = 0 ]
    local name
    name=$(sed -n 's/^Icon=//p' prefix/share/applications/*.desktop)
    expect "the icon in its own pixels" [ -s "prefix/share/icons/hicolor/16x16/apps/$name.png" ]
    expect "the icon in any size" grep -q '<path' "prefix/share/icons/hicolor/scalable/apps/$name.svg"
    xargs -d '\n' rm <"$build/install_manifest.txt"
    expect "nothing left" [ -z "$(find prefix -not -type d)" ]
}

run_cases
