# Colours of the dark skin: neutral greys, which do not compete with the rendered pictures, and one blue for actions. Text
# has a contrast of at least 4.5:1 to its background; icons, borders of controls and disabled text have 3:1. A test checks
# this.
set(window "#1a1c20")        # behind everything
set(surface "#24272c")       # cards, tables, dialogs
set(surface_alt "#282b31")   # every second row, table headers
set(field "#1d2024")         # input fields and check boxes
set(line "#363a42")          # hairlines and borders of cards
set(outline "#525964")      # edges of windows, of menus and of other lists
set(control_line "#757d8b") # borders of fields and buttons, which users have to find
set(hover "#30343c")
set(pressed "#3b404a")
set(selection "#2d3c62")

set(text "#e3e6eb")
set(text_muted "#a5adba")
set(text_disabled "#747c8a")
set(icon "#b7bec9")
set(tip "#454b57")           # background of tool tips
set(on_tip "#f2f4f7")

set(accent "#4367dd")        # backgrounds for text in on_accent
set(accent_hover "#3a5cce")
set(accent_pressed "#304fb8")
set(accent_off "#2c3344")
set(accent_text "#8ba5ff")   # the accent for text, lines and icons
set(accent_strong "#c2d0ff") # the same on a selection
set(focus_on_accent "#ffffff") # border, where the accent is the background
set(on_accent "#ffffff")
set(on_accent_off "#7d88ab")

set(danger "#c9382a")        # a background, like accent
set(danger_pressed "#a92c20")
set(danger_soft "#43272a")
set(danger_text "#ff8a7d")

set(brand_top "#161d36")     # background of the sign-in window's brand side
set(brand_bottom "#2c47ad")
set(on_brand "#ffffff")
set(on_brand_muted "#ccd6f8")
set(star "#ffc95c")

# Appended to the style sheet of a progress bar, whose groove is white: a picture that covers it. The clip keeps white
# pixels from showing at the edges of the picture.
set(progress "background-clip: padding; border-image: url(:/dark/icons/groove.svg) 1;")
