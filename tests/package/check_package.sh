#!/bin/sh
# Unpacks the archive of a build, moves it, and uses it as users, integrators and packagers do.
#   check_package.sh <archive | client | host | debian> <build folder> <source folder> <work folder>
set -eu
what=$1 build=$2 source=$3 work=$4
prefix="$work/moved here"
export HOME="$work/home" QT_QPA_PLATFORM=offscreen
unset DISPLAY WAYLAND_DISPLAY XDG_DATA_HOME XDG_CONFIG_HOME LD_LIBRARY_PATH

fail() {
    echo "$*" >&2
    exit 1
}

# wait_for <description> <command>…
wait_for() {
    description=$1
    shift
    for _ in $(seq 600); do
        "$@" && return
        sleep 0.1
    done
    fail "waited in vain for $description"
}

pack() {
    cpack --config "$build/CPackConfig.cmake" -G "$1" -B "$work/packages" >"$work/cpack.log" 2>&1 || fail "$(cat "$work/cpack.log")"
}

archive() {
    rm -rf "$work"
    mkdir -p "$HOME"
    pack TGZ
    tar -xzf "$work/packages"/*.tar.gz -C "$work"
    mv "$work"/quillstar-* "$prefix"
    for file in $(grep -rlI "$build\|$source\|$work" "$prefix" || true); do
        fail "$file names a folder of the build"
    done
    for program in quillstar quillstar-farmd; do
        manual="$prefix/share/man/man1/$program.1.gz"
        env -u QT_QPA_PLATFORM "$prefix/bin/$program" --help >"$work/help" || fail "$program has no help without a display"
        for option in $(grep -o -- ' --[a-z-]*' "$work/help"); do
            zcat "$manual" | sed 's/\\//g' | grep -q -- "$option\b" || fail "$manual lacks $option"
        done
    done
    if command -v desktop-file-validate >/dev/null; then
        desktop-file-validate "$prefix"/share/applications/*.desktop
    fi
    if command -v appstreamcli >/dev/null; then
        appstreamcli validate --no-net "$prefix"/share/metainfo/*.xml
    fi
}

# The client starts the installed farm and signs in; its main window keeps its files in the user's home.
client() {
    data="$HOME/.local/share/quillstar"
    "$prefix/bin/quillstar" &
    client=$!
    trap 'kill $client' EXIT
    wait_for "the farm's data" [ -f "$data/farm/farm.sqlite" ]
    wait_for "the sign-in" grep -qs lastname "$HOME/.config/quillstar/quillstar.ini"
    kill "$client"
    trap - EXIT
    wait "$client" || fail "the client ended with status $?"
    [ -e "$data/program/data" ] || fail "the client has not run in its user's folder"
    [ ! -e "$prefix/lib/quillstar/data" ] || fail "the client has written to the installation"
}

# The example as an integrator gets it, and a form that lacks a widget.
host() {
    example="$prefix/share/quillstar/minimal_host"
    host="$work/host"
    cmake -G Ninja -S "$example" -B "$host" -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_CXX_COMPILER_LAUNCHER="${CCACHE:-}"
    cmake --build "$host"
    said=$("$host/minimal_host" --once)
    [ "$said" = "shown: 1 job" ] || fail "the example said: $said"

    form="$prefix/share/quillstar/forms/com.vtr.search.ui"
    sed -i 's/name="lneJobId"/name="lneOther"/' "$form"
    ! cmake "$host" >"$work/form.log" 2>&1 || fail "a form without lneJobId was accepted"
    grep -q "QLineEdit lneJobId" "$work/form.log" || fail "the missing lneJobId was not named"
}

debian() {
    pack DEB
    # Package, a file that it contains, packages that it depends on.
    while read -r package file depends; do
        deb=$(echo "$work/packages/${package}_"*.deb)
        dpkg-deb --fsys-tarfile "$deb" | tar -t >"$work/contents"
        for path in "$file" "share/doc/$package/copyright"; do
            grep -q "/usr/$path$" "$work/contents" || fail "$deb lacks $path"
        done
        for other in $depends; do
            dpkg-deb -f "$deb" Depends | grep -q "\b$other\b" || fail "$deb does not depend on $other"
        done
    done <<EOF
quillstar lib/quillstar/libcom_vtr_qsclient.so libqt5widgets5 libqt5svg5
quillstar-farm bin/quillstar-farmd libqt5core5a povray
quillstar-dev lib/cmake/QuillStarClient/QuillStarClientConfig.cmake quillstar qtbase5-dev
EOF
}

$what
