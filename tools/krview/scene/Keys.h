#pragma once
#include "Scene.h"
#include "SceneValue.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

/// A key of an object in a scene file, and how its value gets into the field that it stands for and out of it. The field
/// is borrowed.
struct Key
{
    using Json = nlohmann::ordered_json;

    std::string name;
    SceneValue::Reader read;
    /// Gives the value of the field; null where the file needs to say nothing. Files are named relative to the folder.
    std::function<Json(const std::string& folder)> write;
};

/// The most objects in a list, parts of an object, and inputs in one place.
inline constexpr std::size_t kMostListed = 1000;

/// The keys of an object, in the order in which new files have them.
using Keys = std::vector<Key>;

/// Reads an object; a member that is none of the keys is an error.
void readKeys(const SceneValue& value, const Keys& keys);

/// An object of all keys with their values.
[[nodiscard]] Key::Json writtenKeys(const Keys& keys, const std::string& folder);
/// The same without what `blank`, an object of the same keys, says too.
[[nodiscard]] Key::Json writtenKeys(const Keys& keys, const Keys& blank, const std::string& folder);

/// What stands for an object in a file: its "picture" alone if it has no other key.
[[nodiscard]] Key::Json shortened(Key::Json object);

/// The keys of a picture that is more than a name.
[[nodiscard]] Keys pictureKeys(NamedValue& picture);

/// Reads the value of an input: numbers, a truth value, a name or a picture.
[[nodiscard]] InputValue readInput(const SceneValue& value);

[[nodiscard]] Key truthKey(const char* name, bool& field);
[[nodiscard]] Key truthKey(const char* name, std::optional<bool>& field);
[[nodiscard]] Key numberKey(const char* name, float& field, double least, double greatest);
[[nodiscard]] Key numberKey(const char* name, double& field, double least, double greatest);
[[nodiscard]] Key wholeNumberKey(const char* name, unsigned& field, unsigned least, unsigned greatest);
[[nodiscard]] Key textKey(const char* name, std::string& field);
/// Three numbers.
[[nodiscard]] Key tripleKey(const char* name, std::array<double, 3>& field);
[[nodiscard]] Key colourKey(const char* name, std::array<float, 3>& field);
/// An object with keys of its own.
[[nodiscard]] Key groupKey(const char* name, const Keys& keys);

/// A file; the field is empty for none.
[[nodiscard]] Key fileKey(const char* name, std::string& field);
[[nodiscard]] Key filesKey(const char* name, std::vector<std::string>& field);
/// FILE or FILE:NAME; empty for none.
[[nodiscard]] Key materialKey(const char* name, std::string& field);
[[nodiscard]] Key pictureKey(const char* name, NamedValue& field);
[[nodiscard]] Key inputsKey(const char* name, InputValues& field);

/// One of some names; the field has its place among them.
template <class Choice, std::size_t Count>
Key choiceKey(const char* name, Choice& field, const std::array<const char*, Count>& names)
{
    return {name,
            [&field, &names](const SceneValue& v) {
                field = static_cast<Choice>(v.choice({names.begin(), names.end()}));
            },
            [&field, &names](const std::string&) { return Key::Json(names[static_cast<std::size_t>(field)]); }};
}

template <class Choice, std::size_t Count>
Key choiceKey(const char* name, std::optional<Choice>& field, const std::array<const char*, Count>& names)
{
    return {name,
            [&field, &names](const SceneValue& v) {
                field = static_cast<Choice>(v.choice({names.begin(), names.end()}));
            },
            [&field, &names](const std::string&)
            { return field ? Key::Json(names[static_cast<std::size_t>(*field)]) : Key::Json(); }};
}

/// A list of objects.
/// @param keysOf   gives the keys of an item: `keysOf(item)`
/// @param settle   checks and completes the last item when it is read: `settle(value, items)`
/// @param blankOf  gives an item that says nothing, for the place of another: `blankOf(item, index)`
template <class Item, class KeysOf, class Settle, class BlankOf>
Key listKey(const char* name, std::optional<std::vector<Item>>& field, KeysOf keysOf, Settle settle, BlankOf blankOf)
{
    const auto read = [&field, keysOf, settle](const SceneValue& list)
    {
        field.emplace();
        list.forEachItem(
            [&](const SceneValue& value)
            {
                if (field->size() == kMostListed)
                    list.fail("more than 1000 of them");
                readKeys(value, keysOf(field->emplace_back()));
                settle(value, *field);
            });
    };
    const auto write = [&field, keysOf, blankOf](const std::string& folder)
    {
        Key::Json list = field ? Key::Json::array() : Key::Json();
        for (std::size_t i = 0; field && i < field->size(); ++i)
        {
            Item blank = blankOf((*field)[i], i);
            list.push_back(writtenKeys(keysOf((*field)[i]), keysOf(blank), folder));
        }
        return list;
    };
    return {name, read, write};
}
