#pragma once
#include <nlohmann/json.hpp>

#include <string>

/// Holds a document against a JSON schema, as far as our schemas use what there is: types, enumerations, bounds, items,
/// properties, references and alternatives.
/// @return  what is wrong and where; empty when nothing is
[[nodiscard]] std::string schemaFault(const nlohmann::json& document, const nlohmann::json& schema);
/// The schema of that name from the documents.
[[nodiscard]] nlohmann::json readSchema(const std::string& name);
/// The same as schemaFault, with the schema of that name.
[[nodiscard]] std::string schemaFault(const std::string& document, const std::string& schemaName);
