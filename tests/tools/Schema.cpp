#include "Schema.h"

#include <algorithm>
#include <fstream>

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

} // namespace

std::string schemaFault(const json& document, const json& schema, const std::string& place)
{
    if (schema.is_boolean())
        return schema.get<bool>() ? "" : place + " should not be there";
    if (schema.contains("type") && !isOfAnyType(document, schema["type"]))
        return place + " is of type " + document.type_name();
    if (schema.contains("enum") &&
        std::find(schema["enum"].begin(), schema["enum"].end(), document) == schema["enum"].end())
        return place + " is " + document.dump();
    std::string fault;
    if (document.is_array() && schema.contains("items"))
        for (std::size_t i = 0; i < document.size() && fault.empty(); ++i)
            fault = schemaFault(document[i], schema["items"], place + "[" + std::to_string(i) + "]");
    if (!document.is_object())
        return fault;
    for (const json& name : schema.value("required", json::array()))
        if (!document.contains(name.get<std::string>()))
            return place + " has no " + name.get<std::string>();
    const json properties = schema.value("properties", json::object());
    for (const auto& [name, value] : document.items())
        if (fault.empty())
            fault = schemaFault(
                value, properties.contains(name) ? properties[name] : schema.value("additionalProperties", json(true)),
                place + "." + name);
    return fault;
}

std::string schemaFault(const std::string& document, const std::string& schemaName)
{
    std::ifstream file(KRENDER_DOCS "/schema/" + schemaName + ".schema.json");
    const json parsed = json::parse(document, nullptr, false);
    return parsed.is_discarded() ? "this is no JSON: " + document : schemaFault(parsed, json::parse(file));
}
