#!/bin/sh
# Fails when a source file, or a class over all its sources, is longer than a reader can hold in mind. A class counts with
# the definitions of its member functions, wherever they stand, so it cannot be spread over files to stay short.
set -eu
cd "$(dirname "$0")/.."
longest=${1:-400} # lines

find . -path ./build -prune -o \( -name '*.cpp' -o -name '*.h' \) -print | LC_ALL=C sort | xargs awk -v longest="$longest" '
    FNR == 1 { class = "" }
    { lines[FILENAME]++ }
    /^[A-Za-z].*[A-Za-z]::~?[A-Za-z]+\(/ && !/;$/ {
        name = $0
        sub(/::~?[A-Za-z]+\(.*/, "", name)
        sub(/.*[ *&]/, "", name)
        class = name
    }
    class != "" { length_of[class]++ }
    /^}/ { class = "" }
    END {
        for (file in lines) if (lines[file] > longest) { print file ": " lines[file] " lines"; bad = 1 }
        for (name in length_of) if (length_of[name] > longest) { print "class " name ": " length_of[name] " lines of definitions"; bad = 1 }
        exit bad
    }'
