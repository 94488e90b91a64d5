#!/bin/sh
# Draws the skin's PNG images anew from source/*.svg, each also in double size (needs librsvg2-bin).
set -eu
cd "$(dirname "$0")"
for svg in source/*.svg; do
    name=$(basename "$svg" .svg)
    rsvg-convert "$svg" -o "$name.png"
    rsvg-convert --zoom 2 "$svg" -o "$name@2x.png"
done
