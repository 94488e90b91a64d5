// A walk through a colonnade: the camera goes forward by one bay, so that the run can be repeated without a seam.
#version 3.7;
global_settings { assumed_gamma 1.0 }

#declare Bay = 4;
#declare Step = Bay * clock;

camera { location <0.5, 1.8, Step> look_at <0, 2.1, Step + 10> angle 62 right x * image_width / image_height }

sky_sphere { pigment { gradient y color_map { [0 rgb <0.80, 0.86, 0.95>] [0.6 rgb <0.25, 0.45, 0.80>] } } }
// The sun keeps its place above the walker.
light_source { <60, 55, -20 + Step> rgb <1.05, 0.98, 0.85> parallel point_at <0, 0, Step> }
light_source { <-20, 10, -10 + Step> rgb <0.20, 0.23, 0.30> shadowless }

#declare Stone = texture {
    pigment { granite color_map { [0 rgb <0.88, 0.82, 0.70>] [1 rgb <0.70, 0.62, 0.50>] } scale 1.5 }
}

#declare Column = union {
    box { <-0.55, 0, -0.55>, <0.55, 0.25, 0.55> }
    torus { 0.42, 0.10 translate 0.34 * y }
    cone { <0, 0.34, 0>, 0.40 <0, 4.0, 0>, 0.33 }
    torus { 0.36, 0.09 translate 4.05 * y }
    box { <-0.52, 4.1, -0.52>, <0.52, 4.4, 0.52> }
}

#for (Index, -1, 14)
    object { Column texture { Stone } translate <-2.4, 0, Index * Bay> }
    object { Column texture { Stone } translate <2.4, 0, Index * Bay> }
    box { <-3.0, 4.8, -0.3>, <3.0, 5.1, 0.3> texture { Stone } translate Index * Bay * z }
#end
box { <-2.95, 4.4, -8>, <-1.85, 4.9, 60> texture { Stone } }
box { <1.85, 4.4, -8>, <2.95, 4.9, 60> texture { Stone } }

plane {
    y, 0
    pigment { checker rgb <0.62, 0.56, 0.48> rgb <0.42, 0.36, 0.30> }
    finish { reflection 0.06 }
}
fog { fog_type 1 distance 55 rgb <0.80, 0.86, 0.95> }
