#pragma once
#include <nlohmann/json.hpp>

#include <string>

/// Holds a document against a JSON schema: types, enumerations, items and properties, as far as our schemas use them.
/// @return  what is wrong and where; empty when nothing is
[[nodiscard]] std::string schemaFault(const nlohmann::json& document, const nlohmann::json& schema,
                                      const std::string& place = "$");
/// The same, with the schema of that name from the documents.
[[nodiscard]] std::string schemaFault(const std::string& document, const std::string& schemaName);
