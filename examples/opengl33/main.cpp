// Draws materials with the core profile of OpenGL 3.3, without a window: one picture a material.
// usage: opengl33-host LIGHTS.krs FOLDER MATERIAL.krs...
#include "../common/Sample.h"

#include <krender/shadergen/Target.h>

#include <epoxy/egl.h>
#include <epoxy/gl.h>

#include <algorithm>
#include <array>
#include <exception>
#include <iostream>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

void require(bool condition, const std::string& message)
{
    if (!condition)
        throw std::runtime_error(message);
}

/// Makes a context current that needs neither a display nor a window.
void makeContext()
{
    EGLDisplay display = eglGetPlatformDisplayEXT(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
    require(eglInitialize(display, nullptr, nullptr) == EGL_TRUE && eglBindAPI(EGL_OPENGL_API) == EGL_TRUE,
            "there is no EGL without a display");
    const std::array<EGLint, 7> wanted{
        EGL_CONTEXT_MAJOR_VERSION,           3,       EGL_CONTEXT_MINOR_VERSION, 3, EGL_CONTEXT_OPENGL_PROFILE_MASK,
        EGL_CONTEXT_OPENGL_CORE_PROFILE_BIT, EGL_NONE};
    EGLContext context = eglCreateContext(display, EGL_NO_CONFIG_KHR, EGL_NO_CONTEXT, wanted.data());
    require(context != EGL_NO_CONTEXT && eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, context) == EGL_TRUE,
            "there is no core profile of OpenGL 3.3");
}

/// The frame that is drawn into, and the mesh. They live as long as the context.
class Scene
{
public:
    Scene()
    {
        std::array<GLuint, 2> buffers{};
        glGenRenderbuffers(2, buffers.data());
        GLuint frame = 0;
        glGenFramebuffers(1, &frame);
        glBindFramebuffer(GL_FRAMEBUFFER, frame);
        const auto attach = [](GLuint buffer, GLenum format, GLenum place)
        {
            glBindRenderbuffer(GL_RENDERBUFFER, buffer);
            glRenderbufferStorage(GL_RENDERBUFFER, format, sample::kSize, sample::kSize);
            glFramebufferRenderbuffer(GL_FRAMEBUFFER, place, GL_RENDERBUFFER, buffer);
        };
        attach(buffers[0], GL_RGBA8, GL_COLOR_ATTACHMENT0);
        attach(buffers[1], GL_DEPTH_COMPONENT32F, GL_DEPTH_ATTACHMENT);
        glViewport(0, 0, sample::kSize, sample::kSize);
        glEnable(GL_DEPTH_TEST);
        glEnable(GL_TEXTURE_CUBE_MAP_SEAMLESS);
        glClearColor(0.2f, 0.2f, 0.2f, 1);

        const sample::Mesh mesh = sample::makeBall();
        fCount = static_cast<GLsizei>(mesh.triangles.size());
        GLuint vertexArray = 0;
        glGenVertexArrays(1, &vertexArray);
        glBindVertexArray(vertexArray);
        fill(GL_ARRAY_BUFFER, std::as_bytes(std::span(mesh.vertices)));
        fill(GL_ELEMENT_ARRAY_BUFFER, std::as_bytes(std::span(mesh.triangles)));
    }

    /// A new buffer with the bytes, which stays bound.
    static GLuint fill(GLenum target, std::span<const std::byte> bytes)
    {
        GLuint buffer = 0;
        glGenBuffers(1, &buffer);
        glBindBuffer(target, buffer);
        glBufferData(target, static_cast<GLsizeiptr>(bytes.size()), bytes.data(), GL_STATIC_DRAW);
        return buffer;
    }

