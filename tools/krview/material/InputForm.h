#pragma once
#include "Material.h"

#include <krender/shading/DataType.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

/// How the panel and pages show an input: what its metadata say, and what suits its type.
struct InputForm
{
    enum class Widget
    {
        Numbers, ///< fields that are dragged, sliders where the ends are known
        Colour,
        CheckBox,
        Choice,
        Matrix,
        Picture,
        Stream, ///< of a per-vertex input
        None,   ///< there is nothing to choose
    };

    /// An end of a range; nothing: there is none.
    using End = std::optional<double>;

    struct Choice
    {
        std::string label;
        double value;
    };

    std::string name; ///< in scenes
    std::string label;
    std::string help; ///< may be empty, as the page
    std::string page;
    std::string light; ///< the key of its light; empty for an input of the material
    DataType type = kInvalidType;
    Widget widget = Widget::Numbers;
    std::size_t count = 0; ///< of numbers
    bool isWhole = false;
    End least; ///< of what makes sense
    End greatest;
    End sliderLeast; ///< of a slider; either both or none
    End sliderGreatest;
    std::vector<Choice> choices;
};

/// The forms of a material's inputs and those of its lights, in their order.
[[nodiscard]] std::vector<InputForm> inputForms(const Material& material);
