#pragma once
#include <common/Findings.h>

#include <nlohmann/json_fwd.hpp>

/// Appends an object for each finding of a source to a JSON array.
void appendFindings(nlohmann::ordered_json& list, const krTools::Source& source, const krTools::Findings& findings);

/// The document as text with a line break at its end. Sources are bytes and JSON is Unicode: what is not UTF-8 becomes the
/// replacement character.
[[nodiscard]] std::string textOf(const nlohmann::ordered_json& document);
