#include "Model.h"

#include <krview/FileStamp.h>
#include <krview/FileWatch.h>
#include <krview/mesh/MeshFile.h>
#include <krview/mesh/Shapes.h>

#include <algorithm>
#include <utility>

namespace
{

/// A text that changes when one of the files does.
std::string stateOf(const std::vector<std::string>& files)
{
    std::string state;
    for (const std::string& file : files)
        state += fileStamp(file) + '\n';
    return state;
}

} // namespace

std::shared_ptr<Model> Model::make(const SceneObject& object, Progress& progress, std::vector<std::string>& files)
{
    if (!object.mesh.empty())
    {
        const FileWatch::Moment before = FileWatch::now();
        const std::size_t known = files.size();
        std::shared_ptr<Model> model(new Model(readMesh(object.mesh, progress, files)));
        model->fFiles.assign(files.begin() + static_cast<std::ptrdiff_t>(known), files.end());
        if (std::none_of(model->fFiles.begin(), model->fFiles.end(),
                         [before](const std::string& file) { return FileWatch::hasChangedSince(file, before); }))
            model->fFilesState = stateOf(model->fFiles);
        return model;
    }
    if (object.shape != Shape::Particles)
        return std::shared_ptr<Model>(new Model(newShape(object.shape, object.isSmooth, object.fineness)));
    std::shared_ptr<Model> model(new Model(std::make_unique<Mesh>()));
    model->fMesh->parts.push_back({"particles", true});
    model->fMesh->bounds = Fountain::bounds();
    model->fFountain.emplace(object.particles, model->fMesh->geometry);
    return model;
}

std::string Model::keyOf(const SceneObject& object)
{
    if (object.mesh.empty())
        return std::string(shapeName(object.shape)) + (object.isSmooth ? " smooth " : " flat ") +
               std::to_string(object.shape == Shape::Particles ? object.particles : object.fineness);
    return stateOf({object.mesh});
}

bool Model::isCurrent() const { return stateOf(fFiles) == fFilesState; }

void Model::update(double seconds, const krLinear::AffineMatrix& toEye)
{
    if (fFountain)
        fFountain->update(seconds, toEye);
}

Groups Model::groups(std::size_t part) const
{
    if (!fFountain)
        return {fMesh->geometry.groups()[part].get()};
    Groups groups;
    for (const auto& group : fMesh->geometry.groups())
        groups.push_back(group.get());
    return groups;
}

AABoundingBox Model::bounds(std::size_t part) const
{
    return fFountain ? fMesh->bounds : findList(groups(part), GeometryDataIndex::triangles)->boundingBox();
}
