#include "SceneValue.h"

#include <common/PrintedMessage.h>

#include <krender/frontend/NearNames.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <set>
#include <string_view>
#include <utility>

using Kind = PlacedValue::Kind;

namespace
{

/// A number in as few digits as it needs.
std::string written(double number) { return nlohmann::json(number).dump(); }

/// What a value of each kind is called in messages.
constexpr std::array kKindNames{"null", "true or false", "a number", "a number", "a text", "a list", "an object"};
static_assert(kKindNames.size() == static_cast<std::size_t>(Kind::Object) + 1);

} // namespace

SceneValue::SceneValue(const SceneText& scene, const PlacedValue& value, std::string path)
    : fScene(scene), fValue(value), fPath(std::move(path))
{
}

void SceneValue::fail(const std::string& text) const
{
    throw InputError(place(), fPath.empty() ? text : fPath + ": " + text);
}

void SceneValue::failType(const char* expected) const
{
    fail(std::string(expected) + " is wanted here, and not " +
         (isNumber() ? written(fValue.number) : kKindNames[static_cast<std::size_t>(fValue.kind)]));
}

bool SceneValue::isNumber() const noexcept { return fValue.kind == Kind::Number || fValue.kind == Kind::WholeNumber; }

bool SceneValue::isText() const noexcept { return fValue.kind == Kind::Text; }

bool SceneValue::isObject() const noexcept { return fValue.kind == Kind::Object; }

bool SceneValue::isList() const noexcept { return fValue.kind == Kind::List; }

bool SceneValue::has(const std::string& name) const
{
    return std::any_of(fValue.members.begin(), fValue.members.end(),
                       [&name](const PlacedValue& member) { return member.name == name; });
}

double SceneValue::number(double least, double greatest) const
{
    if (!isNumber())
        failType("a number");
    if (!(fValue.number >= least && fValue.number <= greatest))
        fail("a number from " + written(least) + " to " + written(greatest) + " is wanted here, and not " +
             written(fValue.number));
    return fValue.number;
}

unsigned SceneValue::wholeNumber(unsigned least, unsigned greatest) const
{
    if (fValue.kind != Kind::WholeNumber)
        failType("a whole number");
    return static_cast<unsigned>(number(least, greatest));
}

bool SceneValue::truth() const
{
    if (fValue.kind != Kind::Truth)
        failType("true or false");
    return fValue.number != 0;
}

std::string SceneValue::text() const
{
    if (!isText())
        failType("a text");
    return fValue.text;
}

std::size_t SceneValue::choice(std::span<const char* const> names) const
{
    const auto found = std::find(names.begin(), names.end(), text());
    if (found != names.end())
        return static_cast<std::size_t>(found - names.begin());
    std::string all;
    for (std::size_t i = 0; i < names.size(); ++i)
        all += (i == 0 ? "" : i + 1 == names.size() ? " or " : ", ") + std::string(names[i]);
    fail("one of these is wanted here: " + all);
}

std::vector<double> SceneValue::numbers() const
{
    if (isNumber() || fValue.kind == Kind::Truth)
        return {fValue.number};
    if (fValue.kind != Kind::List)
        failType("a number or a list of numbers");
    std::vector<double> numbers;
    forEachItem(
        [&numbers](const SceneValue& item)
        {
            if (!item.isNumber())
                item.failType("a number");
            numbers.push_back(item.fValue.number);
        });
    return numbers;
}

std::vector<double> SceneValue::numbers(std::size_t count) const
{
    if (fValue.kind != Kind::List || fValue.members.size() != count)
        fail("a list of " + std::to_string(count) + " numbers is wanted here");
    constexpr double kGreatest = 1000000;
    std::vector<double> numbers;
    forEachItem([&numbers](const SceneValue& item) { numbers.push_back(item.number(-kGreatest, kGreatest)); });
    return numbers;
}

void SceneValue::forEachItem(const Reader& read) const
{
    if (fValue.kind != Kind::List)
        failType("a list");
    for (std::size_t i = 0; i < fValue.members.size(); ++i)
        read(SceneValue(fScene, fValue.members[i], fPath + '[' + std::to_string(i) + ']'));
}

void SceneValue::forEachMember(const std::function<void(const std::string&, const SceneValue&)>& read) const
{
    if (!isObject())
        failType("an object");
    std::set<std::string_view> names;
    for (const PlacedValue& value : fValue.members)
    {
        if (!names.insert(value.name).second)
            throw InputError(placeOf(value.keyPosition), pathOf(value.name) + ": this is given twice");
        read(value.name, SceneValue(fScene, value, pathOf(value.name)));
    }
}

void SceneValue::readMembers(const std::map<std::string, Reader>& readers) const
{
    forEachMember(
        [&](const std::string& name, const SceneValue& value)
        {
            if (const auto found = readers.find(name); found != readers.end())
                return found->second(value);
            std::vector<std::string> names;
            names.reserve(readers.size());
            for (const auto& [known, reader] : readers)
                names.push_back(known);
            throw InputError(placeOf(value.fValue.keyPosition), (fPath.empty() ? "" : fPath + ": ") + "unknown key " +
                                                                    krTools::inQuotes(name) +
                                                                    krFrontend::didYouMean(name, names));
        });
}
