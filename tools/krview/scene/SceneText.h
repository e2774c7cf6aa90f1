#pragma once
#include <common/Source.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

/// A value of a scene file and its place.
struct PlacedValue
{
    enum class Kind
    {
        Null,
        Truth,
        Number,
        WholeNumber,
        Text,
        List,
        Object,
    };

    Kind kind = Kind::Null;
    std::size_t position = 0;    ///< byte index into the file
    std::size_t end = 0;         ///< one past its last byte
    std::size_t keyPosition = 0; ///< of its name, if it is a member of an object
    double number = 0;           ///< also of a truth value: 0 or 1
    std::string text;
    std::string name;                 ///< of a member of an object
    std::vector<PlacedValue> members; ///< of a list or an object, in the file's order
};

/// A scene file, read whole.
struct SceneText
{
    std::shared_ptr<const krTools::Source> source;
    PlacedValue root;
};

/// Reads a file as JSON. Throws an InputError with its place, and a krTools::FileError. The file may have 1 MB, and its
/// lists and objects may stand 64 deep in each other: what is read of it takes some hundred times its bytes at most.
[[nodiscard]] SceneText readSceneText(const std::string& path);
/// The same with a text that is in memory.
[[nodiscard]] SceneText readSceneText(std::shared_ptr<const krTools::Source> source);
