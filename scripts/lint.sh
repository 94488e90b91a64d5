#!/usr/bin/env bash
# Checks the formatting of the whole tree, then runs clang-tidy and clazy on the sources that changed.
#   scripts/lint.sh                since the branch left its upstream, uncommitted work included; only the latter if
#                                  there is no upstream
#   scripts/lint.sh --since REV    since a commit
#   scripts/lint.sh --all          on every source
# Needs a configured and built build/release, whose compile commands it uses.
set -euo pipefail
cd "$(dirname "$0")/.."
build=build/release
jobs=$(nproc)

changed_since() {
    { git diff --name-only --diff-filter=d "$1"; git ls-files --others --exclude-standard; } | grep -E '\.(cpp|h)$' || true
}

case "${1:-}" in
    --all) files=$(git ls-files '*.cpp') ;;
    --since) files=$(changed_since "$2") ;;
    *) files=$(changed_since "$(git merge-base HEAD '@{upstream}' 2>/dev/null || echo HEAD)") ;;
esac

git ls-files -z --cached --others --exclude-standard '*.cpp' '*.h' | xargs -0 -n 40 -P "$jobs" clang-format --dry-run -Werror

# A changed header is checked through the source of the same name; a source that no target compiles has no flags.
sources=$(printf '%s\n' $files | sed -E 's/\.h$/.cpp/' | sort -u | while read -r source; do
    [ -n "$source" ] && grep -qF "$PWD/$source\"" $build/compile_commands.json && printf '%s\n' "$source"
done || true)
[ -n "$sources" ] || { echo "lint: formatting is clean; no source has changed"; exit 0; }

echo "lint: formatting is clean; checking $(printf '%s\n' "$sources" | wc -l) sources"
printf '%s\n' "$sources" | xargs -n 2 -P "$jobs" clang-tidy -p $build --quiet 2>/dev/null
# clazy reports without failing.
findings=$(printf '%s\n' "$sources" | xargs -n 4 -P "$jobs" clazy-standalone -p $build -checks=level1 2>&1 | grep -F '[-Wclazy-' | sort -u || true)
[ -z "$findings" ] || { printf '%s\n' "$findings"; exit 1; }
echo "lint: clean"
