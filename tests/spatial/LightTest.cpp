#include <krender/pixels/Color.h>
#include <krender/spatial/IHWLight.h>

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <limits>
#include <vector>

namespace
{

class Lamp : public IHWLight
{
public:
    void bind(std::uint32_t /*slot*/) override {}
    void unbind() override {}
    void beginShadowMap() override {}
    void endShadowMap() override {}

    [[nodiscard]] std::vector<float> numbers() const
    {
        return {fAmbient.a, fDiffuse.g, fSpecular.b, fConeAngle, fConstantAttenuation, fShadowOpening, fEyePosition[2]};
    }
};

} // namespace

TEST(Light, InitialValues)
{
    Lamp lamp;
    EXPECT_EQ(lamp.numbers(), (std::vector<float>{1, 1, 1, 180, 1, 3.1415927f, 1}));
    EXPECT_EQ(lamp.thresholdRadius(), 0.0f);
    EXPECT_EQ(lamp.lightType(), 2);
    lamp.setLightType(IHWLight::kSpotLight);
    EXPECT_EQ(lamp.lightType(), 3);
}

TEST(Light, ThresholdRadius)
{
    constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
    constexpr float kRows[][4] = {{8, 2, 2, 2}, {-8, 2, 1, 4}, {8, 0, 2, 0},  {8, -1, 2, 0},  {8, 2, 0, 0},
                                  {0, 2, 2, 0}, {16, 2, 3, 2}, {32, 2, 4, 2}, {8, kNaN, 1, 0}};
    for (const auto& [intensity, threshold, decay, radius] : kRows)
    {
        Lamp lamp;
        lamp.computeThresholdRadius(3, 1, 1);
        lamp.computeThresholdRadius(intensity, threshold, static_cast<unsigned>(decay));
        EXPECT_FLOAT_EQ(lamp.thresholdRadius(), radius) << intensity << " over " << threshold << ", decay " << decay;
    }
}
