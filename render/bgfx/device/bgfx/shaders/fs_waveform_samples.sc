#include <bgfx_shader.sh>

uniform vec4 u_waveformColor;

void main()
{
    gl_FragColor = u_waveformColor;
}
