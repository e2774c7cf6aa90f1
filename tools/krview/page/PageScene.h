#pragma once
#include "PageBytes.h"
#include "PagePictures.h"

#include <krview/gl/FlatPainter.h>
#include <krview/material/InputForm.h>
#include <krview/material/Material.h>
#include <krview/material/ResolvedInputs.h>
#include <krview/mesh/Streams.h>

#include <krender/geometry/GeometryData.h>
#include <krender/geometry/GeometryDataIndex.h>
#include <krender/platform/Linear.h>

#include <nlohmann/json.hpp>

#include <array>
#include <cstddef>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

/// What a page shows, as the page's script reads it: programs, pictures, streams, looks (a program with values for its
/// inputs) and objects (a list of primitives with a look), in the order in which they are drawn. Streams and lists are
/// known by their addresses, so they must live as long as this.
class PageScene
{
public:
    /// @param scene  borrowed
    explicit PageScene(const Scene& scene) : fEncodes(scene.encodes), fPictures(scene, fBytes) {}
    PageScene(const PageScene&) = delete;
    PageScene& operator=(const PageScene&) = delete;

    /// What else the script asks for: the view, the samples.
    void set(const char* name, nlohmann::ordered_json value) { fScene[name] = std::move(value); }

    /// Names the light that casts shadows, ahead of the looks.
    void setShadow(PageShadow shadow);

    /// Adds the programs of a material in ESSL 3.00.
    /// @return  the number of the program
    [[nodiscard]] std::size_t addProgram(const Material& material);
    /// Adds values for a program's inputs, unless the same are there, and controls for them. Throws an InputError and a
    /// krTools::FileError for pictures.
    /// @param name  the title of its controls
    /// @return  the number of the look
    [[nodiscard]] std::size_t addLook(const std::string& name, std::size_t program, const ResolvedInputs& inputs);

    /// A surface of a mesh.
    struct Surface
    {
        std::size_t look;
        const ResolvedInputs& inputs;
        const Material& material;
        const Groups& groups;
        std::vector<krLinear::AffineMatrix> places; ///< from object to scene space
        bool isTransparent;
        bool castsShadow;
    };
    void addSurface(const Surface& surface);

    /// Adds a drawing of plain colours, as a colour picker shows them.
    /// @param mode        a name of WebGL, of triangles or lines
    /// @param isOnScreen  whether the places are in clip space; else it is drawn over all surfaces that are behind it
    void addFlat(const char* mode, std::span<const FlatVertex> vertices, bool isOnScreen);
    /// Adds the edges of a surface in one colour.
    void addEdges(const Groups& groups, const std::array<float, 3>& color,
                  const std::vector<krLinear::AffineMatrix>& places);

    /// Adds the surroundings behind everything, if they are shown. Throws as addLook() does.
    [[nodiscard]] bool addSky();

    /// All of it for the page, at the end. Throws a std::length_error when it is too much.
    [[nodiscard]] std::string packed();

private:
    using Json = nlohmann::ordered_json;

    [[nodiscard]] std::size_t stream(const GeometryData& stream);
    [[nodiscard]] std::size_t list(const GeometryDataIndex& list, unsigned corners);
    /// Adds what of a look tells what the light that casts shadows sees, and what gets it.
    void addShadowInputs(std::size_t look, const ResolvedInputs& inputs);
    void addControls(const std::string& name, std::size_t look, const ResolvedInputs& inputs);
    [[nodiscard]] std::size_t ownLook(Json program, Json values);
    void addObject(std::size_t look, const char* mode, std::size_t list, std::size_t count, Json inputs,
                   const std::vector<krLinear::AffineMatrix>& places);

    bool fEncodes;
    PageBytes fBytes;
    PagePictures fPictures;
    std::optional<PageShadow> fShadow;
    Json fScene = {{"shadow", {{"light", nullptr}}}};
    Json fPrograms = Json::array();
    std::map<std::size_t, std::vector<InputForm>> fForms; ///< of the programs of materials
    Json fStreams = Json::array();
    Json fLooks = Json::array();
    Json fObjects = Json::array();
    std::map<const void*, std::size_t> fKnown; ///< streams and lists that are in fStreams
    Json fPanel = Json::array();
    /// Where the panel has a control: the group and the row, by what all that share it have in common.
    std::map<std::string, std::pair<std::size_t, std::size_t>> fControls;
};
