#include <krender/core/Ref.h>
#include <krender/pixels/Color.h>
#include <krender/pixels/IBaseResource.h>
#include <krender/pixels/IHWTexPlacement.h>
#include <krender/pixels/IHWTexture.h>
#include <krender/pixels/IPixelArray.h>
#include <krender/pixels/PixelArray1D.h>
#include <krender/pixels/PixelArray2D.h>
#include <krender/pixels/PixelArray3D.h>
#include <krender/pixels/PixelArrayCubeMap.h>
#include <krender/pixels/krColorFormatRGBAFixed8.h>
#include <krender/pixels/krColorFormatRGBAFloat.h>
#include <krender/pixels/krSysPixelFormat.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <numeric>
#include <string>
#include <vector>

namespace
{

using Bytes = std::vector<unsigned char>;

/// How often operator new succeeds before memory ends; negative: always.
int gAllocationsLeft = -1;

/// A host's format of a chosen pixel type, which counts the images that it has handed out and taken back.
template <class Format>
class Counting : public Format
{
public:
    explicit Counting(std::int32_t pixelType) noexcept : Format(pixelType) {}

    void deallocate(void* pixels) override
    {
        ++released;
        Format::deallocate(pixels);
    }
    [[nodiscard]] void* allocate(unsigned w, unsigned h, unsigned d) override
    {
        ++allocated;
        return Format::allocate(w, h, d);
    }

    int allocated = 0;
    int released = 0;
};

using CountingFixed8 = Counting<krColorFormatRGBAFixed8>;
using CountingFloat = Counting<krColorFormatRGBAFloat>;

/// Writes 0, 1, 2 and so on; under the address sanitizer this measures the storage.
void fill(IPixelArray& array, unsigned pixelSize)
{
    Bytes bytes(std::size_t{pixelSize} * array.width() * array.height() * array.depth());
    std::iota(bytes.begin(), bytes.end(), static_cast<unsigned char>(0));
    array.copy(bytes.data(), pixelSize);
}

Bytes contents(const PixelArray2D& array)
{
    const auto* bytes = static_cast<const unsigned char*>(array.data());
    return {bytes, bytes + std::size_t{array.pixelSize()} * array.width() * array.height()};
}

std::string shape(const IPixelArray& array)
{
    return std::to_string(array.width()) + "x" + std::to_string(array.height()) + "x" + std::to_string(array.depth()) +
           (array.data() ? " filled" : "") + (array.ownsData() ? " owner" : "");
}

std::string shape(IPixelArray&& array)
{
    if (array.data())
        fill(array, 4);
    return shape(array);
}

} // namespace

// Not inline, or the compiler sees free() end what its own operator new began.
[[gnu::noinline]] void* operator new(std::size_t size)
{
    void* storage = gAllocationsLeft != 0 ? std::malloc(size) : nullptr;
    if (!storage)
        throw std::bad_alloc();
    if (gAllocationsLeft > 0)
        --gAllocationsLeft;
    return storage;
}

[[gnu::noinline]] void operator delete(void* storage) noexcept { std::free(storage); }

[[gnu::noinline]] void operator delete(void* storage, std::size_t /*size*/) noexcept { std::free(storage); }

TEST(Resource, AnswersOfTheBases)
{
    auto* texture = new IHWTexture;
    EXPECT_EQ(texture->ref(), 1) << "nobody held it before";
    const auto owner = Ref<IHWTexture>::adopt(texture);
    EXPECT_TRUE(texture->lock(IBaseResource::kReadWrite, false));
    EXPECT_FALSE(texture->isLocked(IBaseResource::kReadWrite));
    EXPECT_EQ(texture->duplicate(true, true), nullptr);
    EXPECT_EQ(texture->duplicateInternal(true), nullptr);
    EXPECT_FALSE(texture->bind() || texture->unbind() || texture->generateMipMaps() || texture->mipmapped());
    EXPECT_EQ(texture->importance(), 0U);
    texture->setImportance(3);
    EXPECT_EQ(texture->importance(), 3U);
    EXPECT_TRUE(IHWTexPlacement().defaultColor.equivalent(krColor::Color::kCblack, 0));
}

