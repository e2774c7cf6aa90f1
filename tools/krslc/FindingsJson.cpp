#include "FindingsJson.h"

#include <nlohmann/json.hpp>

using nlohmann::ordered_json;

void appendFindings(ordered_json& list, const krTools::Source& source, const krTools::Findings& findings)
{
    for (const krTools::Finding& finding : findings.kept())
    {
        const krTools::Source::Place place = source.place(finding.position);
        list.push_back({{"file", source.name()},
                        {"line", place.line},
                        {"column", place.column},
                        {"severity", finding.severity == krTools::Severity::Error ? "error" : "warning"},
                        {"name", finding.name.empty() ? ordered_json() : ordered_json(finding.name)},
                        {"text", krTools::printable(finding.text)}});
    }
}

std::string textOf(const ordered_json& document)
{
    return document.dump(2, ' ', false, ordered_json::error_handler_t::replace) + '\n';
}
