// Planets of brass and glass on rings around a lamp; each makes whole turns in one run of the clock.
#version 3.7;
global_settings { assumed_gamma 1.0 }

camera { location <0, 5.5, -10> look_at <0, -0.2, 0> angle 50 right x * image_width / image_height }

background { rgb <0.015, 0.018, 0.035> }
light_source { <0, 0, 0> rgb <1.0, 0.85, 0.60> * 1.3 }
light_source { <-12, 15, -12> rgb <0.30, 0.38, 0.55> }

#declare Brass = texture {
    pigment { rgb <0.72, 0.50, 0.20> }
    finish { metallic specular 0.8 roughness 0.03 reflection { 0.25 metallic } }
}

sphere { 0, 0.75 pigment { rgb <1.0, 0.80, 0.45> } finish { emission 1.1 diffuse 0 } no_shadow }

#macro Planet(Radius, Size, Turns, Colour, Tilt)
    union {
        torus { Radius, 0.025 texture { Brass } }
        union {
            sphere { 0, Size
                pigment { agate color_map { [0 rgb Colour] [1 rgb Colour * 0.35] } scale Size }
                finish { specular 0.4 roughness 0.02 } }
            torus { Size * 1.25, 0.02 texture { Brass } rotate 65 * x }
            translate Radius * x
            rotate -360 * clock * Turns * y
        }
        rotate Tilt * z
    }
#end

Planet(1.6, 0.16, 4, <0.80, 0.55, 0.40>, 6)
Planet(2.4, 0.26, 3, <0.85, 0.75, 0.45>, -5)
Planet(3.3, 0.30, 2, <0.25, 0.50, 0.85>, 4)
Planet(4.4, 0.48, 1, <0.80, 0.45, 0.30>, -3)

// The foot.
cone { <0, -3, 0>, 1.2 <0, -0.7, 0>, 0.12 texture { Brass } }
plane { y, -3 pigment { checker rgb 0.05 rgb 0.09 scale 1.4 } finish { reflection 0.08 } }
