#include "AssimpReader.h"

#include "MeshError.h"
#include "MeshFolder.h"
#include "MeshReaderProcess.h"
#include "NodePlacements.h"
#include "ReaderLimits.h"

#include <assimp/GltfMaterial.h>
#include <assimp/material.h>
#include <assimp/mesh.h>
#include <assimp/postprocess.h>
#include <assimp/scene.h>
#include <unistd.h>

#include <algorithm>
#include <assimp/Importer.hpp>
#include <assimp/ProgressHandler.hpp>
#include <cstddef>
#include <exception>
#include <new>
#include <span>
#include <string_view>

namespace
{

/// Passes on how far Assimp is.
class ProgressSender : public Assimp::ProgressHandler
{
public:
    explicit ProgressSender(const MeshWireOutput& output) : fOutput(output) {}

    bool Update(float share) override
    {
        constexpr float kStep = 0.01f;
        if (share >= fSent + kStep)
        {
            fSent = share;
            fOutput.sendShare(share);
        }
        return true;
    }

private:
    const MeshWireOutput& fOutput;
    float fSent = 0;
};

bool isPolygon(const aiFace& face) { return face.mNumIndices > 2; }

bool hasPolygonsOfMore(const aiMesh& mesh)
{
    return std::any_of(mesh.mFaces, mesh.mFaces + mesh.mNumFaces,
                       [](const aiFace& face) { return face.mNumIndices > 3; });
}

void checkEntries(const aiMesh& mesh)
{
    for (const aiFace& face : std::span(mesh.mFaces, mesh.mNumFaces))
        for (const unsigned vertex : std::span(face.mIndices, face.mNumIndices))
            if (vertex >= mesh.mNumVertices)
                throw MeshError("a corner is vertex " + std::to_string(vertex) + ", counted from 0, of " +
                                std::to_string(mesh.mNumVertices));
}

/// The edges of all faces, before they are cut into triangles; an edge of two faces twice.
std::vector<unsigned> edgesOf(const aiMesh& mesh)
{
    std::vector<unsigned> edges;
    for (const aiFace& face : std::span(mesh.mFaces, mesh.mNumFaces))
        for (unsigned i = 0; isPolygon(face) && i < face.mNumIndices; ++i)
            edges.insert(edges.end(), {face.mIndices[i], face.mIndices[(i + 1) % face.mNumIndices]});
    return edges;
}

/// The name of the material if the file gives one, else that of the mesh.
std::string pieceName(const aiMesh& mesh, const aiMaterial& material)
{
    aiString name;
    const bool isNamed = material.Get(AI_MATKEY_NAME, name) == AI_SUCCESS && name.length != 0 &&
                         std::string_view(name.C_Str()) != AI_DEFAULT_MATERIAL_NAME;
    return isNamed ? name.C_Str() : mesh.mName.C_Str();
}

bool isTransparent(const aiMaterial& material)
{
    aiString mode;
    if (material.Get(AI_MATKEY_GLTF_ALPHAMODE, mode) == AI_SUCCESS)
        return std::string_view(mode.C_Str()) == "BLEND";
    float opacity = 1;
    return material.Get(AI_MATKEY_OPACITY, opacity) == AI_SUCCESS && opacity < 1;
}

/// Copies components of vectors.
/// @param vectors  null for none
template <class Vector>
void copyStream(const Vector* vectors, std::size_t count, unsigned components, std::vector<float>& values)
{
    values.reserve(vectors ? count * components : 0);
    for (std::size_t i = 0; vectors && i < count; ++i)
        for (unsigned component = 0; component < components; ++component)
            values.push_back(vectors[i][component]);
}

/// @param map  makes a vector of a vector and the number of its vertex
template <class Map>
std::vector<aiVector3D> transformed(const aiVector3D* vectors, std::size_t count, Map map)
{
    std::vector<aiVector3D> result;
    result.reserve(vectors ? count : 0);
    for (std::size_t i = 0; vectors && i < count; ++i)
        result.push_back(map(vectors[i], i));
    return result;
}

/// A mesh as it stands in the world.
/// @param placements  one for all vertices, or one for each
PartArrays pieceOf(const aiMesh& mesh, const aiMaterial& material, const std::vector<Placement>& placements)
{
    const std::size_t count = mesh.mNumVertices;
    const auto at = [&placements](std::size_t vertex) -> const Placement&
    { return placements[std::min(vertex, placements.size() - 1)]; };
    PartArrays piece{.name = pieceName(mesh, material), .isTransparent = isTransparent(material)};
    const auto copy = [&](StreamSlot slot, const auto* vectors)
    { copyStream(vectors, count, kStreamKinds[slot].components, piece.values[slot]); };
    const auto toWorld = [&](const aiVector3D& v, std::size_t i) { return at(i).linear * v + at(i).origin; };
    copy(kPositions, transformed(mesh.mVertices, count, toWorld).data());
    const auto normalToWorld = [&](const aiVector3D& v, std::size_t i) { return at(i).forNormals * v; };
    if (mesh.HasNormals())
        copy(kNormals, transformed(mesh.mNormals, count, normalToWorld).data());
    const auto tangentToWorld = [&](const aiVector3D& v, std::size_t i) { return at(i).linear * v; };
    if (mesh.HasTangentsAndBitangents())
        copy(kTangents, transformed(mesh.mTangents, count, tangentToWorld).data());
    copy(kTextureCoords, mesh.mTextureCoords[0]);
    copy(kTextureCoords2, mesh.mTextureCoords[1]);
    copy(kColours, mesh.mColors[0]);

    piece.triangles.reserve(std::size_t{3} * mesh.mNumFaces);
    for (const aiFace& face : std::span(mesh.mFaces, mesh.mNumFaces))
        if (face.mNumIndices == 3)
        {
            // A mirrored mesh keeps its outside.
            const std::size_t second = at(face.mIndices[0]).isMirrored ? 2 : 1;
            piece.triangles.insert(piece.triangles.end(),
                                   {face.mIndices[0], face.mIndices[second], face.mIndices[3 - second]});
        }
    return piece;
}

} // namespace

