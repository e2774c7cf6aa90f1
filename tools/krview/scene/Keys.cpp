#include "Keys.h"

#include <krview/mesh/Streams.h>
#include <krview/picture/BuiltInPictures.h>

#include <common/SourceNames.h>

#include <charconv>
#include <filesystem>
#include <map>
#include <set>
#include <system_error>
#include <utility>
#include <variant>

namespace fs = std::filesystem;

using Json = Key::Json;

namespace
{

/// A file that the scene names relative to its own folder. Fails when there is no such file.
std::string fileOf(const SceneValue& value, const std::string& name)
{
    std::string path = (fs::path(value.file()).parent_path() / name).lexically_normal().string();
    std::error_code failure;
    if (!fs::is_regular_file(path, failure))
        value.fail("there is no file '" + path + "'");
    return path;
}

std::string materialOf(const SceneValue& value)
{
    const krTools::MaterialName name = krTools::materialName(value.text());
    return fileOf(value, name.file) + (name.function.empty() ? "" : ":" + name.function);
}

/// How a scene in the folder names a file.
std::string nameFrom(const std::string& folder, const std::string& path)
{
    const auto absolute = [](const fs::path& p) { return fs::absolute(p).lexically_normal(); };
    return absolute(path).lexically_relative(absolute(folder.empty() ? "." : folder)).string();
}

/// How a scene in the folder names the picture of a name that stands in another scene.
std::string pictureFrom(const std::string& folder, const NamedValue& value, const std::string& name)
{
    const auto contains = [&name](const std::vector<std::string>& names)
    { return std::find(names.begin(), names.end(), name) != names.end(); };
    const std::string path = (fs::path(value.directory) / name).string();
    std::error_code failure;
    const bool isFile =
        !contains(builtInPictureNames()) && !contains(streamNames()) && fs::is_regular_file(path, failure);
    return isFile ? nameFrom(folder, path) : name;
}

/// The number that as few digits as tell it from other floats stand for, if it is a float: 0.3, and not 0.30000001.
double shortest(double number)
{
    const auto single = static_cast<float>(number);
    if (single != number)
        return number;
    std::array<char, 32> digits{};
    const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), single).ptr;
    double read = number;
    std::from_chars(digits.data(), end, read);
    return read;
}

template <class Numbers>
Json listOf(const Numbers& numbers)
{
    Json list = Json::array();
    for (const double number : numbers)
        list.push_back(shortest(number));
    return list;
}

Json writtenText(const std::string& text) { return text.empty() ? Json() : Json(text); }

/// The bounds may be floats.
template <class Number>
Key anyNumberKey(const char* name, Number& field, double least, double greatest)
{
    return {name,
            [&field, least = shortest(least), greatest = shortest(greatest)](const SceneValue& v)
            { field = static_cast<Number>(v.number(least, greatest)); },
            [&field](const std::string&) { return Json(shortest(field)); }};
}

template <class Number>
Key anyTripleKey(const char* name, std::array<Number, 3>& field)
{
    return {name,
            [&field](const SceneValue& v)
            {
                const std::vector<double> numbers = v.numbers(field.size());
                std::transform(numbers.begin(), numbers.end(), field.begin(),
                               [](double number) { return static_cast<Number>(number); });
            },
            [&field](const std::string&) { return listOf(field); }};
}

/// What `value` says and `blank` does not.
Json without(const Json& value, const Json& blank)
{
    if (!value.is_object() || !blank.is_object())
        return value;
    Json rest = Json::object();
    for (const auto& [key, item] : value.items())
        if (!blank.contains(key) || blank[key] != item)
            rest[key] = blank.contains(key) ? without(item, blank[key]) : item;
    return rest;
}

NamedValue newPicture(const SceneValue& value) { return {"", fs::path(value.file()).parent_path().string(), 0}; }

NamedValue readPicture(const SceneValue& value)
{
    NamedValue picture = newPicture(value);
    if (value.isText())
    {
        picture.name = value.text();
        return picture;
    }
    readKeys(value, pictureKeys(picture));
    if (picture.faces.empty() == picture.name.empty())
        value.fail(picture.name.empty() ? "a \"picture\" is missing" : "a \"picture\" or its \"faces\" are wanted");
    return picture;
}

Json writtenPicture(NamedValue picture, const std::string& folder)
{
    NamedValue blank;
    return shortened(writtenKeys(pictureKeys(picture), pictureKeys(blank), folder));
}

Json writtenInput(const InputValue& input, const std::string& folder)
{
    if (const auto* named = std::get_if<NamedValue>(&input.value))
        return writtenPicture(*named, folder);
    const auto& numbers = std::get<std::vector<double>>(input.value);
    return numbers.size() == 1 ? Json(shortest(numbers.front())) : listOf(numbers);
}

} // namespace

