#pragma once
#include <krender/pixels/Color.h>
#include <krender/platform/Linear.h>

#include <array>
#include <cstdint>
#include <numbers>
#include <vector>

/// A light of the hardware renderer. The base holds what drawing needs and computes how far the light reaches; a
/// derived light fills in the fields and hands them to the drawing interface.
class KRENDER_EXPORT IHWLight
{
public:
    enum LightType : std::int32_t
    {
        kAmbientLight = 0,
        kDirectionalLight = 1,
        kPointLight = 2,
        kSpotLight = 3
    };

    IHWLight() = default;
    virtual ~IHWLight();

    virtual void setLightType(LightType type);
    /// Gives back what the light holds in the graphics card; nothing to do here.
    virtual void releaseLightResources();
    /// Puts the light into a slot of the drawing interface, slots counted from 0.
    virtual void bind(std::uint32_t slot) = 0;
    /// Takes the light out of its slot.
    virtual void unbind() = 0;
    /// Directs drawing into the light's shadow map.
    virtual void beginShadowMap() = 0;
    /// Directs drawing back to where it went before.
    virtual void endShadowMap() = 0;

    [[nodiscard]] LightType lightType() const noexcept { return fLightType; }
    /// The distance beyond which the light may be left out; 0 for a light without end.
    [[nodiscard]] float thresholdRadius() const noexcept { return fThresholdRadius; }
    /// Sets the threshold radius to the distance at which intensity / distance^decay falls to the threshold.
    /// @param intensity  its sign does not matter
    /// @param decay      0 for a light that does not fade, which has no end, as has one with a threshold of 0 or less
    void computeThresholdRadius(float intensity, float threshold, unsigned decay) noexcept;

protected:
    krColor::Color fAmbient{0.0f, 0.0f, 0.0f, 1.0f};
    krColor::Color fDiffuse{1.0f, 1.0f, 1.0f, 1.0f};
    krColor::Color fSpecular{1.0f, 1.0f, 1.0f, 1.0f};
    float fConeAngle = 180.0f; // degrees from the axis; 180 shines all around
    float fDropoff = 0.0f;     // exponent of the fall towards the cone's edge
    float fConstantAttenuation = 1.0f;
    float fLinearAttenuation = 0.0f;
    float fQuadraticAttenuation = 0.0f;
    float fPenumbraAngle = 0.0f;                                 // degrees
    float fShadowOpening = static_cast<float>(std::numbers::pi); // radians that the shadow map spans
    float fShadowBias = 0.0f;
    float fShadowBlur = 0.0f;
    krLinear::ProjMatrix fShadowMatrix; // world to shadow map
    krLinear::Point fPosition;
    krLinear::Vector fDirection;
    krLinear::AffineMatrix fPlacement{0.0}; // light to world; all 0 until the light is placed
    bool fCastsShadows = false;
    std::int32_t fDecay = 0; // exponent of the fall with distance
    LightType fLightType = kPointLight;
    std::array<float, 4> fEyePosition{0.0f, 0.0f, 1.0f, 0.0f}; // homogeneous, as drawing interfaces take it
    std::vector<float> fFalloff;                               // samples along the reach; empty: the attenuations count
    float fThresholdRadius = 0.0f;
};
