# Colours of the light skin. Text has a contrast of at least 4.5:1 to its background; icons, borders of
# controls and disabled text have 3:1. A test checks this.
set(window "#f3f5fa")        # behind everything
set(surface "#ffffff")       # cards, tables, dialogs
set(surface_alt "#f8f9fc")   # every second row, table headers
set(field "#ffffff")         # input fields and check boxes
set(line "#dde2ec")          # hairlines and borders of cards
set(outline "#b9c1d1")      # edges of windows, of menus and of other lists
set(control_line "#808a9e") # borders of fields and buttons, which users have to find
set(hover "#edf1fb")
set(pressed "#dbe3f7")
set(selection "#e3eafc")

set(text "#1c2438")
set(text_muted "#566074")
set(text_disabled "#858ea2")
set(icon "#465067")
set(tip "#1c2438")           # background of tool tips
set(on_tip "#ffffff")

set(accent "#3454d1")        # backgrounds for text in on_accent
set(accent_hover "#2b47b8")
set(accent_pressed "#233a99")
set(accent_off "#dde4f9")
set(accent_text "#3454d1")   # the accent for text, lines and icons
set(accent_strong "#233a99") # the same on a selection
set(focus_on_accent "#05080f") # border, where the accent is the background
set(on_accent "#ffffff")
set(on_accent_off "#7581ad")

set(danger "#c42b1c")        # a background, like accent
set(danger_pressed "#a02316")
set(danger_soft "#fcecea")
set(danger_text "#c42b1c")

set(brand_top "#22305f")     # background of the sign-in window's brand side
set(brand_bottom "#3454d1")
set(on_brand "#ffffff")
set(on_brand_muted "#d5ddfa")
set(star "#ffc95c")

# Appended to the style sheet of a progress bar, which has a white groove and a border.
set(progress "")
