// What is derived for meshes that lack it, compared with shapes whose surfaces are known, and the records that the reading
// process sends.
#include <krview/mesh/MeshError.h>
#include <krview/mesh/MeshWire.h>
#include <krview/mesh/PartArrays.h>
#include <krview/mesh/PartCheck.h>
#include <krview/mesh/PartCompletion.h>
#include <krview/mesh/Shapes.h>
#include <krview/mesh/VertexVectors.h>

#include <krender/geometry/Geometry.h>
#include <krender/geometry/GeometryData.h>
#include <krender/geometry/GeometryDataIndex.h>
#include <krender/geometry/GeometryLogicalGroup.h>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <map>
#include <string>

namespace
{

const auto kNoReport = [](float) {};

PartArrays partOf(const GeometryLogicalGroup& group)
{
    PartArrays part{.name = group.name()};
    for (std::size_t slot = 0; slot < kStreamSlots; ++slot)
        if (const GeometryData* stream =
                group.geometryDataPtr(kStreamKinds[slot].type, kStreamKinds[slot].setIndex, false))
        {
            const auto* values = static_cast<const float*>(stream->data());
            part.values[slot].assign(values, values + std::size_t{stream->count()} * stream->elementSize());
        }
    const GeometryDataIndex& surface = *group.indices()[0];
    const GeometryDataIndex& edges = *group.indices()[1];
    part.triangles.assign(surface.indices(), surface.indices() + surface.count());
    part.edges.assign(edges.indices(), edges.indices() + edges.count());
    return part;
}

struct Known
{
    Shape shape;
    unsigned triangles;
    unsigned edges;
};

class KnownShapes : public testing::TestWithParam<Known>
{
protected:
    [[nodiscard]] static std::vector<PartArrays> parts()
    {
        const auto mesh = newShape(GetParam().shape, true, 48);
        std::vector<PartArrays> parts;
        for (const auto& group : mesh->geometry.groups())
            parts.push_back(partOf(*group));
        return parts;
    }
};

/// The mean directions at the corners of a part's triangles, which the order of its vertices does not change.
std::vector<krLinear::Vector> atCorners(const PartArrays& part, StreamSlot slot)
{
    std::vector<krLinear::Vector> directions;
    for (const unsigned vertex : part.triangles)
        directions.push_back(vectorAt(part.values[slot], vertex));
    return directions;
}

// Normals that face inwards, triangles that turn the other way, and tangents along the wrong texture coordinate.
TEST_P(KnownShapes, AgreeWithThemselves)
{
    unsigned triangles = 0;
    unsigned edges = 0;
    for (const PartArrays& part : parts())
    {
        triangles += static_cast<unsigned>(part.triangles.size() / 3);
        edges += static_cast<unsigned>(part.edges.size() / 2);
        for (std::size_t i = 0; i < part.triangles.size(); ++i)
        {
            const krLinear::Vector normal = vectorAt(part.values[kNormals], part.triangles[i]);
            const krLinear::Vector tangent = vectorAt(part.values[kTangents], part.triangles[i]);
            ASSERT_NEAR(normal.length(), 1, 1e-5);
            ASSERT_NEAR(tangent.length(), 1, 1e-5);
            ASSERT_NEAR(dot(normal, tangent), 0, 1e-5);
            const std::span corners(&part.triangles[i - i % 3], 3);
            ASSERT_GT(dot(triangleNormal(part, corners), normal), 0.9) << part.name << ' ' << i;
        }
    }
    EXPECT_EQ(triangles, GetParam().triangles);
    EXPECT_EQ(edges, GetParam().edges);
}

// The same surface without its normals, tangents and shared vertices gets them back, with its sharp edges.
TEST_P(KnownShapes, AreCompletedToWhatTheyAre)
{
    for (const PartArrays& known : parts())
    {
        PartArrays bare{.name = known.name};
        for (const unsigned vertex : known.triangles)
            for (const StreamSlot slot : {kPositions, kTextureCoords})
            {
                const std::size_t components = kStreamKinds[slot].components;
                const auto value = known.values[slot].begin() + static_cast<std::ptrdiff_t>(vertex * components);
                bare.values[slot].insert(bare.values[slot].end(), value,
                                         value + static_cast<std::ptrdiff_t>(components));
            }
        for (unsigned i = 0; i < known.triangles.size(); ++i)
            bare.triangles.push_back(i);
        bare.triangles.insert(bare.triangles.end(), {0, 1, 1, 2, 2, 2}); // lines and points
        checkPart(bare);
        completePart(bare, kNoReport);
        ASSERT_EQ(bare.triangles.size(), known.triangles.size());
        // Vertices are shared again, but for poles and seams.
        EXPECT_LE(bare.vertexCount(), known.vertexCount() + 200);
        // Where a surface ends or bends fast, there is less to derive from.
        const bool isBall = GetParam().shape == Shape::ShaderBall;
        for (const StreamSlot slot : {kNormals, kTangents})
        {
            const std::vector<krLinear::Vector> derived = atCorners(bare, slot);
            const std::vector<krLinear::Vector> expected = atCorners(known, slot);
            for (std::size_t i = 0; i < derived.size(); ++i)
                ASSERT_GT(dot(derived[i], expected[i]), isBall ? 0.85 : 0.99) << known.name << ' ' << slot << ' ' << i;
        }
        // Without edges of its own it has those of its triangles: by Euler, of a closed surface three for two of them.
        if (GetParam().shape == Shape::SmoothSphere)
        {
            EXPECT_EQ(bare.edges.size() / 2, bare.triangles.size() / 2);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Of48Pieces, KnownShapes,
                         testing::Values(Known{Shape::SmoothSphere, 48 * 2 * 23, 48 * 24 + 48 * 23},
                                         Known{Shape::SmoothCylinder, 48 * (2 + 24), 48 * (1 + 1 + 13 + 12 + 2)},
                                         Known{Shape::Box, 12, 24}, Known{Shape::Plane, 2, 4},
                                         Known{Shape::Torus, 48 * 24 * 2, 48 * 24 * 2},
                                         Known{Shape::ShaderBall, 12288, 12720}),
                         [](const auto& known)
                         {
                             std::string name = shapeName(known.param.shape);
                             std::erase(name, '-');
                             return name;
                         });

// A texture that meets its mirror image, as on the two halves of a face, does not cancel its tangents out.
TEST(DerivedTangents, PointAwayFromAMirrorOfTheTexture)
{
    PartArrays part{.name = "halves"};
    part.values[kPositions] = {-1, 0, 0, 0, 0, 0, 0, 1, 0, 1, 0, 0};
    part.values[kTextureCoords] = {1, 0, 0, 0, 0, 1, 1, 0};
    part.triangles = {0, 1, 2, 1, 3, 2};
    completePart(part, kNoReport);
    ASSERT_EQ(part.vertexCount(), 6U);
    for (std::size_t i = 0; i < 6; ++i)
    {
        const krLinear::Vector tangent = vectorAt(part.values[kTangents], part.triangles[i]);
        EXPECT_EQ(tangent, krLinear::Vector(i < 3 ? -1 : 1, 0, 0)) << i;
    }
}

/// A file in memory, read from its beginning.
class MemoryFile
{
public:
    explicit MemoryFile(const std::string& bytes = "") : fDescriptor(::memfd_create("records", MFD_CLOEXEC))
    {
        EXPECT_EQ(::pwrite(fDescriptor, bytes.data(), bytes.size(), 0), static_cast<ssize_t>(bytes.size()));
    }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile() { ::close(fDescriptor); }

    [[nodiscard]] int descriptor() const noexcept { return fDescriptor; }
    [[nodiscard]] std::string bytes() const
    {
        std::string bytes(static_cast<std::size_t>(::lseek(fDescriptor, 0, SEEK_END)), '\0');
        EXPECT_EQ(::pread(fDescriptor, bytes.data(), bytes.size(), 0), static_cast<ssize_t>(bytes.size()));
        return bytes;
    }

private:
    int fDescriptor;
};

// Whatever a reading process sends, the answer is a mesh that can be drawn or a MeshError, and no more memory than came.
TEST(MeshRecords, AreNotBelieved)
{
    PartArrays piece{.name = "p", .isTransparent = true};
    piece.values[kPositions] = {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0};
    piece.values[kTextureCoords] = {0, 0, 1, 0, 1, 1, 0, 1};
    piece.triangles = {0, 1, 2, 0, 2, 3};
    piece.edges = {0, 1, 1, 2, 2, 3, 3, 0};
    const MemoryFile file;
    const MeshWireOutput output(file.descriptor());
    output.sendShare(0.5f);
    output.sendFile("a.mtl");
    output.sendPiece(piece);
    output.sendEnd();
    const std::string whole = file.bytes();

    std::map<std::string, unsigned> answers;
    std::uint32_t number = 1;
    const auto random = [&number](std::size_t bound)
    { return (number = number * 1664525 + 1013904223, (number >> 8) % bound); };
    for (unsigned round = 0; round < 5000; ++round)
    {
        std::string bytes = whole;
        constexpr std::uint32_t kWords[] = {0, 1, 4, 0x7fc00000, 0x7fffffff, 0xffffffff};
        for (std::size_t i = round == 0 ? 0 : 1 + random(2); i > 0; --i)
            std::memcpy(&bytes[random(bytes.size() - 3)], &kWords[random(std::size(kWords))], 4);
        if (random(8) == 0 && round != 0)
            bytes.resize(random(bytes.size()));
        const MemoryFile mutant(bytes);
        MeshWireInput input(mutant.descriptor(), [] {});
        try
        {
            while (input.readRecord())
                ;
            for (PartArrays& part : input.pieces())
            {
                checkPart(part);
                completePart(part, kNoReport);
                checkPart(part);
                for (const float value : part.values[kTangents])
                    ASSERT_TRUE(std::isfinite(value)) << round;
            }
            ++answers[input.isWhole() ? "whole" : "not whole"];
            if (round == 0)
            {
                EXPECT_EQ(input.pieces().at(0).edges.size(), 8U);
                EXPECT_EQ(input.files(), std::vector<std::string>{"a.mtl"});
            }
        }
        catch (const MeshError& error)
        {
            ++answers[error.what()];
        }
    }
    EXPECT_GT(answers["whole"], 100U);
    EXPECT_GT(answers["not whole"], 100U);
    EXPECT_GT(answers["its reader gave a broken answer"], 100U);
    EXPECT_GT(answers.size(), 8U);
}

} // namespace
