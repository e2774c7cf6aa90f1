#pragma once
#include "Material.h"

#include <krview/scene/Scene.h>

#include <krender/core/Ref.h>
#include <krender/pixels/IHWTexture.h>
#include <krender/pixels/IPixelArray.h>
#include <krender/pixels/PixelArray2D.h>
#include <krender/pixels/PixelArrayCubeMap.h>

#include <optional>
#include <string>
#include <vector>

// What samplers read, without a driver.

/// The picture of a sampler.
struct PictureInput
{
    IHWTexture::TextureType type;
    NamedValue picture; ///< without a name and faces: the built-in one of the type
    /// Whether 8-bit pixels are codes, whose meanings the program gets. It does in scenes whose frame buffer codes what
    /// materials write, for pictures of two dimensions and of directions: as the value says, else the metadata of the
    /// input, else its name. Names that speak of other things than colours (normal, height, rough, mask, ...) and
    /// normals that are made of heights are not decoded.
    bool decodes;
};

/// Chooses the picture of a sampler. Throws an InputError for a value that does not fit.
/// @param value    null for none; a cube map without one shows the surroundings
/// @param encodes  whether the frame buffer codes what materials write
[[nodiscard]] PictureInput pictureInput(const ProgramInput& input, const InputValue* value, bool encodes);

/// The files that a picture is read from.
[[nodiscard]] std::vector<std::string> filesOf(const NamedValue& picture);

/// Reads or makes a picture. Throws a krTools::FileError for a file that cannot be read, and a PictureError for one that
/// there is not, or does not fit.
/// @param greatestSide  larger ones are made smaller
/// @return  of the class that the type wants; in lightFormat() if it holds light, in pictureFormat() otherwise
[[nodiscard]] Ref<IPixelArray> pixelsOf(const PictureInput& input, unsigned greatestSide);

/// What is around a scene.
struct Surroundings
{
    Ref<PixelArrayCubeMap> cube; ///< in pictureFormat() or lightFormat()
    bool isLight;                ///< whether its numbers are light and not codes
};

/// What is around a scene without an environment.
[[nodiscard]] Surroundings builtInSurroundings();

/// Reads or makes a picture of surroundings and puts it around the scene. Throws as pixelsOf() does.
/// @param encodes  whether the frame buffer codes what materials write, so that codes are decoded
/// @return  in lightFormat()
[[nodiscard]] Surroundings surroundingsOf(const Environment& environment, bool encodes);
