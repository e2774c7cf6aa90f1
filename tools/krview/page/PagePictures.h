#pragma once
#include "PageBytes.h"

#include <krview/material/Material.h>
#include <krview/material/PictureInput.h>
#include <krview/picture/CubePyramid.h>
#include <krview/scene/Scene.h>
#include <krview/stage/ShadowLight.h>

#include <krender/core/Ref.h>
#include <krender/pixels/PixelArray2D.h>
#include <krender/pixels/PixelArrayCubeMap.h>

#include <nlohmann/json.hpp>

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// The shadows that a light casts in a page.
struct PageShadow
{
    std::string light; ///< its key
    unsigned size;     ///< of the depth map, pixels on each side
    Ball casters;      ///< all that casts shadows
    Ball all;          ///< and all that gets them
};

/// The pictures of a page, each once.
class PagePictures
{
public:
    /// Everything is borrowed.
    /// @param bytes  gets the pictures' own
    PagePictures(const Scene& scene, PageBytes& bytes) : fScene(scene), fBytes(bytes) {}

    // These throw an InputError and a krTools::FileError. Each returns the number of the picture.

    /// The picture of a sampler.
    /// @param value   null for none
    /// @param blur    of the surroundings, 0 to 1
    /// @param shadow  null for none
    [[nodiscard]] std::size_t add(const ProgramInput& input, const InputValue* value, float blur,
                                  const PageShadow* shadow);
    /// The depths that a light sees.
    /// @param shadow  null for a light that casts none
    [[nodiscard]] std::size_t addDepths(const PageShadow* shadow);
    /// What the background shows, and whether it is light that has yet to be coded; nothing if that is two colours.
    [[nodiscard]] std::optional<std::pair<std::size_t, bool>> addBackground();

    [[nodiscard]] const nlohmann::ordered_json& all() const noexcept { return fAll; }

private:
    using Json = nlohmann::ordered_json;

    [[nodiscard]] std::size_t put(Json picture);
    [[nodiscard]] std::size_t addFile(const PictureInput& input);
    [[nodiscard]] std::size_t addSurroundings(const std::string& kind, float blur);
    [[nodiscard]] std::size_t addCube(const PixelArrayCubeMap& cube, bool isCoded, Filter filter);
    /// Adds the pixels of faces of 8 bits or of light, and sets the format.
    void addFaces(Json& picture, const IPixelArray& pixels, bool isCoded);
    void addCodes(Json& picture, const unsigned char* codes, unsigned width, unsigned height);
    void addLight(Json& picture, const char* face, std::vector<float> level, unsigned width, unsigned height);
    void readSurroundings();

    const Scene& fScene;
    PageBytes& fBytes;
    Json fAll = Json::array();
    std::optional<Surroundings> fSurroundings;
    std::optional<CubePyramid> fLight; ///< the surroundings to be filtered
};
