#pragma once
#include "Scenes.h"

#include <krender/frontend/Interface.h>

#include <cstdint>
#include <map>
#include <vector>

/// A small picture drawn by the system's OpenGL, without a window. It shows a sphere, with the same values for everything
/// that a program asks for by name, so that two programs can be compared.
class Canvas
{
public:
    static constexpr int kSize = 96;

    /// What the programs are written for: GLSL 1.20, GLSL 3.30 without what is older, or ESSL 3.00.
    enum class Api
    {
        Compatibility,
        Core,
        Embedded,
    };

    /// Throws std::runtime_error when there is no OpenGL to be had.
    explicit Canvas(Api api = Api::Compatibility);
    ~Canvas();
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    /// The pixels, four bytes each, of the sphere drawn with a pair of GLSL programs. Throws std::runtime_error with
    /// the driver's messages when they do not compile or link.
    /// @param names  which names of the programs stand for others, whose values they get
    [[nodiscard]] std::vector<std::uint8_t> draw(const scenes::Programs& programs,
                                                 const std::map<std::string, std::string>& names = {});

    /// The same of programs with a uniform block, which gets its bytes as the interface says.
    [[nodiscard]] std::vector<std::uint8_t> draw(const scenes::Programs& programs,
                                                 const krFrontend::ProgramInterface& interface);

private:
    void makeCurrent();
    [[nodiscard]] static std::vector<std::uint8_t> pixels();

    Api fApi;
    void* fDisplay = nullptr;
    void* fContext = nullptr;
};
