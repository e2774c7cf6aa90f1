#pragma once
#include <krender/Export.h>

#include <cstdint>

/// Anything that bounds a part of space: the bounding volumes of geometry, and the view frustum.
class KRENDER_EXPORT IBounds
{
public:
    /// The relation that `classify` asks about.
    enum IntersectType : std::int32_t
    {
        Outside = 0,
        Inside = 1,
        Intersect = 2
    };

    /// The concrete class of an object, by which Frustum::classify picks its test.
    enum BoundsType : std::int32_t
    {
        kUnknownBounds = -1,
        kBoxBounds = 4,
        kSphereBounds = 5,
        kFrustumBounds = 6
    };

    /// Whether the object bounds anything; each class says what that takes.
    [[nodiscard]] virtual bool isValid() const = 0;
    /// Returns to the invalid state.
    virtual void setInvalid() = 0;
    virtual ~IBounds() = default;

    [[nodiscard]] std::int32_t boundsType() const noexcept { return fBoundsType; }

    /// A tolerance for hosts and drawing code, -1 until a host sets it. No operation of this library reads it.
    static float fsTolerance;

protected:
    explicit IBounds(std::int32_t boundsType) noexcept : fBoundsType(boundsType) {}
    IBounds(const IBounds&) noexcept = default;
    IBounds& operator=(const IBounds&) noexcept = default;

private:
    std::int32_t fBoundsType;
};
