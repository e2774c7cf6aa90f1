#include <krender/geometry/GeometryData.h>

#include <krender/core/IHWMemoryObject.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace
{

struct ElementTypeInfo
{
    unsigned size;                // bytes
    void (*release)(void* array); // null: never released
};

template <class Component>
constexpr ElementTypeInfo kInfo{sizeof(Component), [](void* array) { delete[] static_cast<Component*>(array); }};

/// By GeometryData::ElementType.
constexpr std::array kElementTypes{
    ElementTypeInfo{1, nullptr}, kInfo<float>,         kInfo<double>,       kInfo<std::int8_t>,   kInfo<std::uint8_t>,
    kInfo<std::int16_t>,         kInfo<std::uint16_t>, kInfo<std::int32_t>, kInfo<std::uint32_t>,
};
static_assert(kElementTypes.size() == GeometryData::uint32 + 1);

} // namespace

GeometryData::GeometryData(const char* name, DataType dataType, ElementType elementType, ElementSize elementSize,
                           unsigned count, void* data, bool ownsData, bool secondary)
    : fStreamName(strdup(name ? name : "")),
      fId(takeUniqueID()),
      fDataType(dataType),
      fElementType(elementType),
      fElementSize(elementSize),
      fCount(count),
      fData(data),
      fOwnsData(ownsData),
      fSecondary(secondary)
{
}

GeometryData::~GeometryData()
{
    deleteHanger();
    std::free(fStreamName);
    if (fOwnsData && fElementType > opaque && fElementType <= uint32)
        kElementTypes[static_cast<std::size_t>(fElementType)].release(fData);
}

unsigned GeometryData::elementTypeSize(ElementType type) noexcept
{
    return kElementTypes[static_cast<std::size_t>(type)].size;
}

void GeometryData::setHanger(IHWMemoryObject* hanger) const
{
    if (hanger == fHanger)
        return;
    deleteHanger();
    fHanger = hanger;
}

void GeometryData::deleteHanger() const
{
    delete fHanger;
    fHanger = nullptr;
}
