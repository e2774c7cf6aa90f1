#pragma once
#include <krview/scene/Scene.h>

#include <string>
#include <vector>

/// A light that can be added to a scene.
struct LightChoice
{
    std::string function;
    std::string file; ///< empty: the function is in a material's file or a library
};

/// The lights of the scene's materials and libraries, then those that come with krview in files of their own.
[[nodiscard]] std::vector<LightChoice> lightChoices(const Scene& scene);

/// A key for a light of that function that no light has yet.
[[nodiscard]] std::string newLightKey(const std::vector<krTools::LightName>& lights, const std::string& function);
