#pragma once
#include <krender/Export.h>
#include <krender/platform/String.h>

#include <array>
#include <vector>

/// One four-component register that carries values from one stage of a program to the next.
struct KRENDER_EXPORT Interpolant
{
    std::array<bool, 4> isFree{true, true, true, true}; ///< x, y, z, w
    bool isReserved = false;

    /// Sets the register aside for a fixed parameter in the given components. Nothing is allocated from it or declared for
    /// it from then on, even where components are free.
    void reserve(bool x, bool y, bool z, bool w) noexcept;
    /// The number of free components; reserved registers may have some.
    [[nodiscard]] unsigned freeComponents() const noexcept;
};

/// The registers between two stages. Values are given components of them, which they keep.
class KRENDER_EXPORT InterpolantBank
{
public:
    /// @param count    the number of registers, all free
    /// @param packing  whether several values may share a register
    InterpolantBank(unsigned count, bool packing);

    [[nodiscard]] unsigned size() const noexcept { return static_cast<unsigned>(fInterpolants.size()); }
    /// The i-th register; not checked.
    [[nodiscard]] const Interpolant& interpolant(unsigned i) const noexcept { return fInterpolants[i]; }
    [[nodiscard]] Interpolant& interpolant(unsigned i) noexcept { return fInterpolants[i]; }

    /// Takes components from the first register that has room for a value. They need not be adjacent.
    /// @param n             the number of components, 1 to 4. Deliberate: other numbers are not refused. With packing, 0
    ///                      gets the address of register 0, reserved or not, and more than 4 find no room. Without it
    ///                      they get the first free register and none or all four of its components.
    /// @param registerText  gets the register's number, unless null; unchanged on failure
    /// @param swizzle       gets the letters of the components, unless null; unchanged on failure
    /// @return  the address for generated code, such as "3.xy"; when no register has room, ok is false and the address is
    ///          a text that no compiler accepts
    [[nodiscard]] krString::CString allocateInterpolant(unsigned n, bool& ok, krString::CString* registerText,
                                                        krString::CString* swizzle);

private:
    std::vector<Interpolant> fInterpolants;
    bool fPacking;
};

/// The struct members that declare the registers with allocated components, each as wide as their number, and the end of
/// the struct.
[[nodiscard]] KRENDER_EXPORT krString::CString completeInterpolantsGeneration(const InterpolantBank& bank);

/// The number in decimal.
[[nodiscard]] KRENDER_EXPORT krString::CString toString(unsigned number);
