#!/bin/sh
# Takes the documents' pictures anew, with the client that is built in build/release.
set -eu
cd "$(dirname "$0")"
. ../../scripts/prepare.sh
install_packages xvfb xauth pngquant povray chromium chromium-driver python3
client=$PWD/../../build/release/bin/quillstar
work=$(mktemp -d)
place=$(mktemp -d -t quillstar.XXXX) # shown in the pictures
trap 'rm -r "$work" "$place"' EXIT

# take <skin> <language>: visits all windows on a virtual display. Its width is a whole number of millimetres. Other widths
# are rounded to one, and so Qt would scale by 1.0008 and blur fine lines.
take() {
    rm -rf "$place"/*
    xvfb-run -a -s "-screen 0 1920x1200x24 -dpi 96" "$client" --skin "$1" --language "$2" --screenshots "$work/$1" \
        --config "$place/quillstar.ini" --data "$place/data" --downloads "$place/Renders"
}

# shrink <picture> <name here>: saves the picture with a palette, unless that makes it larger.
shrink() { pngquant --force --strip --skip-if-larger --output "$2.png" 256 "$1" || cp "$1" "$2.png"; }

# keep <skin> <name in the tour> <name here>
keep() { shrink "$work/$1/$2.png" "$3"; }

take default en
keep default my-render client
keep default sign-in sign-in
keep default frames frames
keep default preview preview
keep default configuration settings
keep default space space
take dark zh
keep dark my-render dark

python3 page.py "$work/page.png"
shrink "$work/page.png" page