TEST(PixelArray, ShapesAndStorage)
{
    CountingFixed8 format(14);
    EXPECT_EQ(shape(PixelArray1D(format, 5)), "5x1x1 filled owner");
    EXPECT_EQ(shape(PixelArray2D(format, 4, 3)), "4x3x1 filled owner");
    EXPECT_EQ(shape(PixelArray3D(format, 4, 3, 2)), "4x3x2 filled owner");
    EXPECT_EQ(shape(PixelArrayCubeMap(format, 16, 15)), "16x15x6 filled owner");
    EXPECT_EQ(format.released, 4);
    EXPECT_EQ(shape(PixelArray1D(format, 0)), "0x0x0");
    EXPECT_EQ(shape(PixelArray2D(format, 0, 3)), "0x0x0");
    EXPECT_EQ(shape(PixelArray2D(format, 3, 0)), "0x0x0");
    EXPECT_EQ(shape(PixelArray3D(format, 3, 3, 0)), "0x0x0");
    EXPECT_EQ(shape(PixelArrayCubeMap(format, 3, 0)), "0x0x0");
    EXPECT_EQ(shape(PixelArray2D(format, 0xFFFFFFFF, 0xFFFFFFFF)), "4294967295x4294967295x1 owner") << "no memory";
    EXPECT_EQ(format.released, 4) << "nothing to release";
    EXPECT_EQ(format.allocated, 0) << "arrays take the plain storage";
}

TEST(PixelArray, WithoutPixelsNothingHappens)
{
    const CountingFixed8 format(2);
    PixelArray2D none;
    const krSysPixelFormat unstorable(-1, 2, 2);
    PixelArray2D noMemory(format, 0xFFFFFFFF, 0xFFFFFFFF);
    PixelArray2D noPixelSize(unstorable, 3, 2);
    EXPECT_EQ(none.pixelSize(), 0U);
    EXPECT_EQ(none.pixelType(), 0);
    for (PixelArray2D* array : {&none, &noMemory, &noPixelSize})
    {
        const std::string before = shape(*array);
        array->copy(before.data(), 1);
        EXPECT_FALSE(array->convertToNormalMap(1));
        array->resize(3, 3);
        EXPECT_EQ(shape(*array), before);
    }
    EXPECT_EQ(shape(static_cast<const IPixelArray&>(PixelArray2D(noMemory))), "4294967295x4294967295x1");
}

TEST(PixelArray2D, CopyBetweenLikesLeavesThePixelsAndDisowns)
{
    CountingFixed8 format(2);
    {
        PixelArray2D from(format, 3, 3);
        PixelArray2D to(format, 3, 3);
        fill(from, 4);
        std::memset(to.data(), 200, 36);
        to.copy(from);
        EXPECT_EQ(shape(to), "3x3x1 filled");
        to.convertToNormalMap(1);
        EXPECT_EQ(contents(to), Bytes(36, 200)) << "what it does not own is not converted";
    }
    EXPECT_EQ(format.released, 2) << "released all the same";
}

TEST(PixelArray2D, CopyOfAnotherSizeTakesOnlyEightBytes)
{
    CountingFixed8 fixed8(2);
    CountingFloat rgbaFloat(4);
    {
        PixelArray2D from(fixed8, 30, 20);
        std::memset(from.data(), 77, 2400);
        PixelArray2D to(rgbaFloat, 30, 20); // another format counts as another size
        to.copy(from);
        EXPECT_EQ(rgbaFloat.released, 1);
        EXPECT_EQ(to.format(), &fixed8);
        PixelArray2D narrower(fixed8, 29, 20);
        narrower.copy(from);
        PixelArray2D lower(fixed8, 30, 19);
        lower.copy(from);
        PixelArray2D constructed(from);
        for (PixelArray2D* array : {&to, &narrower, &lower, &constructed})
        {
            EXPECT_EQ(shape(*array), "30x20x1 filled owner");
            EXPECT_EQ(std::memcmp(array->data(), from.data(), 8), 0);
        }
        EXPECT_NE(contents(constructed), contents(from)) << "the rest is what the memory held before";

        PixelArray2D pixel(fixed8, 1, 1); // less than 8 bytes
        fill(pixel, 4);
        EXPECT_EQ(contents(PixelArray2D(pixel)), (Bytes{0, 1, 2, 3}));

        to.copy(PixelArray2D());
        EXPECT_EQ(shape(to), "0x0x0");
        EXPECT_EQ(to.format(), nullptr);
    }
    EXPECT_EQ(fixed8.released, 9) << "one for each array that had pixels";
    EXPECT_EQ(fixed8.allocated, 0);
}

