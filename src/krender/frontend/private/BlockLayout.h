#pragma once
#include "krender/frontend/private/Type.h"
#include <krender/frontend/Interface.h>

namespace krFrontend
{

/// Hands out the places of a uniform block as std140 says.
class BlockLayout
{
public:
    /// Where a value begins, which is no sampler; a bool counts as an int.
    [[nodiscard]] int place(const Type& type) noexcept;
    /// The bytes of the block, a multiple of 16.
    [[nodiscard]] int size() const noexcept { return roundedUp(fEnd, kRow); }

    /// The bytes from one column of a matrix to the next; 0 for any other type.
    [[nodiscard]] static int matrixStride(const Type& type) noexcept { return type.isMatrix() ? kRow : 0; }

private:
    static constexpr int kRow = 16;

    [[nodiscard]] static constexpr int roundedUp(int bytes, int unit) noexcept
    {
        return (bytes + unit - 1) / unit * unit;
    }

    int fEnd = 0;
};

/// A layout in which the members that every block has stand already.
[[nodiscard]] BlockLayout frameLayout() noexcept;

/// Fills in the block of an interface, the places of its uniforms and the locations of its inputs.
void layOut(ProgramInterface& interface);

} // namespace krFrontend
