#include "NodePlacements.h"

#include "MeshError.h"

#include <assimp/mesh.h>
#include <assimp/scene.h>

#include <cstddef>
#include <span>
#include <utility>

namespace
{

void add(aiMatrix4x4& sum, const aiMatrix4x4& matrix, float weight)
{
    for (unsigned row = 0; row < 4; ++row)
        for (unsigned column = 0; column < 4; ++column)
            sum[row][column] += weight * matrix[row][column];
}

} // namespace

Placement::Placement(const aiMatrix4x4& matrix)
    : linear(matrix), origin(matrix.a4, matrix.b4, matrix.c4), forNormals(matrix), isMirrored(linear.Determinant() < 0)
{
    if (linear.Determinant() != 0)
        forNormals.Inverse().Transpose();
}

NodePlacements::NodePlacements(const aiNode& root)
{
    std::vector<std::pair<const aiNode*, aiMatrix4x4>> waiting{{&root, aiMatrix4x4()}};
    while (!waiting.empty())
    {
        const auto [node, parent] = waiting.back();
        waiting.pop_back();
        fNumbers.try_emplace(node->mName.C_Str(), fNodes.size());
        fNodes.push_back({node, parent * node->mTransformation});
        for (unsigned i = node->mNumChildren; i-- > 0;)
            waiting.emplace_back(node->mChildren[i], fNodes.back().toWorld);
    }
}

std::vector<Placement> NodePlacements::of(const aiMesh& mesh, const aiMatrix4x4& nodeToWorld) const
{
    if (!mesh.HasBones() || mesh.mNumVertices == 0)
        return {Placement(nodeToWorld)};
    std::vector<aiMatrix4x4> sums(mesh.mNumVertices, aiMatrix4x4(0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0));
    for (const aiBone* bone : std::span(mesh.mBones, mesh.mNumBones))
    {
        const auto known = fNumbers.find(bone->mName.C_Str());
        const aiMatrix4x4 toWorld =
            known == fNumbers.end() ? nodeToWorld : fNodes[known->second].toWorld * bone->mOffsetMatrix;
        for (const aiVertexWeight& weight : std::span(bone->mWeights, bone->mNumWeights))
        {
            if (weight.mVertexId >= mesh.mNumVertices)
                throw MeshError("a bone moves a vertex that is not there");
            add(sums[weight.mVertexId], toWorld, weight.mWeight);
        }
    }
    std::vector<Placement> placements;
    placements.reserve(sums.size());
    for (const aiMatrix4x4& sum : sums)
    {
        aiMatrix4x4 mean(0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);
        add(mean, sum, 1 / sum.d4); // the weights' own sum
        placements.emplace_back(sum.d4 > 0 ? mean : nodeToWorld);
    }
    return placements;
}
