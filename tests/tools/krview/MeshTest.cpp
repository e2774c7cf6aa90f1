#include "Image.h"
#include "Krview.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace
{

/// The corners of a box from -1 to 1, four a side, counter-clockwise from the lower left.
struct Box
{
    struct Corner
    {
        std::array<float, 3> position;
        std::array<float, 2> uv;
    };
    std::vector<Corner> corners;

    Box()
    {
        using Axis = std::array<float, 3>;
        const std::array<std::array<Axis, 2>, 6> sides{{{{{1, 0, 0}, {0, 1, 0}}},
                                                        {{{0, 0, -1}, {0, 1, 0}}},
                                                        {{{-1, 0, 0}, {0, 1, 0}}},
                                                        {{{0, 0, 1}, {0, 1, 0}}},
                                                        {{{1, 0, 0}, {0, 0, -1}}},
                                                        {{{1, 0, 0}, {0, 0, 1}}}}};
        for (const auto& [right, up] : sides)
            for (const std::array<float, 2> uv : {Uv{0, 0}, Uv{1, 0}, Uv{1, 1}, Uv{0, 1}})
            {
                Corner corner{{}, uv};
                for (unsigned i = 0; i < 3; ++i)
                {
                    const unsigned j = (i + 1) % 3;
                    const unsigned k = (i + 2) % 3;
                    const float normal = right[j] * up[k] - right[k] * up[j];
                    corner.position[i] = right[i] * (2 * uv[0] - 1) + up[i] * (2 * uv[1] - 1) + normal;
                }
                corners.push_back(corner);
            }
    }

private:
    using Uv = std::array<float, 2>;
};

std::string number(float value) { return ' ' + std::to_string(value); }

/// Quads with texture coordinates and nothing else.
void writeObj(const Workplace& place)
{
    std::string text;
    for (const Box::Corner& corner : Box().corners)
        text += 'v' + number(corner.position[0]) + number(corner.position[1]) + number(corner.position[2]) + "\nvt" +
                number(corner.uv[0]) + number(corner.uv[1]) + '\n';
    for (unsigned i = 1; i <= 24; i += 4)
    {
        text += 'f';
        for (unsigned j = i; j < i + 4; ++j)
            text += ' ' + std::to_string(j) + '/' + std::to_string(j);
        text += '\n';
    }
    place.write("box.obj", text);
}

void writePly(const Workplace& place)
{
    std::string text =
        "ply\nformat ascii 1.0\nelement vertex 24\nproperty float x\nproperty float y\nproperty float z\n"
        "property float s\nproperty float t\nelement face 6\n"
        "property list uchar int vertex_indices\nend_header\n";
    for (const Box::Corner& corner : Box().corners)
        text += number(corner.position[0]) + number(corner.position[1]) + number(corner.position[2]) +
                number(corner.uv[0]) + number(corner.uv[1]) + '\n';
    for (unsigned i = 0; i < 24; i += 4)
        text += "4 " + std::to_string(i) + ' ' + std::to_string(i + 1) + ' ' + std::to_string(i + 2) + ' ' +
                std::to_string(i + 3) + '\n';
    place.write("box.ply", text);
}

template <class Value>
void append(std::string& bytes, Value value)
{
    bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
}

struct GlbNodes
{
    const char* members;         ///< of the file
    const char* attributes = ""; ///< further ones of the mesh
};

/// Two nodes, of which one mirrors the box and turns its triangles over with that.
constexpr GlbNodes kMirror{
    R"("nodes": [{"children": [1], "translation": [5, 6, 7]}, {"mesh": 0, "scale": [-3, 3, 3]}])"};
/// Two bones, each of which does the same to the mesh, and a node that does not count beside them.
constexpr GlbNodes kBones{R"("skins": [{"joints": [2, 3], "inverseBindMatrices": 5}], "nodes": [{"children": [1, 2]},
            {"mesh": 0, "skin": 0, "scale": [1, 9, 4], "translation": [9, 0, 0]},
            {"name": "hip", "scale": [-6, 6, 6], "children": [3]}, {"name": "knee", "translation": [1, 2, 3]}])",
                          R"(, "JOINTS_0": 3, "WEIGHTS_0": 4)"};

