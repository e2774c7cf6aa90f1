#include "NormalMap.h"

#include "Picture.h"

#include <cstddef>
#include <cstring>

Ref<PixelArray2D> normalMap(const PixelArray2D& heights, float scale)
{
    // The slopes of the last row and column need neighbours, and the routine for floats has no slopes for the first
    // column, so the heights are first extended on all those sides and the map is cut back afterwards.
    const auto newArray = isLight(heights) ? newLightPicture : newPicture;
    const auto copyRows = [](const PixelArray2D& from, unsigned firstColumn, PixelArray2D& to)
    {
        const std::size_t pixel = from.pixelSize();
        auto* target = static_cast<std::byte*>(to.data());
        for (unsigned y = 0; y < to.height(); ++y)
        {
            const auto* row = static_cast<const std::byte*>(from.data()) + pixel * from.width() * (y % from.height());
            for (unsigned x = firstColumn; x < firstColumn + to.width(); ++x, target += pixel)
                std::memcpy(target, row + pixel * (x % from.width()), pixel);
        }
    };
    Ref<PixelArray2D> larger = newArray(heights.width() + 2, heights.height() + 1);
    copyRows(heights, heights.width() - 1, *larger);
    (void)larger->convertToNormalMap(scale); // its answer is always false
    Ref<PixelArray2D> normals = newArray(heights.width(), heights.height());
    copyRows(*larger, 1, *normals);
    return normals;
}
