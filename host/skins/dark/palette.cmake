# Colours of the dark skin: neutral greys that leave the eye to the pictures, one blue for what acts. A text on its
# ground has a contrast of 4.5:1 or more, a disabled one of 3:1.
set(window "#1a1c20")        # behind everything
set(surface "#24272c")       # cards, tables, dialogs
set(surface_alt "#282b31")   # every second row, table headers
set(field "#1d2024")         # what is typed or ticked in
set(line "#363a42")          # hairlines and borders of cards
set(outline "#525964")       # borders of fields and buttons
set(hover "#30343c")
set(pressed "#3b404a")
set(selection "#2d3c62")

set(text "#e3e6eb")
set(text_muted "#a5adba")
set(text_disabled "#747c8a")
set(icon "#b7bec9")
set(tip "#454b57")           # ground of tool tips
set(on_tip "#f2f4f7")

set(accent "#4367dd")        # grounds; on them lies on_accent
set(accent_hover "#3a5cce")
set(accent_pressed "#304fb8")
set(accent_off "#2c3344")
set(accent_text "#8ba5ff")   # the accent as a text, line or picture
set(accent_strong "#c2d0ff") # the same on a selection or around an accent ground
set(on_accent "#ffffff")
set(on_accent_off "#7d88ab")

set(danger "#c9382a")        # a ground, as accent is
set(danger_pressed "#a92c20")
set(danger_soft "#43272a")
set(danger_text "#ff8a7d")

set(brand_top "#161d36")     # ground of the sign-in window's brand side
set(brand_bottom "#2c47ad")
set(on_brand "#ffffff")
set(on_brand_muted "#ccd6f8")
set(star "#ffc95c")

# What a progress bar gets besides the sheet of its band: a picture that covers the white groove of that. The clip keeps
# the white from shining through at the picture's rim.
set(progress "background-clip: padding; border-image: url(:/dark/icons/groove.svg) 1;")