/// Triangles below nodes; the texture's rows are counted from above.
void writeGlb(const Workplace& place, const std::string& material, const GlbNodes& nodes = kMirror)
{
    std::string bytes;
    for (const Box::Corner& corner : Box().corners)
        for (const float value : {-corner.position[0] / 3, corner.position[1] / 3, corner.position[2] / 3})
            append(bytes, value);
    for (const Box::Corner& corner : Box().corners)
        for (const float value : {corner.uv[0], 1 - corner.uv[1]})
            append(bytes, value);
    for (std::uint16_t i = 0; i < 24; i += 4)
        for (const int j : {0, 2, 1, 0, 3, 2})
            append(bytes, static_cast<std::uint16_t>(i + j));
    for (int i = 0; i < 24; ++i)
        bytes.append("\0\1\0\0", 4);
    for (int i = 0; i < 24; ++i)
        for (const float weight : {0.25f, 0.75f, 0.0f, 0.0f})
            append(bytes, weight);
    for (const float bone : {0.0f, 1.0f}) // from the mesh to the bones
        for (const float value : {0.5f, 0.0f, 0.0f, 0.0f, 0.0f, 0.5f, 0.0f, 0.0f, 0.0f, 0.0f, 0.5f, 0.0f, -bone,
                                  -2 * bone, -3 * bone, 1.0f})
            append(bytes, value);
    std::string json = R"({"asset": {"version": "2.0"}, "scene": 0, "scenes": [{"nodes": [0]}],
        )" + (nodes.members + (R"(, "materials": [{"name": "paint")" + material)) +
                       R"(}], "meshes": [{"primitives": [{"indices": 2, "material": 0,
            "attributes": {"POSITION": 0, "TEXCOORD_0": 1)" +
                       nodes.attributes + R"(}}]}],
        "buffers": [{"byteLength": 1160}],
        "bufferViews": [{"buffer": 0, "byteLength": 288}, {"buffer": 0, "byteOffset": 288, "byteLength": 192},
            {"buffer": 0, "byteOffset": 480, "byteLength": 72}, {"buffer": 0, "byteOffset": 552, "byteLength": 96},
            {"buffer": 0, "byteOffset": 648, "byteLength": 384}, {"buffer": 0, "byteOffset": 1032, "byteLength": 128}],
        "accessors": [{"bufferView": 0, "componentType": 5126, "count": 24, "type": "VEC3",
                "min": [-0.4, -0.4, -0.4], "max": [0.4, 0.4, 0.4]},
            {"bufferView": 1, "componentType": 5126, "count": 24, "type": "VEC2"},
            {"bufferView": 2, "componentType": 5123, "count": 36, "type": "SCALAR"},
            {"bufferView": 3, "componentType": 5121, "count": 24, "type": "VEC4"},
            {"bufferView": 4, "componentType": 5126, "count": 24, "type": "VEC4"},
            {"bufferView": 5, "componentType": 5126, "count": 2, "type": "MAT4"}]})";
    json.resize((json.size() + 3) / 4 * 4, ' ');
    std::string file = "glTF";
    for (const std::size_t value : {std::size_t{2}, 28 + json.size() + bytes.size(), json.size()})
        append(file, static_cast<std::uint32_t>(value));
    file += "JSON" + json;
    append(file, static_cast<std::uint32_t>(bytes.size()));
    place.write("box.glb", file + std::string("BIN\0", 4) + bytes);
}

/// Shows normals, tangents and texture coordinates, unlit.
constexpr const char* kMaterial = R"(material m(vertex float2 uv, float3 gWorldNormal, float3 gWorldTangent,
    uniform float alpha = 1, out float4 outRGBA)
{
    outRGBA = float4(float3(0.5) + 0.2 * gWorldNormal + 0.15 * gWorldTangent + 0.15 * float3(uv, 0), alpha);
}
)";

Image drawn(const Workplace& place, const std::string& arguments)
{
    place.write("m.krs", kMaterial);
    const Outcome outcome = krview(place, arguments + " --size 200x150 --screenshot picture.png");
    EXPECT_EQ(outcome.err, "");
    return readImage(place.path() / "picture.png");
}

/// The number of pixels that differ by more than rounding does.
std::size_t changed(const Image& a, const Image& b)
{
    EXPECT_EQ(a.width, 200U);
    EXPECT_EQ(a.bytes.size(), b.bytes.size());
    std::size_t count = 0;
    for (std::size_t i = 0; i < std::min(a.bytes.size(), b.bytes.size()); ++i)
        count += std::abs(a.bytes[i] - b.bytes[i]) > 2 ? 1 : 0;
    return count / 3;
}

