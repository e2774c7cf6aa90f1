#pragma once
#include "Material.h"

#include <krview/Progress.h>
#include <krview/gl/Texture.h>
#include <krview/picture/CubePyramid.h>
#include <krview/scene/Scene.h>

#include <krender/core/Ref.h>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

/// The surroundings behind the scene.
struct Background
{
    Ref<Texture> texture; ///< a cube map
    bool isUncoded;       ///< whether it is light that has yet to be coded, as the frame buffer does not do it
};

/// The textures of a scene, which are kept from load to load: a picture is read again when its file or its settings have
/// changed. An OpenGL context must be current.
class Pictures
{
public:
    /// Begins to hand out the textures of a scene.
    /// @param progress  is told what is read; borrowed, as are the files, until dropUnused()
    /// @param files     the picture files that are read or missing are appended
    void begin(const Scene& scene, Progress& progress, std::vector<std::string>& files);
    /// Drops what was not handed out since the beginning, or nothing where that never comes to this.
    void dropUnused();

    // These throw an InputError, a krTools::FileError and Cancelled.

    /// The texture of a sampler.
    /// @param value  null for none
    /// @param blur   of what is mirrored, 0 to 1
    [[nodiscard]] Ref<Texture> texture(const ProgramInput& input, const InputValue* value, float blur);
    /// What the background shows; without a texture if that is two colours.
    [[nodiscard]] Background background();

private:
    struct Kept
    {
        Ref<Texture> texture;
        bool isUsed;
    };

    void noteFiles(const NamedValue& picture);
    /// The one of this key, or a new one.
    Ref<Texture> kept(const std::string& key, const std::function<Ref<Texture>()>& make);
    [[nodiscard]] Ref<Texture> irradiance();
    [[nodiscard]] Ref<Texture> mirrored(float blur);
    /// Reads the surroundings and makes their texture, unless that is done.
    void readSurroundings();

    std::map<std::string, Kept> fTextures;
    std::optional<Environment> fEnvironment;
    bool fEncodes = false;
    std::string fWanted; ///< the key of the surroundings
    std::string fRead;   ///< the key of those that were read last
    Ref<Texture> fSurroundings;
    std::optional<CubePyramid> fLight; ///< the surroundings to be filtered
    bool fIsLight = false;             ///< whether the texture holds light and not codes
    Progress* fProgress = nullptr;
    std::vector<std::string>* fFiles = nullptr;
};
