#pragma once
#include <krender/platform/String.h>

#include <array>
#include <vector>

/// One four-component register that carries values from one stage of a program to the next.
struct KRENDER_EXPORT Interpolant
{
    std::array<bool, 4> isFree{true, true, true, true}; ///< x, y, z, w
    bool isReserved = false;

    /// Sets the register aside for a fixed parameter that takes the components given. Nothing is allocated from it or
    /// declared for it any more, whatever stays free.
    void reserve(bool x, bool y, bool z, bool w) noexcept;
    /// The number of free components, those of a reserved register included.
    [[nodiscard]] unsigned freeComponents() const noexcept;
};

/// The registers between two stages, handed out component by component and never given back.
class KRENDER_EXPORT InterpolantBank
{
public:
    /// @param packing  whether several values may share one register
    InterpolantBank(unsigned count, bool packing);

    [[nodiscard]] unsigned size() const noexcept { return static_cast<unsigned>(fInterpolants.size()); }
    /// The i-th register; not checked.
    [[nodiscard]] const Interpolant& interpolant(unsigned i) const noexcept { return fInterpolants[i]; }
    [[nodiscard]] Interpolant& interpolant(unsigned i) noexcept { return fInterpolants[i]; }

    /// Takes components from the first register that has room for a value.
    /// @param n             the value's components, 1 to 4
    /// @param registerText  gets the register's number, unless null; untouched on failure
    /// @param swizzle       gets the letters of the components, unless null; untouched on failure
    /// @return  the address for generated code, such as "3.xy"; when no register has room, ok is false and a text comes
    ///          back that makes the failure visible in the program it is put into
    [[nodiscard]] krString::CString allocateInterpolant(unsigned n, bool& ok, krString::CString* registerText,
                                                        krString::CString* swizzle);

private:
    std::vector<Interpolant> fInterpolants;
    bool fPacking;
};

/// The struct members that declare the bank's allocated registers, each as wide as what was taken from it, and the end of
/// the struct.
[[nodiscard]] KRENDER_EXPORT krString::CString completeInterpolantsGeneration(const InterpolantBank& bank);

/// The number in decimal.
[[nodiscard]] KRENDER_EXPORT krString::CString toString(unsigned number);
