#pragma once
#include <krender/Export.h>

#include <cstdint>

/// Anything that bounds a part of space: the volumes around geometry, and the view frustum.
class KRENDER_EXPORT IBounds
{
public:
    /// How one volume stands to another; `classify` asks about one of them at a time.
    enum IntersectType : std::int32_t
    {
        Outside = 0,
        Inside = 1,
        Intersect = 2
    };

    /// The concrete class behind an interface; a frustum chooses its test by it.
    enum BoundsType : std::int32_t
    {
        kUnknownBounds = -1,
        kBoxBounds = 4,
        kSphereBounds = 5,
        kFrustumBounds = 6
    };

    /// Whether there is a volume at all; what counts as one is up to the class.
    [[nodiscard]] virtual bool isValid() const = 0;
    /// Goes back to the empty state.
    virtual void setInvalid() = 0;
    virtual ~IBounds() = default;

    [[nodiscard]] std::int32_t boundsType() const noexcept { return fBoundsType; }

    /// A tolerance that hosts and drawing code share, negative until a host sets one; the library's own tests are exact.
    static float fsTolerance;

protected:
    explicit IBounds(std::int32_t boundsType) noexcept : fBoundsType(boundsType) {}
    IBounds(const IBounds&) noexcept = default;
    IBounds& operator=(const IBounds&) noexcept = default;

private:
    std::int32_t fBoundsType;
};
