#include <krender/shadergen/InterpolantBank.h>

#include <krender/platform/String.h>

#include <algorithm>
#include <string>
#include <string_view>

namespace
{

constexpr unsigned kComponents = 4;

unsigned capacity(const Interpolant& interpolant) noexcept
{
    return interpolant.isReserved ? 0 : interpolant.freeComponents();
}

} // namespace

void Interpolant::reserve(bool x, bool y, bool z, bool w) noexcept
{
    const bool taken[kComponents] = {x, y, z, w};
    for (unsigned i = 0; i < kComponents; ++i)
        isFree[i] = isFree[i] && !taken[i];
    isReserved = true;
}

unsigned Interpolant::freeComponents() const noexcept
{
    return static_cast<unsigned>(std::count(isFree.begin(), isFree.end(), true));
}

InterpolantBank::InterpolantBank(unsigned count, bool packing) : fInterpolants(count), fPacking(packing) {}

krString::CString InterpolantBank::allocateInterpolant(unsigned n, bool& ok, krString::CString* registerText,
                                                       krString::CString* swizzle)
{
    const unsigned need = fPacking ? n : kComponents;
    const auto found = std::find_if(fInterpolants.begin(), fInterpolants.end(),
                                    [need](const Interpolant& candidate) { return capacity(candidate) >= need; });
    ok = found != fInterpolants.end();
    if (!ok)
        return "UNABLE TO ALLOCATE INTERPOLANT!";

    std::string letters;
    for (unsigned i = 0; i < kComponents && letters.size() < n; ++i)
    {
        if (!found->isFree[i])
            continue;
        found->isFree[i] = false;
        letters += "xyzw"[i];
    }
    std::string address = std::to_string(found - fInterpolants.begin());
    if (registerText)
        *registerText = krString::CString(std::string_view(address));
    address += '.';
    address += letters;
    if (swizzle)
        *swizzle = krString::CString(std::move(letters));
    return krString::CString(std::move(address));
}

krString::CString completeInterpolantsGeneration(const InterpolantBank& bank)
{
    std::string members;
    for (unsigned i = 0; i < bank.size(); ++i)
    {
        const Interpolant& interpolant = bank.interpolant(i);
        const unsigned taken = kComponents - interpolant.freeComponents();
        if (interpolant.isReserved || taken == 0)
            continue;
        const std::string index = std::to_string(i);
        members.append("\tfloat").append(std::to_string(taken)).append(" _TEXCOORD").append(index);
        members.append("\t: TEXCOORD").append(index).append(";\n");
    }
    members += "};\n\n";
    return krString::CString(std::move(members));
}

krString::CString toString(unsigned number) { return krString::CString(std::to_string(number)); }