Keys pictureKeys(NamedValue& picture)
{
    const Key faces{"faces",
                    [&picture](const SceneValue& v)
                    {
                        constexpr std::size_t kFaces = 6;
                        v.forEachItem([&](const SceneValue& face) { picture.faces.push_back(face.text()); });
                        if (picture.faces.size() != kFaces)
                            v.fail("six pictures are wanted here: +x, -x, +y, -y, +z, -z");
                    },
                    [&picture](const std::string& folder)
                    {
                        Json list;
                        for (const std::string& face : picture.faces)
                            list.push_back(pictureFrom(folder, picture, face));
                        return list;
                    }};
    const Key name{"picture", [&picture](const SceneValue& v) { picture.name = v.text(); },
                   [&picture](const std::string& folder)
                   { return writtenText(pictureFrom(folder, picture, picture.name)); }};
    return {name,
            faces,
            numberKey("normalMap", picture.normalScale, -1000, 1000),
            choiceKey("wrap", picture.wrap, kWrapNames),
            choiceKey("filter", picture.filter, kFilterNames),
            truthKey("coded", picture.isCoded)};
}

InputValue readInput(const SceneValue& value)
{
    InputValue input{{}, value.place(), value.path()};
    if (value.isText() || value.isObject())
        input.value = readPicture(value);
    else
        input.value = value.numbers();
    return input;
}

void readKeys(const SceneValue& value, const Keys& keys)
{
    std::map<std::string, SceneValue::Reader> readers;
    for (const Key& key : keys)
        readers.emplace(key.name, key.read);
    value.readMembers(readers);
}

Json writtenKeys(const Keys& keys, const std::string& folder)
{
    Json object = Json::object();
    for (const Key& key : keys)
        if (Json value = key.write(folder); !value.is_null())
            object[key.name] = std::move(value);
    return object;
}

Json writtenKeys(const Keys& keys, const Keys& blank, const std::string& folder)
{
    return without(writtenKeys(keys, folder), writtenKeys(blank, folder));
}

Json shortened(Json object)
{
    return object.size() == 1 && object.contains("picture") && object["picture"].is_string() ? object["picture"]
                                                                                             : object;
}

Key truthKey(const char* name, bool& field)
{
    return {name, [&field](const SceneValue& v) { field = v.truth(); },
            [&field](const std::string&) { return Json(field); }};
}

Key truthKey(const char* name, std::optional<bool>& field)
{
    return {name, [&field](const SceneValue& v) { field = v.truth(); },
            [&field](const std::string&) { return field ? Json(*field) : Json(); }};
}

Key numberKey(const char* name, float& field, double least, double greatest)
{
    return anyNumberKey(name, field, least, greatest);
}

Key numberKey(const char* name, double& field, double least, double greatest)
{
    return anyNumberKey(name, field, least, greatest);
}

Key wholeNumberKey(const char* name, unsigned& field, unsigned least, unsigned greatest)
{
    return {name, [&field, least, greatest](const SceneValue& v) { field = v.wholeNumber(least, greatest); },
            [&field](const std::string&) { return Json(field); }};
}

Key textKey(const char* name, std::string& field)
{
    return {name, [&field](const SceneValue& v) { field = v.text(); },
            [&field](const std::string&) { return writtenText(field); }};
}

Key tripleKey(const char* name, std::array<double, 3>& field) { return anyTripleKey(name, field); }

Key colourKey(const char* name, std::array<float, 3>& field) { return anyTripleKey(name, field); }

Key groupKey(const char* name, const Keys& keys)
{
    return {name, [keys](const SceneValue& v) { readKeys(v, keys); },
            [keys](const std::string& folder) { return writtenKeys(keys, folder); }};
}

Key fileKey(const char* name, std::string& field)
{
    return {name, [&field](const SceneValue& v) { field = fileOf(v, v.text()); },
            [&field](const std::string& folder) { return field.empty() ? Json() : Json(nameFrom(folder, field)); }};
}

Key filesKey(const char* name, std::vector<std::string>& field)
{
    return {name,
            [&field](const SceneValue& v)
            { v.forEachItem([&](const SceneValue& item) { field.push_back(fileOf(item, item.text())); }); },
            [&field](const std::string& folder)
            {
                Json list;
                for (const std::string& path : field)
                    list.push_back(nameFrom(folder, path));
                return list;
            }};
}

Key materialKey(const char* name, std::string& field)
{
    return {name, [&field](const SceneValue& v) { field = materialOf(v); },
            [&field](const std::string& folder)
            {
                const krTools::MaterialName material = krTools::materialName(field);
                return field.empty() ? Json()
                                     : Json(nameFrom(folder, material.file) +
                                            (material.function.empty() ? "" : ":" + material.function));
            }};
}

Key pictureKey(const char* name, NamedValue& field)
{
    return {name, [&field](const SceneValue& v) { field = readPicture(v); },
            [&field](const std::string& folder)
            { return field.name.empty() && field.faces.empty() ? Json() : writtenPicture(field, folder); }};
}

Key inputsKey(const char* name, InputValues& field)
{
    return {name,
            [&field](const SceneValue& all)
            {
                all.forEachMember(
                    [&](const std::string& input, const SceneValue& value)
                    {
                        field[input] = readInput(value);
                        if (field.size() > kMostListed)
                            all.fail("more than 1000 inputs");
                    });
            },
            [&field](const std::string& folder)
            {
                Json inputs;
                for (const auto& [input, value] : field)
                    inputs[input] = writtenInput(value, folder);
                return inputs;
            }};
}
