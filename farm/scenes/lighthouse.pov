// A lighthouse at dusk whose lamp turns once while the clock goes from 0 to 1.
#version 3.7;
global_settings { assumed_gamma 1.0 }

#declare Turn = 360 * clock;

camera { location <0, 3.2, -13> look_at <0.6, 3.4, 0> angle 52 right x * image_width / image_height }

sky_sphere {
    pigment {
        gradient y
        color_map {
            [0.00 rgb <0.98, 0.55, 0.30>]
            [0.18 rgb <0.70, 0.38, 0.45>]
            [0.55 rgb <0.16, 0.18, 0.38>]
            [1.00 rgb <0.04, 0.05, 0.15>]
        }
    }
}

light_source { <-30, 8, 40> rgb <1.0, 0.62, 0.40> }
light_source { <10, 30, -40> rgb <0.25, 0.28, 0.40> shadowless }

plane {
    y, 0
    pigment { rgb <0.02, 0.05, 0.10> }
    normal { ripples 0.18 frequency 4 phase clock * 4 scale <3, 1, 1> turbulence 0.4 }
    finish { reflection { 0.15, 0.85 fresnel } specular 0.5 roughness 0.01 }
    interior { ior 1.33 }
}

// The rock.
blob {
    threshold 0.5
    sphere { <0, -0.5, 1>, 2.8, 1 }
    sphere { <-1.8, -0.7, 0.6>, 2.2, 1 }
    sphere { <2.1, -0.8, 1.4>, 2.4, 1 }
    pigment { rgb <0.10, 0.09, 0.09> }
    normal { granite 0.7 scale 0.7 }
}

// The tower in bands of white and red.
union {
    cone { <0, 0.6, 0>, 0.95 <0, 5.2, 0>, 0.62
        pigment { gradient y color_map { [0.5 rgb <0.92, 0.90, 0.86>] [0.5 rgb <0.72, 0.10, 0.08>] } scale 1.54 } }
    cylinder { <0, 5.2, 0>, <0, 5.35, 0>, 0.85 pigment { rgb 0.12 } }
    cylinder { <0, 6.1, 0>, <0, 6.2, 0>, 0.62 pigment { rgb 0.12 } }
    cone { <0, 6.2, 0>, 0.66 <0, 6.8, 0>, 0.05 pigment { rgb <0.60, 0.09, 0.07> } }
    translate <0, 0, 1>
}

// The lamp and its two beams.
#declare Beam = cone {
    <0, 0, 0>, 0.10 <26, 0, 0>, 1.5
    open hollow
    pigment { gradient x color_map { [0 rgbt <1.0, 0.93, 0.62, 0.45>] [1 rgbt <1.0, 0.93, 0.62, 1.0>] } scale 26 }
    finish { emission 0.9 diffuse 0 }
    no_shadow
}
union {
    object { Beam }
    object { Beam rotate 180 * y }
    rotate Turn * y
    translate <0, 5.75, 1>
}
sphere { <0, 5.75, 1>, 0.30 pigment { rgb <1.0, 0.95, 0.75> } finish { emission 1.2 diffuse 0 } no_shadow }
light_source { <0, 5.75, 1> rgb <1.0, 0.90, 0.60> * 0.6 fade_distance 5 fade_power 2 }
