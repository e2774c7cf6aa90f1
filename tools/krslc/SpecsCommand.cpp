#include "SpecsCommand.h"

#include "Report.h"

#include <common/ExitStatus.h>
#include <common/PlainReading.h>
#include <common/StandardOutput.h>

#include <nlohmann/json.hpp>

#include <map>
#include <utility>

using krShadingDag::ShadingNodeSpec;
using nlohmann::ordered_json;

namespace
{

const char* nodeTypeName(const ShadingNodeSpec& spec)
{
    return krTools::isDefinition(spec) ? "definition" : "declaration";
}

ordered_json attributesOf(const ShadingNodeSpec::Attributes& attributes)
{
    ordered_json list = ordered_json::array();
    for (const krShadingDag::ShadingAttribute& attribute : attributes)
        list.push_back({{"name", attribute.name().asChar()},
                        {"type", attribute.dataType()},
                        {"typeName", dataTypeName(attribute.dataType())},
                        {"minFreq", attribute.range().minFreq},
                        {"maxFreq", attribute.range().maxFreq}});
    return list;
}

ordered_json jsonOf(const ShadingNodeSpec& spec)
{
    return {{"name", spec.name().asChar()},
            {"nodeType", spec.nodeType()},
            {"nodeTypeName", nodeTypeName(spec)},
            {"hasIlluminanceLoop", spec.hasIlluminanceLoop()},
            {"header", spec.functionHeaderString().asChar()},
            {"body", spec.body().toString("", "\t").view()},
            {"inputs", attributesOf(spec.inputs())},
            {"outputs", attributesOf(spec.outputs())}};
}

} // namespace

int printSpecs(const std::string& path, bool asJson)
{
    krTools::PlainLibrary library;
    const krTools::Source source(path);
    krTools::Findings findings;
    const krTools::PlainReading reading = library.read(source, findings);
    krTools::print(source, findings);

    krTools::StandardOutput output;
    if (asJson)
    {
        ordered_json functions = ordered_json::array();
        for (const auto& [name, spec] : library.specs())
            functions.push_back(jsonOf(*spec));
        ordered_json problems = ordered_json::array();
        for (const krTools::Finding& finding : findings.kept())
        {
            const krTools::Source::Place place = source.place(finding.position);
            problems.push_back({{"file", source.name()},
                                {"line", place.line},
                                {"column", place.column},
                                {"severity", "error"},
                                {"name", nullptr},
                                {"text", krTools::printable(finding.text)}});
        }
        output.write(textOf({{"parsed", reading.parsed},
                             {"messages", reading.messages},
                             {"problems", std::move(problems)},
                             {"functions", std::move(functions)}}));
    }
    else
    {
        std::map<const ShadingNodeSpec*, std::string> resultWords;
        for (const krTools::PlainFunction& function : reading.functions)
            resultWords[function.spec] = function.resultWord;
        for (const auto& [name, spec] : library.specs())
            output.write(std::string(nodeTypeName(*spec)) + ' ' + resultWords[spec] + ' ' +
                         spec->functionHeaderString().asChar());
    }
    output.finish();
    return reading.parsed && !findings.hasErrors() ? krTools::kDone : krTools::kInputHasErrors;
}
