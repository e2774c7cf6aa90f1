#include "SpecsCommand.h"

#include "FindingsJson.h"

#include <common/ExitStatus.h>
#include <common/SourceReader.h>
#include <common/StandardOutput.h>

#include <krender/shading/ShadingParser.h>

#include <sys/mman.h>
#include <unistd.h>

#include <nlohmann/json.hpp>

#include <cerrno>
#include <cstring>
#include <map>
#include <memory>
#include <utility>

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

/// Empties the spec library at the end, which owns what parsing enters into it.
struct SpecLibraryCleaner
{
    SpecLibraryCleaner() = default;
    SpecLibraryCleaner(const SpecLibraryCleaner&) = delete;
    SpecLibraryCleaner& operator=(const SpecLibraryCleaner&) = delete;
    ~SpecLibraryCleaner() { ShadingNodeSpec::clearLibrary(); }
};

/// What the plain parser made of a source.
struct Reading
{
    bool parsed = false;
    std::string messages;                                      ///< the parser's, as they are
    std::map<const ShadingNodeSpec*, std::string> resultWords; ///< as written: a type, "material" or "light"
};

/// Parses a source into the spec library. What is wrong with it is found by a second reading: the parser's messages have
/// no column and a fixed name in place of the file's, and there is one even when all went well.
Reading read(const krTools::Source& source, krTools::Findings& findings)
{
    Reading reading;
    krTools::SourceReader reader(source, findings);
    // The parser would not come back from some sources.
    if (!reader.scan())
        return reading;
    const Snapshot snapshot(source);
    krShadingDag::ShadingParser parser;
    reading.parsed = parser.parseFile(snapshot.path().c_str(), false);
    reading.messages = parser.errorString().view();
    reader.parse(
        [&reading](const std::unique_ptr<ShadingNodeSpec>& spec, const krTools::FunctionOutline& outline)
        {
            const ShadingNodeSpec* const entered = ShadingNodeSpec::findSpecInLibrary(spec->name(), spec->arguments());
            reading.resultWords[entered] = outline.resultWord;
        });
    return reading;
}

const char* nodeTypeName(const ShadingNodeSpec& spec)
{
    return spec.nodeType() == krShadingDag::kDefinition ? "definition" : "declaration";
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
    const SpecLibraryCleaner cleaner;
    const krTools::Source source(path);
    krTools::Findings findings;
    Reading reading = read(source, findings);
    findings.sort();
    krTools::print(stderr, source, findings);

    krTools::StandardOutput output;
    if (asJson)
    {
        ordered_json functions = ordered_json::array();
        for (const auto& [name, spec] : ShadingNodeSpec::fLibrary)
            functions.push_back(jsonOf(*spec));
        ordered_json problems = ordered_json::array();
        appendFindings(problems, source, findings);
        output.write(textOf({{"parsed", reading.parsed},
                             {"messages", reading.messages},
                             {"problems", std::move(problems)},
                             {"functions", std::move(functions)}}));
    }
    else
        for (const auto& [name, spec] : ShadingNodeSpec::fLibrary)
            output.write(std::string(nodeTypeName(*spec)) + ' ' + reading.resultWords[spec] + ' ' +
                         spec->functionHeaderString().asChar());
    output.finish();
    return reading.parsed && !findings.hasErrors() ? krTools::kDone : krTools::kInputHasErrors;
}