TEST(PixelArray2D, RoutinesGoByThePixelTypeAlone)
{
    const Bytes flat = {127, 127, 255, 255};
    const Bytes flatFloat = {0, 0, 0, 0x3F}; // 0.5f
    const Bytes same(4, 60);
    const auto expectRoutines =
        [](const krSysPixelFormat& format, unsigned w, unsigned h, const Bytes& firstNormal, const char* resized)
    {
        PixelArray2D array(format, w, h);
        std::memset(array.data(), 60, std::size_t{array.pixelSize()} * w * h);
        EXPECT_EQ(array.pixelType(), format.pixelType());
        EXPECT_FALSE(array.convertToNormalMap(0));
        EXPECT_EQ(std::memcmp(array.data(), firstNormal.data(), firstNormal.size()), 0) << array.pixelType();
        array.resize(0, 1);
        array.resize(w, h);
        array.resize(2, 1);
        EXPECT_EQ(shape(array), resized) << array.pixelType();
    };
    CountingFixed8 fixed8(2);
    expectRoutines(fixed8, 4, 3, flat, "2x1x1 filled owner");
    EXPECT_EQ(fixed8.allocated, 1) << "the virtual allocate";
    EXPECT_EQ(fixed8.released, 2);
    expectRoutines(CountingFloat(4), 4, 3, flatFloat, "2x1x1 filled owner");
    expectRoutines(krSysPixelFormat(4, 2, 4), 4, 3, flat, "2x1x1 filled owner");
    expectRoutines(krSysPixelFormat(16, 4, 2), 4, 3, flatFloat, "2x1x1 filled owner");
    expectRoutines(krSysPixelFormat(4, 2, 4), 4, 1, same, "2x1x1 filled owner"); // nothing ahead of it to read
    expectRoutines(krSysPixelFormat(4, 2, 4), 1, 4, same, "2x1x1 filled owner");
    expectRoutines(krColorFormatRGBAFixed8(), 4, 3, same, "4x3x1 filled owner");
    expectRoutines(krSysPixelFormat(4, 3, 2), 4, 3, same, "4x3x1 filled owner");
    expectRoutines(krSysPixelFormat(3, 2, 2), 4, 3, same, "4x3x1 filled owner"); // pixels too small
    expectRoutines(krSysPixelFormat(15, 4, 4), 4, 3, same, "4x3x1 filled owner");
}

TEST(PixelArray2D, ResizeWithoutMemoryChangesNothing)
{
    CountingFixed8 fixed8(2);
    CountingFloat rgbaFloat(4);
    for (krSysPixelFormat* format :
         {static_cast<krSysPixelFormat*>(&fixed8), static_cast<krSysPixelFormat*>(&rgbaFloat)})
    {
        PixelArray2D array(*format, 4, 2);
        fill(array, array.pixelSize());
        const Bytes before = contents(array);
        for (int allocations = 0; array.width() == 4; ++allocations)
        {
            ASSERT_EQ(contents(array), before);
            gAllocationsLeft = allocations;
            array.resize(2, 2);
            gAllocationsLeft = -1;
        }
        EXPECT_EQ(shape(array), "2x2x1 filled owner");
    }
    EXPECT_GT(fixed8.allocated, 3);
    EXPECT_EQ(fixed8.released, fixed8.allocated + 1) << "those of failed attempts too";
    EXPECT_GT(rgbaFloat.allocated, 3);
    EXPECT_EQ(rgbaFloat.released, rgbaFloat.allocated + 1);
}
