#include <krender/shading/FunctionType.h>

#include <krender/platform/String.h>

#include <cstdint>
#include <iterator>

namespace krShadingDag
{

[[gnu::init_priority(200)]] const krString::CString FunctionTypeToString[6] = {"regular", "material",  "displacement",
                                                                               "light",   "texture2D", "texture3D"};

FunctionType::FunctionType(const krString::CString& text) noexcept
{
    for (std::uint32_t type = 0; type < std::size(FunctionTypeToString); ++type)
        if (krString::equal(FunctionTypeToString[type], text))
            fType = static_cast<TypeEnum>(type);
}

const krString::CString& FunctionType::toString() const noexcept
{
    return FunctionTypeToString[fType <= kTexture3D ? fType : kRegular];
}

} // namespace krShadingDag
