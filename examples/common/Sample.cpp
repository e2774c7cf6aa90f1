#include "Sample.h"

#include <krender/frontend/Module.h>
#include <krender/frontend/Program.h>
#include <krender/platform/Linear.h>
#include <krender/shadergen/Target.h>
#include <krender/shading/DataType.h>
#include <krender/spatial/IHWCamera.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <numbers>
#include <optional>

namespace sample
{
namespace
{

using krFrontend::Module;

constexpr double kDistance = 3.2; // of the eye

/// The eye looks along -z at a ball that is turned a little.
struct View
{
    krLinear::ProjMatrix objectToWorld;
    krLinear::ProjMatrix worldToObject;
    krLinear::ProjMatrix objectToClip;
};

View makeView(ClipDepth depth)
{
    krLinear::AffineMatrix turn;
    turn.rotate(0.5, krLinear::Normal(1, 0, 0));
    turn.rotate(-0.6, krLinear::Normal(0, 1, 0));
    krLinear::AffineMatrix worldToEye;
    worldToEye.translate({0, 0, -kDistance});
    IHWCamera camera;
    camera.setPerspective(40, 1, 1, 10);
    // The camera's matrix is OpenGL's. Vulkan wants depths from 0 to 1: half of them, and half of w.
    krLinear::ProjMatrix toDepth;
    if (depth == ClipDepth::ZeroToOne)
    {
        toDepth(2, 2) = 0.5;
        toDepth(3, 2) = 0.5;
    }
    return {krLinear::ProjMatrix(turn), krLinear::ProjMatrix(turn.inverse()),
            krLinear::ProjMatrix(turn * worldToEye) * camera.projMatrix() * toDepth};
}

/// Puts numbers where a block has a value. Columns of a matrix stand a stride apart.
template <class Number>
void put(std::vector<std::byte>& block, int offset, int stride, DataType type, const std::vector<Number>& numbers)
{
    const std::size_t rows = stride > 0 ? maxDim(type) : numbers.size();
    for (std::size_t i = 0; i < numbers.size(); ++i)
    {
        const std::size_t place =
            static_cast<std::size_t>(offset) + i / rows * static_cast<std::size_t>(stride) + i % rows * sizeof(Number);
        std::memcpy(&block[place], &numbers[i], sizeof(Number));
    }
}

void putMatrix(std::vector<std::byte>& block, int offset, const krLinear::ProjMatrix& matrix)
{
    // Both sides keep the rows that multiply a row vector, which are the columns that multiply a column vector.
    std::vector<float> numbers(matrix.elements(), matrix.elements() + 16);
    put(block, offset, 16, kMatrix4, numbers);
}

krLinear::ProjMatrix transposed(const krLinear::ProjMatrix& matrix)
{
    krLinear::ProjMatrix result;
    for (unsigned row = 0; row < 4; ++row)
        for (unsigned column = 0; column < 4; ++column)
            result(row, column) = matrix(column, row);
    return result;
}

/// What an input without a default gets: numbers in the middle, and the identity.
std::vector<float> middle(DataType type)
{
    const bool isMatrix = type == kMatrix2 || type == kMatrix3 || type == kMatrix4;
    std::vector<float> numbers(dataTypeNumFloats(type), isMatrix ? 0.0f : 0.5f);
    for (std::size_t i = 0; isMatrix && i < numbers.size(); i += maxDim(type) + 1)
        numbers[i] = 1;
    return numbers;
}

void print(const Module& module, const krFrontend::Diagnostic& diagnostic)
{
    const krFrontend::SourceLocation place = module.sources().location(diagnostic.range.begin);
    std::cerr << place.file << ':' << place.line << ':' << place.column << ": "
              << (diagnostic.severity == krFrontend::Severity::Error ? "error: " : "warning: ") << diagnostic.text
              << '\n';
}

void print(const std::vector<krFrontend::ProgramDiagnostic>& problems)
{
    for (const krFrontend::ProgramDiagnostic& problem : problems)
        if (problem.module)
            print(*problem.module, problem.diagnostic);
        else
            std::cerr << "error: " << problem.diagnostic.text << '\n';
}

bool writePicture(const std::string& path, const std::vector<std::uint8_t>& pixels)
{
    std::ofstream file(path, std::ios::binary);
    file << "P6\n" << kSize << ' ' << kSize << "\n255\n";
    for (std::size_t i = 0; i < pixels.size(); i += 4)
        file.write(reinterpret_cast<const char*>(&pixels[i]), 3);
    return static_cast<bool>(file.flush());
}

/// Compiles and draws the first material of a file.
/// @return  whether there is a picture
bool drawOne(const std::string& path, const Module& lights, const Target& target, const std::string& picture,
             const DrawProgram& draw)
{
    const Module material = Module::readFile(path);
    for (const krFrontend::Diagnostic& diagnostic : material.diagnostics())
        print(material, diagnostic);
    krFrontend::ProgramRequest request;
    request.module = &material;
    for (const krFrontend::ShaderInterface& shader : interfaceOf(lights))
        if (shader.kind == krFrontend::ShaderKind::Light && shader.hasBody)
            request.lights.push_back({&lights, shader.name, shader.name});
    std::vector<krFrontend::ProgramDiagnostic> problems;
    const std::optional<krFrontend::Program> text = compileProgram(request, target, problems);
    const std::optional<krTargets::SpirvProgram> program =
        text ? krTargets::SpirvProgram::build(*text, problems) : std::nullopt;
    print(problems);
    return program && writePicture(picture, draw(*program, text->interface));
}

} // namespace

Mesh makeBall()
{
    constexpr unsigned kRings = 48;
    constexpr unsigned kSlices = 96;
    Mesh mesh;
    for (unsigned ring = 0; ring <= kRings; ++ring)
        for (unsigned slice = 0; slice <= kSlices; ++slice)
        {
            const float u = static_cast<float>(slice) / kSlices;
            const float v = static_cast<float>(ring) / kRings;
            const float longitude = 2 * std::numbers::pi_v<float> * u;
            const float latitude = std::numbers::pi_v<float> * (v - 0.5f);
            const float x = std::cos(latitude) * std::sin(longitude);
            const float y = std::sin(latitude);
            const float z = std::cos(latitude) * std::cos(longitude);
            mesh.vertices.push_back(
                {{x, y, z, 1}, {x, y, z}, {std::cos(longitude), 0, -std::sin(longitude)}, {u, v}, {u, v, 1 - u, 1}});
        }
    constexpr std::uint32_t kRow = kSlices + 1;
    for (std::uint32_t ring = 0; ring < kRings; ++ring)
        for (std::uint32_t slice = 0; slice < kSlices; ++slice)
        {
            const std::uint32_t corner = ring * kRow + slice;
            for (const std::uint32_t step : {0u, 1u, kRow + 1, 0u, kRow + 1, kRow})
                mesh.triangles.push_back(corner + step);
        }
    return mesh;
}

VertexField fieldOf(const std::string& input, DataType type)
{
    const auto has = [&input](const char* part) { return input.find(part) != std::string::npos; };
    if (has("angent"))
        return {offsetof(Vertex, tangent), 3};
    if (has("ormal"))
        return {offsetof(Vertex, normal), 3};
    if (has("Vertex") || has("ositi"))
        return {offsetof(Vertex, place), 4};
    if (type == kFloat2)
        return {offsetof(Vertex, textureCoord), 2};
    return {offsetof(Vertex, color), 4};
}

std::vector<std::byte> uniformBytes(const krFrontend::ProgramInterface& interface, ClipDepth depth)
{
    std::vector<std::byte> block(static_cast<std::size_t>(interface.block.size));
    const View view = makeView(depth);
    for (const krFrontend::FrameUniformInterface& frame : interface.block.frameUniforms)
    {
        if (frame.programName == "kr_ModelViewProjectionMatrix")
            putMatrix(block, frame.offset, view.objectToClip);
        else if (frame.programName == "objToWorldMatrix")
            putMatrix(block, frame.offset, view.objectToWorld);
        else if (frame.programName == "objToWorldMatrix_invtrans")
            putMatrix(block, frame.offset, transposed(view.worldToObject));
        else if (frame.programName == "gEyePos")
            put<float>(block, frame.offset, 0, frame.type, {0, 0, static_cast<float>(kDistance), 1});
    }
    for (const krFrontend::UniformInterface& uniform : interface.uniforms)
    {
        if (uniform.offset < 0)
            continue; // a sampler
        const krFrontend::Value& value = uniform.defaultValue;
        if (dataTypeNumFloats(uniform.type) > 0)
            put(block, uniform.offset, uniform.matrixStride, uniform.type,
                value.isSet() ? value.floats : middle(uniform.type));
        else
            put(block, uniform.offset, 0, uniform.type,
                value.isSet() ? value.ints : std::vector<int>(std::max(1u, maxDim(uniform.type)), 1));
    }
    return block;
}

std::vector<std::uint8_t> makePicture()
{
    std::vector<std::uint8_t> pixels;
    for (unsigned y = 0; y < kPictureSide; ++y)
        for (unsigned x = 0; x < kPictureSide; ++x)
        {
            const bool isLight = (x / 8 + y / 8) % 2 == 0;
            pixels.insert(pixels.end(),
                          {static_cast<std::uint8_t>(isLight ? 230 : 60), static_cast<std::uint8_t>(isLight ? 200 : 90),
                           static_cast<std::uint8_t>(128 + 2 * (x % 8) * (y % 8)), 255});
        }
    return pixels;
}

int drawAll(int argc, char** argv, const std::string& target, const DrawProgram& draw)
{
    if (argc < 4)
    {
        std::cerr << "usage: " << argv[0] << " LIGHTS.krs FOLDER MATERIAL.krs...\n";
        return 2;
    }
    const Module lights = Module::readFile(argv[1]);
    for (const krFrontend::Diagnostic& diagnostic : lights.diagnostics())
        print(lights, diagnostic);
    bool ok = true;
    for (int i = 3; i < argc; ++i)
    {
        const std::filesystem::path name = std::filesystem::path(argv[i]).stem().concat(".ppm");
        ok &= drawOne(argv[i], lights, *findTarget(target), (argv[2] / name).string(), draw);
    }
    return ok ? 0 : 1;
}

} // namespace sample