    [[nodiscard]] std::vector<std::uint8_t> draw() const
    {
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        glDrawElements(GL_TRIANGLES, fCount, GL_UNSIGNED_INT, nullptr);
        constexpr std::size_t kRow = std::size_t{4} * sample::kSize;
        std::vector<std::uint8_t> pixels(kRow * sample::kSize);
        glReadPixels(0, 0, sample::kSize, sample::kSize, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
        // OpenGL gives the lowest row first.
        for (std::size_t top = 0, bottom = pixels.size() - kRow; top < bottom; top += kRow, bottom -= kRow)
            std::swap_ranges(&pixels[top], &pixels[top] + kRow, &pixels[bottom]);
        return pixels;
    }

private:
    GLsizei fCount = 0;
};

/// The picture that the examples show for every sampler, bound to a unit; for a shadow map, depths of one half.
GLuint makeTexture(DataType type, GLuint unit)
{
    GLenum target = GL_TEXTURE_2D;
    if (type == kSampler1D || type == kSampler1DShadow)
        target = GL_TEXTURE_1D;
    else if (type == kSampler3D)
        target = GL_TEXTURE_3D;
    else if (type == kSamplerCube)
        target = GL_TEXTURE_CUBE_MAP;
    const bool isShadow = type == kSampler1DShadow || type == kSampler2DShadow;
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glActiveTexture(GL_TEXTURE0 + unit);
    glBindTexture(target, texture);
    const GLint filter = isShadow ? GL_NEAREST : GL_LINEAR;
    glTexParameteri(target, GL_TEXTURE_MIN_FILTER, filter);
    glTexParameteri(target, GL_TEXTURE_MAG_FILTER, filter);
    if (isShadow)
        glTexParameteri(target, GL_TEXTURE_COMPARE_MODE, GL_COMPARE_REF_TO_TEXTURE);

    constexpr GLsizei kSide = sample::kPictureSide;
    const std::vector<std::uint8_t> picture = sample::makePicture();
    std::vector<std::uint8_t> volume;
    for (GLsizei i = 0; i < kSide; ++i)
        volume.insert(volume.end(), picture.begin(), picture.end());
    const std::vector<GLfloat> depths(std::size_t{kSide} * kSide, 0.5f);
    const GLenum inner = isShadow ? GL_DEPTH_COMPONENT32F : GL_RGBA8;
    const GLenum format = isShadow ? GL_DEPTH_COMPONENT : GL_RGBA;
    const GLenum number = isShadow ? GL_FLOAT : GL_UNSIGNED_BYTE;
    const void* pixels = isShadow ? static_cast<const void*>(depths.data()) : volume.data();
    const auto fill = [&](GLenum face)
    { glTexImage2D(face, 0, static_cast<GLint>(inner), kSide, kSide, 0, format, number, pixels); };
    if (target == GL_TEXTURE_1D)
        glTexImage1D(target, 0, static_cast<GLint>(inner), kSide, 0, format, number, pixels);
    else if (target == GL_TEXTURE_3D)
        glTexImage3D(target, 0, static_cast<GLint>(inner), kSide, kSide, kSide, 0, format, number, pixels);
    else if (target == GL_TEXTURE_2D)
        fill(target);
    for (GLenum face = 0; target == GL_TEXTURE_CUBE_MAP && face < 6; ++face)
        fill(GL_TEXTURE_CUBE_MAP_POSITIVE_X + face);
    return texture;
}

/// A material as OpenGL draws it. All that it needs to know stands in the program's interface.
class Material
{
public:
    Material(const krTargets::Translation& texts, const krFrontend::ProgramInterface& interface)
        : fProgram(glCreateProgram())
    {
        attach(GL_VERTEX_SHADER, texts.vertex);
        attach(GL_FRAGMENT_SHADER, texts.fragment);
        glLinkProgram(fProgram);
        GLint ok = GL_FALSE;
        glGetProgramiv(fProgram, GL_LINK_STATUS, &ok);
        require(ok == GL_TRUE, "the driver cannot link a program");
        glUseProgram(fProgram);

        for (const auto& input : interface.block.frameInputs)
            setInput(static_cast<GLuint>(input.location), input.programName, input.type);
        for (const auto& input : interface.vertexInputs)
            setInput(static_cast<GLuint>(input.location), input.programName, input.type);
        const std::vector<std::byte> block = sample::uniformBytes(interface, sample::ClipDepth::MinusOneToOne);
        fBlock = Scene::fill(GL_UNIFORM_BUFFER, block);
        if (const GLuint index = glGetUniformBlockIndex(fProgram, interface.block.name.c_str());
            index != GL_INVALID_INDEX)
            glUniformBlockBinding(fProgram, index, 0);
        glBindBufferBase(GL_UNIFORM_BUFFER, 0, fBlock);
        setSamplers(interface);
    }
    Material(const Material&) = delete;
    Material& operator=(const Material&) = delete;
    ~Material()
    {
        glDeleteTextures(static_cast<GLsizei>(fTextures.size()), fTextures.data());
        glDeleteBuffers(1, &fBlock);
        glDeleteProgram(fProgram);
    }

private:
    void attach(GLenum stage, const std::string& text) const
    {
        const GLuint shader = glCreateShader(stage);
        const char* const characters = text.c_str();
        glShaderSource(shader, 1, &characters, nullptr);
        glCompileShader(shader);
        GLint ok = GL_FALSE;
        glGetShaderiv(shader, GL_COMPILE_STATUS, &ok);
        require(ok == GL_TRUE, "the driver rejects a program");
        glAttachShader(fProgram, shader);
        glDeleteShader(shader);
    }

    static void setInput(GLuint location, const std::string& name, DataType type)
    {
        const sample::VertexField field = sample::fieldOf(name, type);
        glEnableVertexAttribArray(location);
        // NOLINTNEXTLINE(performance-no-int-to-ptr): an offset into the buffer goes as a pointer
        const auto* const offset = reinterpret_cast<const void*>(field.offset);
        glVertexAttribPointer(location, static_cast<GLint>(field.components), GL_FLOAT, GL_FALSE,
                              sizeof(sample::Vertex), offset);
    }

    /// The n-th sampler of the interface reads unit n.
    void setSamplers(const krFrontend::ProgramInterface& interface)
    {
        for (const krFrontend::UniformInterface& uniform : interface.uniforms)
        {
            if (uniform.binding < 0)
                continue;
            const auto unit = static_cast<GLuint>(fTextures.size());
            glUniform1i(glGetUniformLocation(fProgram, uniform.programName.c_str()), static_cast<GLint>(unit));
            fTextures.push_back(makeTexture(uniform.type, unit));
        }
    }

    GLuint fProgram;
    GLuint fBlock = 0;
    std::vector<GLuint> fTextures;
};

std::vector<std::uint8_t> draw(const Scene& scene, const krTargets::SpirvProgram& program,
                               const krFrontend::ProgramInterface& interface)
{
    std::vector<krFrontend::ProgramDiagnostic> faults;
    const std::optional<krTargets::Translation> texts = program.translate(*findTarget("glsl330"), faults);
    require(texts.has_value(), "a program cannot be translated");
    const Material material(*texts, interface);
    return scene.draw();
}

} // namespace

int main(int argc, char** argv)
try
{
    makeContext();
    const Scene scene;
    return sample::drawAll(argc, argv, "glsl330",
                           [&](const krTargets::SpirvProgram& program, const krFrontend::ProgramInterface& interface)
                           { return draw(scene, program, interface); });
}
catch (const std::exception& error)
{
    std::cerr << "opengl33-host: " << error.what() << '\n';
    return 2;
}
