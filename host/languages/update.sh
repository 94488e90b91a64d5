#!/bin/sh
# Brings the translation files up to date with the sources (needs qttools5-dev-tools). English is its own translation.
set -eu
cd "$(dirname "$0")"
for ts in vtr_*.ts; do
    lupdate -silent -locations none -no-obsolete -source-language en \
        ../../common ../../dialogs ../../mainwindow ../../plugin .. -ts "$ts"
done
perl -0pi -e 's|(<source>(.*?)</source>.*?)<translation[^>]*>.*?</translation>|$1<translation>$2</translation>|sg' vtr_en.ts
