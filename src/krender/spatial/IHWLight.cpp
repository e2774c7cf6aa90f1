#include <krender/spatial/IHWLight.h>

#include <cmath>

IHWLight::~IHWLight() = default;

void IHWLight::setLightType(LightType type) { fLightType = type; }

void IHWLight::releaseLightResources() {}

void IHWLight::computeThresholdRadius(float intensity, float threshold, unsigned decay) noexcept
{
    fThresholdRadius = 0.0f;
    if (decay == 0 || !(threshold > 0.0f))
        return;
    fThresholdRadius = std::abs(intensity) / threshold;
    if (decay >= 2)
    {
        const float exponent = 1.0f / static_cast<float>(decay);
        fThresholdRadius =
            static_cast<float>(std::pow(static_cast<double>(fThresholdRadius), static_cast<double>(exponent)));
    }
}
