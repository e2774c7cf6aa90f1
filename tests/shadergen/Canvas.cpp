#include "Canvas.h"

#include "Scenes.h"

#include <epoxy/egl.h>
#include <epoxy/gl.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <numeric>
#include <stdexcept>
#include <string>
#include <string_view>

namespace
{

constexpr int kSlices = 48;
constexpr int kStacks = 24;

// Matrices, row-major and not symmetric, so that a transposed one shows.
constexpr std::array<float, 16> kProjection{0.75f, 0, 0, 0.125f, 0, 0.75f, 0, 0, 0, 0, -0.25f, 0, 0, 0, 0, 1};
constexpr std::array<float, 16> kObjectToWorld{0.8f, 0.6f, 0, 0.1f, -0.6f, 0.8f, 0, 0.2f, 0, 0, 1.25f, 0, 0, 0, 0, 1};
constexpr std::array<float, 16> kInverseTransposed{0.8f, 0.6f, 0, 0, -0.6f, 0.8f, 0, 0, 0, 0, 0.8f, 0, 0, 0, 0, 1};
constexpr std::array<float, 16> kPattern{0.9f, 0.3f, 0, 0.2f, 0, 1, 0.4f, 0, -0.2f, 0, 1, 0.1f, 0, 0, 0, 1};

void require(bool condition, const std::string& message)
{
    if (!condition)
        throw std::runtime_error(message);
}

/// The name of an input or uniform in the programs as they were written.
std::string plainName(std::string name)
{
    if (name.starts_with("IN_"))
        name.erase(0, 3);
    name.erase(0, name.find('.') + 1);
    constexpr std::string_view kHiddenPrefix =
        "krslc_"; // which the Cg check puts ahead of a word that its reader reserves
    if (const std::size_t hidden = name.find(kHiddenPrefix); hidden != std::string::npos)
        name.erase(0, hidden + kHiddenPrefix.size());
    return name.substr(name.starts_with('_')); // which a decompiler puts ahead of a word that GLSL reserves
}

/// Four numbers that depend on a name alone, from 0.3 to 0.9.
std::array<float, 4> numbersFor(const std::string& name)
{
    std::array<float, 4> numbers{};
    unsigned state = std::accumulate(name.begin(), name.end(), 7u,
                                     [](unsigned h, char c) { return h * 31 + static_cast<unsigned char>(c); });
    for (float& number : numbers)
    {
        state = state * 1664525u + 1013904223u;
        number = 0.3f + 0.6f * static_cast<float>(state >> 16) / 65536.0f;
    }
    return numbers;
}

std::array<float, 4> vectorFor(const std::string& name)
{
    if (name == "gEyePos")
        return {0.4f, 0.6f, 3, 1};
    if (name.ends_with("position"))
        return {1.2f, 1.5f, 2.2f, 1};
    if (name.ends_with("axis") || name.ends_with("direction"))
        return {1.2f, 1.3f, 2.0f, 0};
    return numbersFor(name);
}

const std::array<float, 16>& matrixFor(const std::string& name)
{
    if (name == "objToWorldMatrix")
        return kObjectToWorld;
    if (name == "objToWorldMatrix_invtrans")
        return kInverseTransposed;
    return name.ends_with("mvp") || name.ends_with("ModelViewProjectionMatrix") ? kProjection : kPattern;
}

/// An 8 x 8 picture of slopes that serve as colours and as normals alike.
std::vector<std::uint8_t> pixelsFor(const std::string& name)
{
    std::vector<std::uint8_t> pixels;
    for (unsigned i = 0; i < 64; ++i)
    {
        const std::array<float, 4> numbers = numbersFor(name + std::to_string(i));
        for (const float number : {numbers[0], numbers[1], 0.7f + 0.3f * numbers[2], numbers[3]})
            pixels.push_back(static_cast<std::uint8_t>(255.0f * number));
    }
    return pixels;
}

void setSampler(GLint location, GLenum type, const std::string& name, GLint unit)
{
    const GLenum target = type == GL_SAMPLER_CUBE ? GL_TEXTURE_CUBE_MAP : GL_TEXTURE_2D;
    require(type == GL_SAMPLER_CUBE || type == GL_SAMPLER_2D, name + " is of no type that is drawn here");
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glActiveTexture(static_cast<GLenum>(GL_TEXTURE0 + unit));
    glBindTexture(target, texture);
    glTexParameteri(target, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    const bool isCube = target == GL_TEXTURE_CUBE_MAP;
    for (unsigned face = 0; face < (isCube ? 6u : 1u); ++face)
        glTexImage2D(isCube ? GL_TEXTURE_CUBE_MAP_POSITIVE_X + face : target, 0, GL_RGBA8, 8, 8, 0, GL_RGBA,
                     GL_UNSIGNED_BYTE, pixelsFor(name + std::to_string(face)).data());
    glUniform1i(location, unit);
}

/// Calls the visitor with the name and type of each uniform or attribute of a program that is the program's own.
void forEachActive(GLuint program, GLenum count, decltype(glGetActiveUniform) query,
                   const std::function<void(const std::string&, GLenum)>& visit)
{
    GLint number = 0;
    glGetProgramiv(program, count, &number);
    for (GLuint i = 0; i < static_cast<GLuint>(number); ++i)
    {
        char name[256];
        GLint size = 0;
        GLenum type = 0;
        query(program, i, sizeof name, nullptr, &size, &type, name);
        if (!std::string_view(name).starts_with("gl_"))
            visit(name, type);
    }
}

/// A square matrix's upper left part of that size, row by row.
std::array<float, 16> part(const std::array<float, 16>& matrix, unsigned size)
{
    std::array<float, 16> found{};
    for (unsigned i = 0; i < size * size; ++i)
        found[i] = matrix[i / size * 4 + i % size];
    return found;
}

using Names = std::map<std::string, std::string>;

std::string authorsName(const std::string& name, const Names& names)
{
    for (const std::string& known : {name, plainName(name)})
        if (const auto given = names.find(known); given != names.end())
            return given->second;
    return plainName(name);
}

void setUniforms(GLuint program, const Names& names)
{
    GLint unit = 0;
    const auto set = [&](const std::string& name, GLenum type)
    {
        const GLint location = glGetUniformLocation(program, name.c_str());
        const std::string plain = authorsName(name, names);
        const std::array<float, 4> vector = vectorFor(plain);
        switch (type)
        {
        case GL_INT:
            return glUniform1i(location, vector[0] < 0.6f ? 1 : 2);
        case GL_FLOAT:
            return glUniform1f(location, vector[0]);
        case GL_FLOAT_VEC2:
            return glUniform2fv(location, 1, vector.data());
        case GL_FLOAT_VEC3:
            return glUniform3fv(location, 1, vector.data());
        case GL_FLOAT_VEC4:
            return glUniform4fv(location, 1, vector.data());
        case GL_FLOAT_MAT2:
            return glUniformMatrix2fv(location, 1, GL_TRUE, part(matrixFor(plain), 2).data());
        case GL_FLOAT_MAT3:
            return glUniformMatrix3fv(location, 1, GL_TRUE, part(matrixFor(plain), 3).data());
        case GL_FLOAT_MAT4:
            return glUniformMatrix4fv(location, 1, GL_TRUE, matrixFor(plain).data());
        default:
            return setSampler(location, type, plain, unit++);
        }
    };
    forEachActive(program, GL_ACTIVE_UNIFORMS, glGetActiveUniform, set);
}

/// A per-vertex input, four numbers a vertex, row by row from the sphere's top.
std::vector<float> stream(const std::string& name)
{
    std::vector<float> values;
    for (int i = 0; i < (kStacks + 1) * (kSlices + 1); ++i)
    {
        const int slice = i % (kSlices + 1);
        const int stack = i / (kSlices + 1);
        const float around = 6.2831853f * static_cast<float>(slice) / kSlices;
        const float down = 3.1415927f * static_cast<float>(stack) / kStacks;
        std::array<float, 4> value = numbersFor(name);
        if (name == "gObjPos" || name == "gObjNormal")
            value = {std::sin(down) * std::cos(around), std::cos(down), std::sin(down) * std::sin(around), 1};
        else if (name == "gObjTangent")
            value = {-std::sin(around), 0, std::cos(around), 0};
        else
            for (unsigned c = 0; c < 4; ++c)
                value[c] *= 0.6f + 0.4f * std::sin(around + 2.0f * down * static_cast<float>(c));
        values.insert(values.end(), value.begin(), value.end());
    }
    return values;
}

std::vector<GLuint> triangles()
{
    std::vector<GLuint> indices;
    constexpr GLuint kRow = kSlices + 1;
    for (GLuint stack = 0; stack < kStacks; ++stack)
        for (GLuint slice = 0; slice < kSlices; ++slice)
        {
            const GLuint a = stack * kRow + slice;
            indices.insert(indices.end(), {a, a + 1, a + kRow, a + 1, a + kRow + 1, a + kRow});
        }
    return indices;
}

/// Passes the driver's log on when a shader or program has failed.
void requireStatus(GLuint object, GLenum status, decltype(glGetShaderiv) query, decltype(glGetShaderInfoLog) readLog)
{
    GLint ok = 0;
    char log[4096] = "";
    query(object, status, &ok);
    readLog(object, sizeof log, nullptr, log);
    require(ok, log);
}

GLuint link(const scenes::Programs& programs)
{
    const GLuint program = glCreateProgram();
    for (const auto& [stage, text] : {std::pair(GL_VERTEX_SHADER, programs.vertex.c_str()),
                                      std::pair(GL_FRAGMENT_SHADER, programs.fragment.c_str())})
    {
        const GLuint shader = glCreateShader(static_cast<GLenum>(stage));
        glShaderSource(shader, 1, &text, nullptr);
        glCompileShader(shader);
        requireStatus(shader, GL_COMPILE_STATUS, glGetShaderiv, glGetShaderInfoLog);
        glAttachShader(program, shader);
        glDeleteShader(shader);
    }
    glLinkProgram(program);
    requireStatus(program, GL_LINK_STATUS, glGetProgramiv, glGetProgramInfoLog);
    return program;
}

using Bytes = std::vector<std::uint8_t>;

/// Puts a value into a uniform block, a matrix column by column.
void putValue(Bytes& block, DataType type, const std::string& name, int offset, int matrixStride)
{
    const auto put = [&block](int at, const auto& number)
    { std::memcpy(&block.at(static_cast<std::size_t>(at)), &number, sizeof number); };
    const std::array<float, 4> vector = vectorFor(name);
    const int rows = type == kMatrix2 ? 2 : static_cast<int>(maxDim(type));
    if (type == kInt)
        return put(offset, vector[0] < 0.6f ? 1 : 2);
    for (int i = 0; i < rows; ++i)
        for (int column = 0; column < (matrixStride > 0 ? rows : 1); ++column)
            put(offset + column * matrixStride + 4 * i,
                matrixStride > 0 ? matrixFor(name)[static_cast<std::size_t>(4 * i + column)]
                                 : vector[static_cast<std::size_t>(i)]);
}

/// A buffer that holds the numbers, bound.
template <class Number>
GLuint bufferOf(GLenum target, const std::vector<Number>& numbers)
{
    GLuint buffer = 0;
    glGenBuffers(1, &buffer);
    glBindBuffer(target, buffer);
    glBufferData(target, static_cast<GLsizeiptr>(numbers.size() * sizeof numbers[0]), numbers.data(), GL_STATIC_DRAW);
    return buffer;
}

} // namespace

Canvas::Canvas(Api api) : fApi(api)
{
    setenv("EGL_PLATFORM", "surfaceless", 1);
    setenv("LIBGL_ALWAYS_SOFTWARE", "1", 1);
    const bool isEmbedded = api == Api::Embedded;
    fDisplay = eglGetPlatformDisplayEXT(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
    require(eglInitialize(fDisplay, nullptr, nullptr) && eglBindAPI(isEmbedded ? EGL_OPENGL_ES_API : EGL_OPENGL_API),
            "no EGL display");
    const EGLint wanted[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE,
                             isEmbedded ? EGL_OPENGL_ES3_BIT : EGL_OPENGL_BIT, EGL_NONE};
    const EGLint core[] = {EGL_CONTEXT_MAJOR_VERSION, 3, EGL_CONTEXT_MINOR_VERSION, 3, EGL_NONE};
    const EGLint embedded[] = {EGL_CONTEXT_MAJOR_VERSION, 3, EGL_NONE};
    EGLConfig config = nullptr;
    EGLint configs = 0;
    require(eglChooseConfig(fDisplay, wanted, &config, 1, &configs) && configs == 1, "no EGL configuration");
    fContext = eglCreateContext(fDisplay, config, EGL_NO_CONTEXT,
                                isEmbedded ? embedded : api == Api::Core ? core : nullptr);
    makeCurrent();

    GLuint framebuffer = 0;
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    for (const auto& [attachment, format] :
         {std::pair(GL_COLOR_ATTACHMENT0, GL_RGBA8), std::pair(GL_DEPTH_ATTACHMENT, GL_DEPTH_COMPONENT24)})
    {
        GLuint buffer = 0;
        glGenRenderbuffers(1, &buffer);
        glBindRenderbuffer(GL_RENDERBUFFER, buffer);
        glRenderbufferStorage(GL_RENDERBUFFER, static_cast<GLenum>(format), kSize, kSize);
        glFramebufferRenderbuffer(GL_FRAMEBUFFER, static_cast<GLenum>(attachment), GL_RENDERBUFFER, buffer);
    }
    require(glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE, "no framebuffer");
    glViewport(0, 0, kSize, kSize);
    glEnable(GL_DEPTH_TEST);
    if (!isEmbedded)
        glEnable(GL_TEXTURE_CUBE_MAP_SEAMLESS); // as ESSL 3.00 always has it
    if (api != Api::Compatibility)
        return;
    glMatrixMode(GL_PROJECTION);
    glLoadTransposeMatrixf(kProjection.data());
}

void Canvas::makeCurrent()
{
    require(eglBindAPI(fApi == Api::Embedded ? EGL_OPENGL_ES_API : EGL_OPENGL_API) &&
                eglMakeCurrent(fDisplay, EGL_NO_SURFACE, EGL_NO_SURFACE, fContext),
            "no OpenGL context");
}

Canvas::~Canvas()
{
    eglMakeCurrent(fDisplay, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    eglDestroyContext(fDisplay, fContext);
    // The display stays for the next canvas: unloaded, the driver would leave its memory behind as leaks.
}

std::vector<std::uint8_t> Canvas::draw(const scenes::Programs& programs, const Names& names)
{
    makeCurrent();
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    const GLuint program = link(programs);
    glUseProgram(program);
    setUniforms(program, names);

    // The streams have four numbers a vertex; a program takes as many as it declares.
    const std::vector<float> positions = stream("gObjPos");
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_NORMAL_ARRAY);
    glVertexPointer(4, GL_FLOAT, 0, positions.data());
    glNormalPointer(GL_FLOAT, 4 * sizeof(float), positions.data());
    std::vector<std::pair<GLuint, std::vector<float>>> inputs;
    const auto bind = [&](const std::string& name, GLenum)
    {
        const auto location = static_cast<GLuint>(glGetAttribLocation(program, name.c_str()));
        inputs.emplace_back(location, stream(authorsName(name, names)));
        glVertexAttribPointer(location, 4, GL_FLOAT, GL_FALSE, 0, inputs.back().second.data());
        glEnableVertexAttribArray(location);
    };
    forEachActive(program, GL_ACTIVE_ATTRIBUTES, glGetActiveAttrib, bind);

    const std::vector<GLuint> indices = triangles();
    glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(indices.size()), GL_UNSIGNED_INT, indices.data());
    for (const auto& input : inputs)
        glDisableVertexAttribArray(input.first);
    glDeleteProgram(program);
    return pixels();
}

std::vector<std::uint8_t> Canvas::pixels()
{
    std::vector<std::uint8_t> pixels(std::size_t{4} * kSize * kSize);
    glReadPixels(0, 0, kSize, kSize, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    require(glGetError() == GL_NO_ERROR, "OpenGL reports an error");
    return pixels;
}

std::vector<std::uint8_t> Canvas::draw(const scenes::Programs& programs,
                                       const krFrontend::ProgramInterface& interface)
{
    makeCurrent();
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    const GLuint program = link(programs);
    glUseProgram(program);

    Bytes block(static_cast<std::size_t>(interface.block.size));
    for (const krFrontend::FrameUniformInterface& uniform : interface.block.frameUniforms)
        putValue(block, uniform.type, uniform.programName, uniform.offset, uniform.matrixStride);
    GLint unit = 0;
    for (const krFrontend::UniformInterface& uniform : interface.uniforms)
        if (isSampler(uniform.type))
            setSampler(glGetUniformLocation(program, uniform.programName.c_str()),
                       uniform.type == kSamplerCube ? GL_SAMPLER_CUBE : GL_SAMPLER_2D, uniform.light + uniform.name,
                       unit++);
        else
            putValue(block, uniform.type, uniform.light + uniform.name, uniform.offset, uniform.matrixStride);
    std::vector<GLuint> buffers{bufferOf(GL_UNIFORM_BUFFER, block)};
    glUniformBlockBinding(program, glGetUniformBlockIndex(program, interface.block.name.c_str()), 0);
    glBindBufferBase(GL_UNIFORM_BUFFER, 0, buffers[0]);

    GLuint array = 0;
    glGenVertexArrays(1, &array);
    glBindVertexArray(array);
    const auto bind = [&](int location, const std::string& name, GLint size)
    {
        buffers.push_back(bufferOf(GL_ARRAY_BUFFER, stream(name)));
        glVertexAttribPointer(static_cast<GLuint>(location), size, GL_FLOAT, GL_FALSE, 4 * sizeof(float), nullptr);
        glEnableVertexAttribArray(static_cast<GLuint>(location));
    };
    for (const krFrontend::FrameInputInterface& input : interface.block.frameInputs)
        bind(input.location, input.location < 2 ? "gObjPos" : input.programName, 4);
    for (const krFrontend::VertexInputInterface& input : interface.vertexInputs)
        bind(input.location, input.name, 4);

    const std::vector<GLuint> indices = triangles();
    buffers.push_back(bufferOf(GL_ELEMENT_ARRAY_BUFFER, indices));
    glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(indices.size()), GL_UNSIGNED_INT, nullptr);
    glBindVertexArray(0);
    glDeleteVertexArrays(1, &array);
    glDeleteBuffers(static_cast<GLsizei>(buffers.size()), buffers.data());
    glDeleteProgram(program);
    return pixels();
}
