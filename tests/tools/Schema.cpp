#include "Schema.h"

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <regex>

using nlohmann::json;

namespace
{

bool isOfType(const json& value, const std::string& type)
{
    return (type == "integer" && value.is_number_integer()) || (type == "number" && value.is_number()) ||
           type == value.type_name();
}

bool isOfAnyType(const json& value, const json& types)
{
    if (types.is_string())
        return isOfType(value, types);
    return std::any_of(types.begin(), types.end(), [&value](const json& type) { return isOfType(value, type); });
}

/// Holds values against parts of one schema.
class Checker
{
public:
    explicit Checker(const json& root) : fRoot(root) {}

    [[nodiscard]] std::string fault(const json& value, const json& schema, const std::string& place) const
    {
        if (schema.is_boolean())
            return schema.get<bool>() ? "" : place + " should not be there";
        if (schema.contains("$ref"))
            if (std::string wrong = fault(value, resolved(schema["$ref"]), place); !wrong.empty())
                return wrong;
        if (schema.contains("type") && !isOfAnyType(value, schema["type"]))
            return place + " is of type " + value.type_name();
        if (schema.contains("enum") &&
            std::find(schema["enum"].begin(), schema["enum"].end(), value) == schema["enum"].end())
            return place + " is " + value.dump();
        for (const char* key : {"anyOf", "oneOf"})
            if (const std::size_t fitting = fits(value, schema, key); fitting == 0 || (fitting > 1 && key[0] == 'o'))
                return place + " is " + value.dump();
        if (value.is_number() && (value < schema.value("minimum", value) || value > schema.value("maximum", value)))
            return place + " is " + value.dump();
        if (value.is_string() && !std::regex_search(value.get<std::string>(), std::regex(schema.value("pattern", ""))))
            return place + " is " + value.dump();
        return value.is_array() ? faultInItems(value, schema, place) : faultInMembers(value, schema, place);
    }

private:
    [[nodiscard]] const json& resolved(const std::string& reference) const
    {
        return fRoot.at(json::json_pointer(reference.substr(1)));
    }

    /// How many of the alternatives fit; 1 when there are none.
    [[nodiscard]] std::size_t fits(const json& value, const json& schema, const char* key) const
    {
        if (!schema.contains(key))
            return 1;
        return static_cast<std::size_t>(std::count_if(
            schema[key].begin(), schema[key].end(), [&](const json& each) { return fault(value, each, "").empty(); }));
    }

    [[nodiscard]] std::string faultInItems(const json& list, const json& schema, const std::string& place) const
    {
        if (list.size() < schema.value("minItems", list.size()) || list.size() > schema.value("maxItems", list.size()))
            return place + " has " + std::to_string(list.size()) + " items";
        std::string wrong;
        for (std::size_t i = 0; i < list.size() && wrong.empty(); ++i)
            wrong = fault(list[i], schema.value("items", json(true)), place + "[" + std::to_string(i) + "]");
        return wrong;
    }

    [[nodiscard]] std::string faultInMembers(const json& value, const json& schema, const std::string& place) const
    {
        if (!value.is_object())
            return "";
        for (const json& name : schema.value("required", json::array()))
            if (!value.contains(name.get<std::string>()))
                return place + " has no " + name.get<std::string>();
        const json properties = schema.value("properties", json::object());
        std::string wrong;
        for (const auto& [name, member] : value.items())
            if (wrong.empty())
                wrong = fault(member,
                              properties.contains(name) ? properties[name]
                                                        : schema.value("additionalProperties", json(true)),
                              place + "." + name);
        return wrong;
    }

    const json& fRoot;
};

} // namespace

std::string schemaFault(const json& document, const json& schema)
{
    return Checker(schema).fault(document, schema, "$");
}

json readSchema(const std::string& name)
{
    std::ifstream file(KRENDER_DOCS "/schema/" + name + ".schema.json");
    return json::parse(file);
}

std::string schemaFault(const std::string& document, const std::string& schemaName)
{
    const json parsed = json::parse(document, nullptr, false);
    return parsed.is_discarded() ? "this is no JSON: " + document : schemaFault(parsed, readSchema(schemaName));
}
