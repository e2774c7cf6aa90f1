#pragma once
#include <krender/Export.h>
#include <krender/pixels/Color.h>
#include <krender/platform/Linear.h>

#include <array>
#include <cstdint>
#include <numbers>
#include <vector>

/// A light of the hardware renderer. The base class holds the light's parameters and computes its reach; a derived light
/// sets the parameters and passes them to the drawing interface.
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
    /// Frees what the light holds on the graphics card; does nothing in the base class.
    virtual void releaseLightResources();
    /// Loads the light into a slot of the drawing interface.
    /// @param slot  from 0
    virtual void bind(std::uint32_t slot) = 0;
    /// Removes the light from its slot.
    virtual void unbind() = 0;
    /// Directs drawing into the light's shadow map.
    virtual void beginShadowMap() = 0;
    /// Directs drawing to where it went before beginShadowMap.
    virtual void endShadowMap() = 0;

    [[nodiscard]] LightType lightType() const noexcept { return fLightType; }
    /// The distance beyond which the light may be ignored; 0 if the light has no finite reach.
    [[nodiscard]] float thresholdRadius() const noexcept { return fThresholdRadius; }
    /// Sets the threshold radius to the distance at which intensity / distance^decay falls to the threshold.
    /// @param intensity  its sign does not matter
    /// @param threshold  if it is not greater than 0, the light has no finite reach
    /// @param decay      exponent; 0 for a light that does not fade and has no finite reach
    void computeThresholdRadius(float intensity, float threshold, unsigned decay) noexcept;

protected:
    krColor::Color fAmbient{0.0f, 0.0f, 0.0f, 1.0f};
    krColor::Color fDiffuse{1.0f, 1.0f, 1.0f, 1.0f};
    krColor::Color fSpecular{1.0f, 1.0f, 1.0f, 1.0f};
    float fConeAngle = 180.0f; // degrees from the axis; 180 shines in all directions
    float fDropoff = 0.0f;     // exponent of the falloff towards the cone's edge
    float fConstantAttenuation = 1.0f;
    float fLinearAttenuation = 0.0f;
    float fQuadraticAttenuation = 0.0f;
    float fPenumbraAngle = 0.0f;                                 // degrees
    float fShadowOpening = static_cast<float>(std::numbers::pi); // opening angle of the shadow map, in radians
    float fShadowBias = 0.0f;
    float fShadowBlur = 0.0f;
    krLinear::ProjMatrix fShadowMatrix; // world to shadow map
    krLinear::Point fPosition;
    krLinear::Vector fDirection;
    krLinear::AffineMatrix fPlacement{0.0}; // light to world; all 0 until the light is placed
    bool fCastsShadows = false;
    std::int32_t fDecay = 0; // exponent of the falloff with distance
    LightType fLightType = kPointLight;
    std::array<float, 4> fEyePosition{0.0f, 0.0f, 1.0f, 0.0f}; // homogeneous, as drawing interfaces take it
    std::vector<float> fFalloff; // samples over the light's reach; if empty, the attenuations are used
    float fThresholdRadius = 0.0f;
};
