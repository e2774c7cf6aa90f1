#include "krender/core/private/HugePages.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory>

TEST(AllocateLarge, AlignsFromTheThresholdOnAndAnswersNullWhenTheRoundedSizeOverflows)
{
    constexpr std::size_t kHugePage = std::size_t{2} << 20;
    constexpr std::size_t kMax = std::numeric_limits<std::size_t>::max();
    struct Case
    {
        std::size_t bytes;
        bool succeeds;
    };
    for (const Case& c : {Case{2, true},
                          {kHugePage - 1, true},
                          {kHugePage, true},
                          {kHugePage + 1, true},
                          {kMax - kHugePage + 2, false},
                          {kMax, false}})
    {
        void* storage = krCore::allocateLarge(c.bytes, 2);
        EXPECT_EQ(storage != nullptr, c.succeeds) << c.bytes;
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(storage) % kHugePage, 0u) << c.bytes;
        std::free(storage);
    }
}
