#pragma once
#include <krender/core/Ref.h>
#include <krender/geometry/Geometry.h>
#include <krender/geometry/ParticleData.h>
#include <krender/platform/Linear.h>
#include <krender/spatial/AABoundingBox.h>

/// A fountain of particles, each drawn as a small disc that faces the eye and is shaded like a ball.
class Fountain
{
public:
    /// @param count     number of particles
    /// @param geometry  gets a group of the data that stay and, at each update, a group of those that move; borrowed for
    ///                  the life of the fountain
    Fountain(unsigned count, Geometry& geometry);

    /// Moves the particles and rewrites the discs, the farthest from the eye first.
    /// @param seconds  from the beginning
    /// @param view     from the scene to the eye
    void update(double seconds, const krLinear::AffineMatrix& view);

    /// A box that holds the particles at any time.
    [[nodiscard]] static AABoundingBox bounds();

private:
    void move(double seconds);
    void writeDiscs(const krLinear::AffineMatrix& view);

    Geometry& fGeometry;
    Ref<ParticleData> fParticles;
};
