#!/bin/sh
# Takes the pictures of the documents anew, with the client that is built in build/release.
set -eu
cd "$(dirname "$0")"
. ../../scripts/prepare.sh
install_packages xvfb xauth pngquant
client=$PWD/../../build/release/bin/quillstar
work=$(mktemp -d)
place=$(mktemp -d -t quillstar.XXXX) # shown in the pictures
trap 'rm -r "$work" "$place"' EXIT

# take <skin> <language>: visits all windows on a virtual display.
take() {
    rm -rf "$place"/*
    xvfb-run -a -s "-screen 0 1600x1000x24 -dpi 96" "$client" --skin "$1" --language "$2" --screenshots "$work/$1" \
        --config "$place/quillstar.ini" --data "$place/data" --downloads "$place/Renders"
}

# keep <skin> <name in the tour> <name here> [<colours>]
keep() {
    pngquant --force --strip --output "$3.png" "${4:-256}" "$work/$1/$2.png"
}

take default en
keep default my-render client
keep default sign-in sign-in
keep default frames frames
keep default preview preview 48
keep default configuration settings
take dark zh
keep dark my-render dark
