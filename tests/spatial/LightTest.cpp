#include <krender/spatial/IHWLight.h>

#include <gtest/gtest.h>

#include <limits>

namespace
{

class Lamp : public IHWLight
{
public:
    void bind(std::uint32_t /*slot*/) override {}
    void unbind() override {}
    void beginShadowMap() override {}
    void endShadowMap() override {}
};

} // namespace

TEST(Light, ThresholdRadius)
{
    struct Reach
    {
        float intensity, threshold;
        unsigned decay;
        float radius;
    };
    const Reach table[] = {
        {8, 2, 2, 2},  {-8, 2, 1, 4}, {8, 0, 2, 0},
        {8, -1, 2, 0}, {8, 2, 0, 0},  {0, 2, 2, 0},
        {16, 2, 3, 2}, {32, 2, 4, 2}, {8, std::numeric_limits<float>::quiet_NaN(), 1, 0},
    };
    Lamp lamp;
    EXPECT_EQ(lamp.lightType(), 2);
    for (const Reach& row : table)
    {
        lamp.computeThresholdRadius(3, 1, 1);
        lamp.computeThresholdRadius(row.intensity, row.threshold, row.decay);
        EXPECT_FLOAT_EQ(lamp.thresholdRadius(), row.radius)
            << row.intensity << " over " << row.threshold << ", decay " << row.decay;
    }
}
