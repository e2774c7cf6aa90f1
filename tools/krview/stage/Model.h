#pragma once
#include <krview/Progress.h>
#include <krview/mesh/Fountain.h>
#include <krview/mesh/Mesh.h>
#include <krview/mesh/Streams.h>
#include <krview/scene/Scene.h>

#include <krender/platform/Linear.h>
#include <krender/spatial/AABoundingBox.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// What an object is, apart from how it looks: a mesh or a fountain. Objects that are alike share one.
class Model
{
public:
    /// Makes the shape of an object or reads its mesh. Throws a krTools::FileError, and Cancelled.
    /// @param files  the files that are read beside the mesh are appended
    [[nodiscard]] static std::shared_ptr<Model> make(const SceneObject& object, Progress& progress,
                                                     std::vector<std::string>& files);
    /// What two objects have in common if they can share a model; changes when a mesh file does.
    [[nodiscard]] static std::string keyOf(const SceneObject& object);

    /// Whether the files that are read beside the mesh are as they were.
    [[nodiscard]] bool isCurrent() const;
    /// The files that are read beside the mesh.
    [[nodiscard]] const std::vector<std::string>& files() const noexcept { return fFiles; }

    Model(const Model&) = delete;
    Model& operator=(const Model&) = delete;

    /// Whether it looks different from moment to moment.
    [[nodiscard]] bool isMoving() const noexcept { return fFountain.has_value(); }
    /// Brings what moves up to date.
    /// @param seconds  from the beginning
    /// @param toEye    from object space to the eye
    void update(double seconds, const krLinear::AffineMatrix& toEye);

    [[nodiscard]] const AABoundingBox& bounds() const noexcept { return fMesh->bounds; }
    [[nodiscard]] Geometry& geometry() noexcept { return fMesh->geometry; }
    [[nodiscard]] const std::vector<MeshPart>& parts() const noexcept { return fMesh->parts; }
    /// The groups of a part, borrowed: what moves and what stays are two.
    [[nodiscard]] Groups groups(std::size_t part) const;
    /// The bounds of a part.
    [[nodiscard]] AABoundingBox bounds(std::size_t part) const;

private:
    explicit Model(std::unique_ptr<Mesh> mesh) : fMesh(std::move(mesh)) {}

    std::unique_ptr<Mesh> fMesh;
    std::vector<std::string> fFiles;
    std::string fFilesState; ///< empty where they changed while they were read
    std::optional<Fountain> fFountain;
};
