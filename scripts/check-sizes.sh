#!/bin/sh
# Fails when a source file, a class over all its sources, or a function is longer than a reader can keep in mind. The
# definitions of a class's member functions count wherever they are, so spreading them over files does not make it shorter.
# The rows of a function's static table are data and do not count.
#   scripts/check-sizes.sh [LINES_OF_A_FILE [LINES_OF_A_FUNCTION]]
set -eu
cd "$(dirname "$0")/.."
longest=${1:-400}
longest_function=${2:-55}

# clang-format gives the outer braces of a function lines of their own, at the same depth, and ends a class with "};".
find . -path ./build -prune -o \( -name '*.cpp' -o -name '*.h' \) -print | LC_ALL=C sort | xargs awk -v longest="$longest" -v longest_function="$longest_function" '
    function forget_from(least, depth) { for (depth in begin) if (depth + 0 >= least) delete begin[depth] }
    FNR == 1 { class = ""; forget_from(0); table = -1 }
    { lines[FILENAME]++ }
    /^[A-Za-z].*[A-Za-z]::~?[A-Za-z]+\(/ && !/;$/ {
        name = $0
        sub(/::~?[A-Za-z]+\(.*/, "", name)
        sub(/.*[ *&]/, "", name)
        class = name
    }
    class != "" { length_of[class]++ }
    /^}/ { class = "" }
    table < 0 && /^ +static const.* = \{$/ { match($0, /^ +/); table = RLENGTH; rows = 0; next }
    table >= 0 { rows++; if (match($0, /^ *\};$/) && RLENGTH == table + 2) { skipped += rows; table = -1 } next }
    /^ *\{$/ { depth = length($0) - 1; forget_from(depth); begin[depth] = FNR; skipped = 0 }
    /^ *\};?$/ {
        match($0, /^ */)
        depth = RLENGTH
        if ((depth in begin) && !/;$/) {
            count = FNR - begin[depth] - 1 - skipped
            if (count > longest_function) { print FILENAME ":" begin[depth] ": a function of " count " lines"; bad = 1 }
        }
        forget_from(depth)
    }
    END {
        for (file in lines) if (lines[file] > longest) { print file ": " lines[file] " lines"; bad = 1 }
        for (name in length_of) if (length_of[name] > longest) { print "class " name ": " length_of[name] " lines of definitions"; bad = 1 }
        exit bad
    }'
