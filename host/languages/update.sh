#!/bin/sh
# Updates the translation files from the sources (needs qttools5-dev-tools). English is its own
# translation, unless vtr_en.ts has another one, as it has for the short words of states and stages.
# With --check it changes nothing, prints the texts that lack a translation and fails if there are any.
set -eu
cd "$(dirname "$0")"

# $1: folder of the .ts files
update() {
    for ts in "$1"/vtr_*.ts; do
        lupdate -silent -I ../.. -locations none -no-obsolete -source-language en \
            ../../common ../../dialogs ../../mainwindow ../../plugin .. -ts "$ts"
    done
}

if [ "${1:-}" = --check ]; then
    copy=$(mktemp -d)
    trap 'rm -r "$copy"' EXIT
    cp vtr_*.ts "$copy"
    update "$copy"
    ! grep -B 1 'type="unfinished"' "$copy"/vtr_*.ts >&2
else
    update .
    perl -0pi -e 's|(<source>([^<]*)</source>\s*)<translation type="unfinished">[^<]*</translation>|$1<translation>$2</translation>|sg' vtr_en.ts
fi
