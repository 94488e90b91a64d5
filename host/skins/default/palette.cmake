# Colours of the light skin. Text on its ground has a contrast of 4.5:1 or more (disabled texts excepted).
set(window "#f3f5fa")        # behind everything
set(surface "#ffffff")       # cards, fields, tables
set(surface_alt "#f8f9fc")   # every second row, table headers
set(line "#dde2ec")          # hairlines and borders of cards
set(outline "#b9c1d1")       # borders of fields and buttons
set(hover "#edf1fb")
set(pressed "#dbe3f7")
set(selection "#e3eafc")

set(text "#1c2438")
set(text_muted "#566074")
set(text_disabled "#9aa3b5")
set(icon "#465067")

set(accent "#3454d1")
set(accent_hover "#2b47b8")
set(accent_pressed "#233a99")
set(accent_off "#b7c3ee")
set(on_accent "#ffffff")

set(danger "#c42b1c")
set(danger_pressed "#a02316")
set(danger_soft "#fcecea")

set(brand_top "#22305f")     # ground of the sign-in window's brand side
set(brand_bottom "#3454d1")
set(on_brand "#ffffff")
set(on_brand_muted "#d5ddfa")
set(star "#ffc95c")
