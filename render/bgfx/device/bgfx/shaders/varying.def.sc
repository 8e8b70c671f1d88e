vec4 v_color0    : COLOR0 = vec4(1.0, 1.0, 1.0, 1.0);

vec3 a_position  : POSITION;
vec4 a_color0    : COLOR0;
