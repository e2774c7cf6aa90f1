#include "SkyPainter.h"

#include "OwnProgram.h"

#include <krender/platform/Linear.h>

#include <array>
#include <cstddef>

namespace
{

constexpr std::array kAttributes{"corner", "direction"};

// The direction changes evenly over the picture, though not its length.
constexpr const char* kVertexShader = R"(in vec2 corner;
in vec3 direction;
out vec3 towards;
void main()
{
	towards = direction;
	gl_Position = vec4(corner, 1.0, 1.0);
}
)";
constexpr const char* kFragmentShader = R"(in vec3 towards;
uniform samplerCube sky;
uniform bool codes;
void main()
{
	vec3 light = textureCube(sky, towards).rgb;
	if (codes)
		light = mix(12.92 * light, 1.055 * pow(light, vec3(1.0 / 2.4)) - 0.055, step(0.0031308, light));
	result = vec4(light, 1.0);
}
)";

struct Corner
{
    std::array<GLfloat, 2> place;
    std::array<GLfloat, 3> direction;
};

} // namespace

SkyPainter::SkyPainter()
    : fProgram(linkOwnProgram(kVertexShader, kFragmentShader, kAttributes)),
      fCodes(glGetUniformLocation(fProgram, "codes"))
{
    glGenBuffers(1, &fVertices);
}

SkyPainter::~SkyPainter()
{
    glDeleteBuffers(1, &fVertices);
    glDeleteProgram(fProgram);
}

void SkyPainter::draw(Texture& sky, const IHWCamera& camera, bool codes) const
{
    const krLinear::AffineMatrix toWorld = camera.viewMatrix().inverse();
    const auto corner = [&](int x, int y)
    {
        const krLinear::ProjMatrix& lens = camera.projMatrix();
        const krLinear::Vector seen{(x + lens(2, 0)) / lens(0, 0), (y + lens(2, 1)) / lens(1, 1), -1};
        const krLinear::Vector towards = seen * toWorld;
        return Corner{
            {static_cast<GLfloat>(x), static_cast<GLfloat>(y)},
            {static_cast<GLfloat>(towards.x), static_cast<GLfloat>(towards.y), static_cast<GLfloat>(towards.z)}};
    };
    const std::array corners{corner(-1, -1), corner(1, -1), corner(-1, 1), corner(1, 1)};

    glUseProgram(fProgram);
    glUniform1i(fCodes, codes ? 1 : 0);
    sky.bind();
    glBindBuffer(GL_ARRAY_BUFFER, fVertices);
    glBufferData(GL_ARRAY_BUFFER, sizeof corners, corners.data(), GL_STREAM_DRAW);
    for (GLuint i = 0; i < kAttributes.size(); ++i)
        glEnableVertexAttribArray(i);
    glVertexAttribPointer(0, 2, GL_FLOAT, GL_FALSE, sizeof(Corner), nullptr);
    // NOLINTNEXTLINE(performance-no-int-to-ptr): an offset into the buffer goes as a pointer
    const auto* const directions = reinterpret_cast<const void*>(offsetof(Corner, direction));
    glVertexAttribPointer(1, 3, GL_FLOAT, GL_FALSE, sizeof(Corner), directions);
    glDepthMask(GL_FALSE);
    glDrawArrays(GL_TRIANGLE_STRIP, 0, static_cast<GLsizei>(corners.size()));
    glDepthMask(GL_TRUE);
    for (GLuint i = 0; i < kAttributes.size(); ++i)
        glDisableVertexAttribArray(i);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    sky.unbind();
    glUseProgram(0);
}
