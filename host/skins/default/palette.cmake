# Colours of the light skin. A text on its ground has a contrast of 4.5:1 or more, a disabled one of 3:1.
set(window "#f3f5fa")        # behind everything
set(surface "#ffffff")       # cards, tables, dialogs
set(surface_alt "#f8f9fc")   # every second row, table headers
set(field "#ffffff")         # what is typed or ticked in
set(line "#dde2ec")          # hairlines and borders of cards
set(outline "#b9c1d1")       # borders of fields and buttons
set(hover "#edf1fb")
set(pressed "#dbe3f7")
set(selection "#e3eafc")

set(text "#1c2438")
set(text_muted "#566074")
set(text_disabled "#858ea2")
set(icon "#465067")
set(tip "#1c2438")           # ground of tool tips
set(on_tip "#ffffff")

set(accent "#3454d1")        # grounds; on them lies on_accent
set(accent_hover "#2b47b8")
set(accent_pressed "#233a99")
set(accent_off "#dde4f9")
set(accent_text "#3454d1")   # the accent as a text, line or picture
set(accent_strong "#233a99") # the same on a selection or around an accent ground
set(on_accent "#ffffff")
set(on_accent_off "#7581ad")

set(danger "#c42b1c")        # a ground, as accent is
set(danger_pressed "#a02316")
set(danger_soft "#fcecea")
set(danger_text "#c42b1c")

set(brand_top "#22305f")     # ground of the sign-in window's brand side
set(brand_bottom "#3454d1")
set(on_brand "#ffffff")
set(on_brand_muted "#d5ddfa")
set(star "#ffc95c")

# What a progress bar gets besides the sheet of its band, which has a white groove and a border.
set(progress "")
