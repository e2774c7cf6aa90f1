#include "SpecsCommand.h"

#include <common/ExitStatus.h>
#include <common/SourceReader.h>
#include <common/StandardOutput.h>

#include <krender/shading/ShadingParser.h>

#include <sys/mman.h>
#include <unistd.h>

#include <nlohmann/json.hpp>

#include <cerrno>
#include <cstring>

using krShadingDag::ShadingNodeSpec;
using nlohmann::ordered_json;

namespace
{

/// A file in memory with the text of a source, so that the parser reads exactly what was looked through before, even
/// from a pipe or a file that changes.
class Snapshot
{
public:
    explicit Snapshot(const krTools::Source& source) : fDescriptor(::memfd_create("krslc", MFD_CLOEXEC))
    {
        const int error = fDescriptor < 0 ? errno : krTools::writeAll(fDescriptor, source.text());
        if (error != 0)
            throw krTools::FileError("cannot copy '" + source.name() + "': " + std::strerror(error));
    }
    Snapshot(const Snapshot&) = delete;
    Snapshot& operator=(const Snapshot&) = delete;
    ~Snapshot() { ::close(fDescriptor); }

    [[nodiscard]] std::string path() const { return "/proc/self/fd/" + std::to_string(fDescriptor); }

private:
    int fDescriptor;
};

ordered_json attributesOf(const ShadingNodeSpec::Attributes& attributes)
{
    ordered_json list = ordered_json::array();
    for (const krShadingDag::ShadingAttribute& attribute : attributes)
        list.push_back({{"name", attribute.name().asChar()},
                        {"type", attribute.dataType()},
                        {"minFreq", attribute.range().minFreq},
                        {"maxFreq", attribute.range().maxFreq}});
    return list;
}

ordered_json jsonOf(const ShadingNodeSpec& spec)
{
    return {{"name", spec.name().asChar()},
            {"nodeType", spec.nodeType()},
            {"hasIlluminanceLoop", spec.hasIlluminanceLoop()},
            {"header", spec.functionHeaderString().asChar()},
            {"body", spec.body().toString("", "\t").view()},
            {"inputs", attributesOf(spec.inputs())},
            {"outputs", attributesOf(spec.outputs())}};
}

std::string textOf(const ShadingNodeSpec& spec)
{
    bool returnsValue = false;
    const krShadingDag::ShadingAttribute& result = spec.output("output", returnsValue);
    std::string text = spec.nodeType() == krShadingDag::kDefinition ? "definition " : "declaration ";
    text.append(returnsValue ? dataTypeName(result.dataType()) : "void").append(" ");
    return text.append(spec.functionHeaderString().view());
}

} // namespace

int printSpecs(const std::string& path, bool asJson)
{
    const krTools::Source source(path);
    krTools::Findings findings;
    krTools::SourceReader reader(source, findings);
    bool parsed = false;
    std::string messages;
    if (reader.scan())
    {
        const Snapshot snapshot(source);
        krShadingDag::ShadingParser parser;
        parsed = parser.parseFile(snapshot.path().c_str(), false);
        messages = parser.errorString().view();
        // The library's own message has a fixed name in place of the file's; ours comes from reading once more.
        if (!parsed && !findings.hasErrors())
            reader.parse([](const std::unique_ptr<ShadingNodeSpec>&, const krTools::FunctionOutline&) {});
    }
    else
        for (const krTools::Finding& finding : findings.kept())
            messages += finding.text + '\n';
    findings.sort();
    krTools::print(stderr, source, findings);

    krTools::StandardOutput output;
    if (asJson)
    {
        ordered_json functions = ordered_json::array();
        for (const auto& [name, spec] : ShadingNodeSpec::fLibrary)
            functions.push_back(jsonOf(*spec));
        const ordered_json document{{"parsed", parsed}, {"messages", messages}, {"functions", std::move(functions)}};
        // Sources are bytes and JSON is Unicode: what is no UTF-8 becomes the replacement character.
        output.write(document.dump(2, ' ', false, ordered_json::error_handler_t::replace) + '\n');
    }
    else
        for (const auto& [name, spec] : ShadingNodeSpec::fLibrary)
            output.write(textOf(*spec));
    output.finish();
    return parsed && !findings.hasErrors() ? krTools::kDone : krTools::kInputHasErrors;
}
