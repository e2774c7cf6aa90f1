#pragma once
#include <krender/core/Ref.h>
#include <krender/geometry/Geometry.h>
#include <krender/geometry/ParticleData.h>
#include <krender/platform/Linear.h>

#include <vector>

/// A fountain of particles, each drawn as a small disc that faces the eye and is shaded like a ball.
class Fountain
{
public:
    /// @param count     how many particles
    /// @param geometry  gets a group of what stays the same and, with each update, one of what moves; borrowed
    Fountain(unsigned count, Geometry& geometry);

    /// Moves the particles to a moment and rewrites the discs, those farthest from the eye first.
    /// @param view  from the scene to the eye
    void update(double seconds, const krLinear::AffineMatrix& view);

    /// Where the particles are, at any moment.
    [[nodiscard]] static AABoundingBox bounds();

private:
    void move(double seconds);
    void writeDiscs(const krLinear::AffineMatrix& view);

    Geometry& fGeometry;
    Ref<ParticleData> fParticles;
};
