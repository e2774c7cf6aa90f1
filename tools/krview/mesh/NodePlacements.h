#pragma once
#include <assimp/matrix3x3.h>
#include <assimp/matrix4x4.h>
#include <assimp/vector3.h>

#include <string_view>
#include <unordered_map>
#include <vector>

struct aiMesh;
struct aiNode;

/// From the space of a mesh to the world.
struct Placement
{
    explicit Placement(const aiMatrix4x4& matrix);

    aiMatrix3x3 linear;
    aiVector3D origin;
    aiMatrix3x3 forNormals;
    bool isMirrored; ///< whether it turns triangles over
};

/// Where the nodes of a scene stand, and with them the vertices of its meshes.
class NodePlacements
{
public:
    /// @param root  borrowed
    explicit NodePlacements(const aiNode& root);

    struct Node
    {
        const aiNode* node;
        aiMatrix4x4 toWorld;
    };
    /// All nodes, each ahead of its children.
    [[nodiscard]] const std::vector<Node>& nodes() const noexcept { return fNodes; }

    /// The placements of a node's mesh: one for all vertices; or one for each where the mesh has bones, as those stand, and
    /// the node does not count. Throws a MeshError.
    [[nodiscard]] std::vector<Placement> of(const aiMesh& mesh, const aiMatrix4x4& nodeToWorld) const;

private:
    std::vector<Node> fNodes;
    std::unordered_map<std::string_view, std::size_t> fNumbers; ///< by name
};