void readWithAssimp(const char* path, const MeshWireOutput& output)
{
    Assimp::Importer importer;
    importer.SetIOHandler(new MeshFolder(path, output));
    importer.SetProgressHandler(new ProgressSender(output));
    importer.SetPropertyBool(AI_CONFIG_IMPORT_NO_SKELETON_MESHES, true);
    const auto checked = [&importer](const aiScene* scene)
    {
        if (importer.GetException())
            std::rethrow_exception(importer.GetException());
        const std::string_view error = importer.GetErrorString();
        if (!scene || !scene->mRootNode)
            throw MeshError(error.empty() ? "it has no nodes" : std::string(error));
        return scene;
    };
    const aiScene* scene = checked(importer.ReadFile(path, 0));
    const std::span meshes(scene->mMeshes, scene->mNumMeshes);
    std::vector<std::vector<unsigned>> edges(meshes.size());
    const bool hasPolygons =
        std::any_of(meshes.begin(), meshes.end(), [](const aiMesh* mesh) { return hasPolygonsOfMore(*mesh); });
    for (std::size_t i = 0; i < meshes.size(); ++i)
    {
        checkEntries(*meshes[i]);
        if (hasPolygons)
            edges[i] = edgesOf(*meshes[i]);
    }
    if (hasPolygons)
        scene = checked(importer.ApplyPostProcessing(aiProcess_Triangulate));

    const NodePlacements placements(*scene->mRootNode);
    for (const auto& [node, toWorld] : placements.nodes())
        for (const unsigned number : std::span(node->mMeshes, node->mNumMeshes))
        {
            if (number >= scene->mNumMeshes)
                throw MeshError("a node names a mesh that is not there");
            const aiMesh& mesh = *scene->mMeshes[number];
            if (mesh.mMaterialIndex >= scene->mNumMaterials)
                throw MeshError("a mesh names a material that is not there");
            PartArrays piece = pieceOf(mesh, *scene->mMaterials[mesh.mMaterialIndex], placements.of(mesh, toWorld));
            piece.edges = edges[number];
            output.sendPiece(piece);
        }
}

void readMeshHere(const char* path)
{
    const MeshWireOutput output(kMeshReaderOutput);
    try
    {
        limitReader();
        readWithAssimp(path, output);
        output.sendEnd();
    }
    catch (const std::bad_alloc&)
    {
        output.sendFailure("it takes far more memory than a file of its size should");
    }
    catch (const std::exception& error)
    {
        output.sendFailure(error.what());
    }
    ::_exit(0);
}
