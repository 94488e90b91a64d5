#!/bin/sh
# Redraws the skins' PNG images from source/*.svg, each also at double size (needs librsvg2-bin).
set -eu
cd "$(dirname "$0")"
for svg in */source/*.svg; do
    name=${svg%/source/*}/$(basename "$svg" .svg)
    rsvg-convert "$svg" -o "$name.png"
    rsvg-convert --zoom 2 "$svg" -o "$name@2x.png"
done