// Lost placements, mirrored textures, faces turned over, normals smoothed over the box's edges, tangents along v.
TEST(MeshFiles, OfABoxLookLikeTheShape)
{
    const Workplace place;
    writeObj(place);
    writePly(place);
    writeGlb(place, "");
    place.write("wire.json", R"({"material": "m.krs", "shape": "box", "wire": true})");
    const Image box = drawn(place, "--material m.krs --shape box");
    const Image wired = drawn(place, "wire.json");
    EXPECT_GT(changed(box, wired), 100U);
    for (const char* name : {"box.obj", "box.ply", "box.glb"})
        EXPECT_LT(changed(box, drawn(place, std::string("--material m.krs --mesh ") + name)), 20U) << name;
    writeGlb(place, "", kBones);
    EXPECT_LT(changed(box, drawn(place, "--material m.krs --mesh box.glb")), 20U);
    // The wire frame shows the edges of the file's own faces.
    for (const char* name : {"box.obj", "box.ply"})
        EXPECT_LT(changed(wired, drawn(place, std::string("wire.json --mesh ") + name)), 20U) << name;
}

// A glTF file says which of its materials are blended, and an MTL file by its opacity.
TEST(MeshFiles, SayWhatIsTransparent)
{
    const Workplace place;
    const auto isTransparent = [&place](const std::string& mesh)
    {
        const std::string arguments = "--material m.krs --mesh " + mesh + " --set alpha=";
        return changed(drawn(place, arguments + '1'), drawn(place, arguments + "0.5")) > 1000;
    };
    writeGlb(place, R"(, "alphaMode": "BLEND")");
    EXPECT_TRUE(isTransparent("box.glb"));
    writeGlb(place, R"(, "pbrMetallicRoughness": {"baseColorFactor": [1, 1, 1, 0.5]})");
    EXPECT_FALSE(isTransparent("box.glb"));
    writeObj(place);
    place.write("box.obj", "mtllib box.mtl\nusemtl glass\n" + place.read("box.obj"));
    EXPECT_FALSE(isTransparent("box.obj"));
    place.write("box.mtl", "newmtl glass\nd 0.5\n");
    EXPECT_TRUE(isTransparent("box.obj"));
}

TEST(MeshFiles, HaveAPartForEachMaterial)
{
    const Workplace place;
    writeObj(place);
    std::string text = place.read("box.obj");
    text.insert(text.find("f "), "usemtl front\n");
    text.insert(text.find("f ", text.find("f ") + 1), "usemtl rest\n");
    place.write("box.obj", "mtllib box.mtl\n" + text);
    place.write("box.mtl", "newmtl front\nnewmtl rest\n");
    place.write("red.krs", "material red(out float4 outRGBA) { outRGBA = float4(1, 0, 0, 1); }\n");
    const std::string scene = R"({"material": "m.krs", "mesh": "box.obj", "view": {"pitch": 0, "yaw": 0},
        "parts": {"front": {"material": "red.krs"}}})";
    place.write("scene.json", scene);
    EXPECT_EQ(drawn(place, "scene.json").at(100, 75), (Image::Pixel{255, 0, 0}));
    place.write("scene.json", std::string(scene).replace(scene.find("front"), 5, "rests"));
    EXPECT_EQ(krview(place, "scene.json --frames 1").status, 1);
    EXPECT_NE(krview(place, "scene.json --frames 1").err.find("no part \"rests\""), std::string::npos);
}

TEST(MeshFiles, OfAMillionTrianglesLoadInSeconds)
{
    constexpr unsigned kSide = 708;
    const Workplace place;
    std::string text = "ply\nformat binary_little_endian 1.0\nelement vertex " + std::to_string(kSide * kSide) +
                       "\nproperty float x\nproperty float y\nproperty float z\nelement face " +
                       std::to_string(2 * (kSide - 1) * (kSide - 1)) +
                       "\nproperty list uchar int vertex_indices\nend_header\n";
    for (unsigned y = 0; y < kSide; ++y)
        for (unsigned x = 0; x < kSide; ++x)
            for (const unsigned value : {x, y, x * y % 7})
                append(text, static_cast<float>(value));
    for (unsigned i = 0; i < kSide * (kSide - 1); ++i)
        if (i % kSide != kSide - 1)
            for (const unsigned second : {i + 1, i + kSide + 1})
            {
                text += '\3';
                for (const unsigned corner : {i, second, second == i + 1 ? i + kSide + 1 : i + kSide})
                    append(text, corner);
            }
    place.write("million.ply", text);
    place.write("m.krs", kMaterial);
    const Outcome outcome = place.run(KRVIEW_PROGRAM, {"--material", "m.krs", "--mesh", "million.ply", "--frames", "2"},
                                      {.secondsLimit = 60});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_LT(outcome.peakKilobytes, 1000U << 10);
}

} // namespace
