#include "TransparentPass.h"

#include <krender/geometry/DepthSorter.h>

namespace
{

// What takes longer to sort and to draw than an order that is better here and there is worth.
constexpr std::size_t kMostMixedDrawings = 1000;
constexpr std::size_t kMostMixedTriangles = 65536;

bool overlap(const AABoundingBox& a, const AABoundingBox& b)
{
    const auto meet = [](float lowA, float highA, float lowB, float highB) { return lowA < highB && lowB < highA; };
    return meet(a.min().x, a.max().x, b.min().x, b.max().x) && meet(a.min().y, a.max().y, b.min().y, b.max().y) &&
           meet(a.min().z, a.max().z, b.min().z, b.max().z);
}

/// The box of what stands at one place, as it is seen from another.
AABoundingBox seenFrom(const krLinear::AffineMatrix& place, const AABoundingBox& bounds,
                       const krLinear::AffineMatrix& from)
{
    return bounds.transformed(place * from.inverse());
}

} // namespace

TransparentPass::TransparentPass() { glGenBuffers(1, &fBuffer); }

TransparentPass::~TransparentPass() { glDeleteBuffers(1, &fBuffer); }

void TransparentPass::draw(std::vector<StageObject>& objects, const Placements& placements, const Camera& camera,
                           SurfacePainter& painter)
{
    collect(objects, placements);
    findMixed();
    addPieces();
    fOrder.resize(fPieces.size());
    DepthSorter::sortByDepth(krLinear::ProjMatrix(camera.viewMatrix()), fOrder.data(),
                             static_cast<unsigned>(fOrder.size()), fCentres.data(), nullptr, 0);
    fIndices.clear();
    for (const unsigned i : fOrder)
        if (const Drawing& drawing = fDrawings[fPieces[i].drawing]; drawing.isMixed)
            drawing.triangles->append(fPieces[i].triangle, fIndices);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, fBuffer);
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, static_cast<GLsizeiptr>(fIndices.size() * sizeof(unsigned)), fIndices.data(),
                 GL_STREAM_DRAW);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);

    unsigned drawn = 0; // of the indices
    for (std::size_t i = 0; i < fOrder.size();)
    {
        const std::size_t begin = i;
        const std::size_t number = fPieces[fOrder[i]].drawing;
        while (i < fOrder.size() && fPieces[fOrder[i]].drawing == number)
            ++i;
        const Drawing& drawing = fDrawings[number];
        painter.begin(objects[drawing.object], drawing.part);
        if (drawing.isMixed)
        {
            const auto count = static_cast<unsigned>(3 * (i - begin));
            painter.drawTriangles(*drawing.placement, fBuffer, drawn, count);
            drawn += count;
        }
        else
            painter.draw(*drawing.placement);
        painter.end();
    }
}

void TransparentPass::collect(const std::vector<StageObject>& objects, const Placements& placements)
{
    fDrawings.clear();
    for (std::size_t i = 0; i < objects.size(); ++i)
        for (std::size_t part = 0; part < objects[i].surfaces.size(); ++part)
            if (const Surface& surface = objects[i].surfaces[part]; surface.isTransparent)
            {
                const AABoundingBox bounds = objects[i].model->bounds(part);
                placements.forEachVisible(i,
                                          [&](const krLinear::AffineMatrix& placement) {
                                              fDrawings.push_back({i, part, &placement, surface.order.get(), bounds});
                                          });
            }
}

void TransparentPass::findMixed()
{
    if (fDrawings.size() > kMostMixedDrawings)
        return;
    for (std::size_t i = 0; i < fDrawings.size(); ++i)
        for (std::size_t k = i + 1; k < fDrawings.size(); ++k)
        {
            Drawing& a = fDrawings[i];
            Drawing& b = fDrawings[k];
            if (!a.triangles || !b.triangles || (a.isMixed && b.isMixed) ||
                !overlap(a.bounds.transformed(*a.placement), b.bounds.transformed(*b.placement)) ||
                !overlap(a.bounds, seenFrom(*b.placement, b.bounds, *a.placement)) ||
                !overlap(b.bounds, seenFrom(*a.placement, a.bounds, *b.placement)))
                continue;
            a.isMixed = b.isMixed = true;
        }
    std::size_t triangles = 0;
    for (const Drawing& drawing : fDrawings)
        triangles += drawing.isMixed ? drawing.triangles->count() : 0;
    for (Drawing& drawing : fDrawings)
        drawing.isMixed = drawing.isMixed && triangles <= kMostMixedTriangles;
}

void TransparentPass::addPieces()
{
    fPieces.clear();
    fCentres.clear();
    const auto add = [this](std::size_t drawing, unsigned triangle, const krLinear::PointFlt& middle)
    {
        const krLinear::Point centre =
            fDrawings[drawing].placement->preMult(krLinear::Point(middle.x, middle.y, middle.z));
        fPieces.push_back({drawing, triangle});
        for (const double coordinate : {centre.x, centre.y, centre.z})
            fCentres.push_back(static_cast<float>(coordinate));
    };
    for (std::size_t i = 0; i < fDrawings.size(); ++i)
    {
        const Drawing& drawing = fDrawings[i];
        if (!drawing.isMixed)
            add(i, 0, drawing.bounds.center());
        else
            for (unsigned triangle = 0; triangle < drawing.triangles->count(); ++triangle)
                add(i, triangle, drawing.triangles->centre(triangle));
    }
}
