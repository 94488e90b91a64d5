#!/bin/sh
# Fails and names the pairs of colours of a skin that are hard to tell apart, by the contrast that the web's
# accessibility guidelines define: 4.5 for text; 3 for icons, borders of controls, the focus mark and disabled texts. It
# checks the pairs below, and every colour of text that a template in style/ sets together with a background.
#   check_colors.sh <palette.cmake>…
set -eu
style=$(dirname "$0")/style
pairs=$(awk 'BEGIN { RS = "}" }
/[^-]color: @/ && /background: @/ {
    match($0, /[^-]color: @[a-z_]+@/); text = substr($0, RSTART + 9, RLENGTH - 10)
    match($0, /background: @[a-z_]+@/); print text ":" substr($0, RSTART + 13, RLENGTH - 14) ":" (/disabled/ ? 3 : 4.5)
}' "$style"/*.qss.in | sort -u)
[ -n "$pairs" ]
awk -v pairs="$pairs" '
function value(hex) { return (index("0123456789abcdef", substr(hex, 1, 1)) - 1) * 16 + index("0123456789abcdef", substr(hex, 2, 1)) - 1 }
function linear(hex,  part) { part = value(hex) / 255; return part <= 0.03928 ? part / 12.92 : ((part + 0.055) / 1.055) ^ 2.4 }
function luminance(color) { return 0.2126 * linear(substr(color, 2, 2)) + 0.7152 * linear(substr(color, 4, 2)) + 0.0722 * linear(substr(color, 6, 2)) }
function contrast(one, other,  a, b) { a = luminance(one); b = luminance(other); return a > b ? (a + 0.05) / (b + 0.05) : (b + 0.05) / (a + 0.05) }
function check(text, grounds, least,  i, n, names) {
    n = split(grounds, names, " ")
    for (i = 1; i <= n; ++i) {
        if (!(text in colors) || !(names[i] in colors)) {
            print file ": lacks " text " or " names[i]; ++faults
        } else if (contrast(colors[text], colors[names[i]]) < least) {
            print file ": " text " on " names[i] " has a contrast of " contrast(colors[text], colors[names[i]]) ", needs " least; ++faults
        }
    }
}
function check_palette(  k, n, styled, pair) {
    check("text", "window surface surface_alt field hover pressed selection", 4.5)
    check("text_muted", "window surface surface_alt field", 4.5)
    check("text_disabled", "window surface surface_alt", 3)
    check("icon", "window surface hover pressed danger_soft", 3)
    check("accent_text", "window surface surface_alt field", 4.5)
    check("control_line", "window surface field", 3)
    check("accent_text", "hover selection", 3)
    check("focus_on_accent", "accent surface window", 3)
    check("accent", "window surface", 3)
    check("accent_strong", "selection", 4.5)
    check("on_accent", "accent accent_hover accent_pressed danger danger_pressed", 4.5)
    check("on_accent_off", "accent_off", 3)
    check("danger_text", "window surface danger_soft", 4.5)
    check("on_brand", "brand_top brand_bottom", 4.5)
    check("on_brand_muted", "brand_top brand_bottom", 4.5)
    check("on_tip", "tip", 4.5)
    n = split(pairs, styled)
    for (k = 1; k <= n; ++k) {
        split(styled[k], pair, ":")
        check(pair[1], pair[2], pair[3])
    }
    split("", colors)
}
FNR == 1 && NR > 1 { check_palette() }
FNR == 1 { file = FILENAME }
match($0, /^set\([a-z_]+ "#[0-9a-f]+"\)/) { split($0, part, /[( )"]+/); colors[part[2]] = part[3] }
END { check_palette(); exit faults > 0 }
' "$@" >&2
