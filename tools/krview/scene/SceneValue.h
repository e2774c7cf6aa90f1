#pragma once
#include "InputError.h"
#include "SceneText.h"

#include <cstddef>
#include <functional>
#include <map>
#include <span>
#include <string>
#include <vector>

/// A value in a scene file and its path. A value that does not fit throws an InputError that names the path.
class SceneValue
{
public:
    /// Reads one value.
    using Reader = std::function<void(const SceneValue&)>;

    /// @param scene  borrowed, as is the value
    /// @param path   where the value stands, such as "lights[0].key"; empty for the whole file
    SceneValue(const SceneText& scene, const PlacedValue& value, std::string path);

    [[noreturn]] void fail(const std::string& text) const;
    [[nodiscard]] const std::string& file() const noexcept { return fScene.source->name(); }
    [[nodiscard]] const std::string& path() const noexcept { return fPath; }
    [[nodiscard]] InputPlace place() const { return placeOf(fValue.position); }

    [[nodiscard]] bool isText() const noexcept;
    [[nodiscard]] bool isObject() const noexcept;
    [[nodiscard]] bool isList() const noexcept;

    [[nodiscard]] double number(double least, double greatest) const;
    [[nodiscard]] unsigned wholeNumber(unsigned least, unsigned greatest) const;
    [[nodiscard]] bool truth() const;
    [[nodiscard]] std::string text() const;
    /// One of some names, as its place among them.
    [[nodiscard]] std::size_t choice(std::span<const char* const> names) const;
    /// A number, a truth value or a list of either.
    [[nodiscard]] std::vector<double> numbers() const;
    /// A list of `count` numbers, each from -1000000 to 1000000.
    [[nodiscard]] std::vector<double> numbers(std::size_t count) const;
    /// Calls `read` with the items of a list, in order.
    void forEachItem(const Reader& read) const;
    /// Calls `read` with the name and value of each member of an object.
    void forEachMember(const std::function<void(const std::string&, const SceneValue&)>& read) const;
    /// Calls the reader of its name with each member of an object; a member without a reader is an error.
    void readMembers(const std::map<std::string, Reader>& readers) const;
    /// Whether an object has a member of that name.
    [[nodiscard]] bool has(const std::string& name) const;

private:
    [[noreturn]] void failType(const char* expected) const;
    [[nodiscard]] bool isNumber() const noexcept;
    [[nodiscard]] InputPlace placeOf(std::size_t position) const { return {file(), fScene.source, position}; }
    [[nodiscard]] std::string pathOf(const std::string& name) const
    {
        return fPath.empty() ? name : fPath + '.' + name;
    }

    const SceneText& fScene;
    const PlacedValue& fValue;
    std::string fPath;
};
