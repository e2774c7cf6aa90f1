#include "SceneValue.h"

#include "InputError.h"

#include <common/Findings.h>

#include <krender/frontend/NearNames.h>

#include <nlohmann/json.hpp>

#include <utility>

namespace
{

/// A number in as few digits as it needs.
std::string written(double number) { return nlohmann::json(number).dump(); }

} // namespace

SceneValue::SceneValue(const std::string& file, const nlohmann::json& value, std::string path)
    : fFile(file), fValue(value), fPath(std::move(path))
{
}

void SceneValue::fail(const std::string& text) const
{
    throw InputError(fFile, fPath.empty() ? text : fPath + ": " + text);
}

void SceneValue::failType(const char* expected) const
{
    fail(std::string(expected) + " is wanted here, and not " +
         (fValue.is_null() ? "null" : std::string("a value of type ") + fValue.type_name()));
}

bool SceneValue::isText() const noexcept { return fValue.is_string(); }

bool SceneValue::isObject() const noexcept { return fValue.is_object(); }

double SceneValue::number(double least, double greatest) const
{
    if (!fValue.is_number())
        failType("a number");
    const auto number = fValue.get<double>();
    if (!(number >= least && number <= greatest))
        fail("a number from " + written(least) + " to " + written(greatest) + " is wanted here, and not " +
             written(number));
    return number;
}

unsigned SceneValue::wholeNumber(unsigned least, unsigned greatest) const
{
    if (!fValue.is_number_integer())
        failType("a whole number");
    return static_cast<unsigned>(number(least, greatest));
}

bool SceneValue::truth() const
{
    if (!fValue.is_boolean())
        failType("true or false");
    return fValue.get<bool>();
}

std::string SceneValue::text() const
{
    if (!fValue.is_string())
        failType("a text");
    return fValue.get<std::string>();
}

std::vector<double> SceneValue::numbers() const
{
    if (fValue.is_number())
        return {fValue.get<double>()};
    if (fValue.is_boolean())
        return {fValue.get<bool>() ? 1.0 : 0.0};
    if (!fValue.is_array())
        failType("a number or a list of numbers");
    std::vector<double> numbers;
    forEachItem(
        [&numbers](const SceneValue& item)
        {
            if (!item.fValue.is_number())
                item.failType("a number");
            numbers.push_back(item.fValue.get<double>());
        });
    return numbers;
}

std::vector<double> SceneValue::numbers(std::size_t count) const
{
    if (!fValue.is_array() || fValue.size() != count)
        fail("a list of " + std::to_string(count) + " numbers is wanted here");
    constexpr double kGreatest = 1000000;
    std::vector<double> numbers;
    forEachItem([&numbers](const SceneValue& item) { numbers.push_back(item.number(-kGreatest, kGreatest)); });
    return numbers;
}

void SceneValue::forEachItem(const Reader& read) const
{
    if (!fValue.is_array())
        failType("a list");
    for (std::size_t i = 0; i < fValue.size(); ++i)
        read(SceneValue(fFile, fValue[i], fPath + '[' + std::to_string(i) + ']'));
}

void SceneValue::forEachMember(const std::function<void(const std::string&, const SceneValue&)>& read) const
{
    if (!fValue.is_object())
        failType("an object");
    for (const auto& [name, value] : fValue.items())
        read(name, SceneValue(fFile, value, fPath.empty() ? name : fPath + '.' + name));
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
            fail("unknown key " + krTools::inQuotes(name) + krFrontend::didYouMean(name, names));
        });
}
