// A field of glossy beads that a round wave passes through; the wave repeats with the clock.
#version 3.7;
global_settings { assumed_gamma 1.0 }

camera { location <0, 7.5, -12> look_at <0, -0.4, 0.6> angle 50 right x * image_width / image_height }

background { rgb <0.03, 0.04, 0.07> }
light_source { <12, 18, -10> rgb <1.0, 0.95, 0.88> }
light_source { <-15, 8, -4> rgb <0.20, 0.30, 0.55> shadowless }

#declare Half = 11;
#declare Spacing = 0.62;

#for (Row, -Half, Half)
    #for (Column, -Half, Half)
        #local X = Column * Spacing;
        #local Z = Row * Spacing;
        #local Distance = sqrt(X * X + Z * Z);
        #local Wave = cos(Distance * 1.9 - 2 * pi * clock) / (1 + 0.22 * Distance);
        #local Blend = (Wave + 1) / 2;
        sphere {
            <X, Wave * 0.85, Z>, 0.27
            pigment { rgb <0.06, 0.28, 0.55> * (1 - Blend) + <0.98, 0.52, 0.22> * Blend }
            finish { specular 0.7 roughness 0.015 reflection { 0.03, 0.30 fresnel } }
            interior { ior 1.5 }
        }
    #end
#end

plane { y, -1.6 pigment { rgb <0.05, 0.06, 0.09> } finish { reflection 0.12 } }
