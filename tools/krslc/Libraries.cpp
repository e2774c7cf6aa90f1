#include "Libraries.h"

using krShadingDag::ShadingNodeSpec;

namespace
{

/// The first function of a name for which the condition holds; null when there is none.
template <class Condition>
const ShadingNodeSpec* findFirst(const std::string& name, Condition holds)
{
    ShadingNodeSpec::Library::iterator first;
    ShadingNodeSpec::Library::iterator last;
    ShadingNodeSpec::findSpecsInLibrary(name.c_str(), first, last);
    for (; first != last; ++first)
        if (holds(*first->second))
            return first->second;
    return nullptr;
}

bool hasBody(const ShadingNodeSpec& spec) { return spec.nodeType() == krShadingDag::kDefinition; }

} // namespace

void Libraries::read(const std::string& path)
{
    fLibraries.push_back(std::make_unique<Library>(Library{krTools::Source(path), {}}));
    Library& library = *fLibraries.back();
    krTools::readLibrary(library.source, library.findings,
                         [this, &library](const ShadingNodeSpec& spec, const krTools::FunctionOutline& outline) {
                             fOrigins[&spec] = {&library, outline.position};
                         });
}

bool Libraries::report()
{
    bool ok = true;
    for (const auto& library : fLibraries)
    {
        library->findings.sort();
        krTools::print(stderr, library->source, library->findings);
        ok &= !library->findings.hasErrors();
        library->findings = {};
    }
    return ok;
}

const ShadingNodeSpec* Libraries::definition(const std::string& name) { return findFirst(name, hasBody); }

const ShadingNodeSpec* Libraries::function(const std::string& name)
{
    return findFirst(name, [](const ShadingNodeSpec&) { return true; });
}

std::vector<std::string> Libraries::lightNames()
{
    std::vector<std::string> names;
    for (const auto& [name, spec] : ShadingNodeSpec::fLibrary)
    {
        bool returnsValue = false;
        (void)spec->output("output", returnsValue);
        if (hasBody(*spec) && !returnsValue)
            names.emplace_back(name.asChar());
    }
    return names;
}

void Libraries::add(const ShadingNodeSpec& spec, krTools::Severity severity, std::string_view name, std::string text)
{
    const Origin& origin = fOrigins.at(&spec);
    origin.library->findings.add({origin.position, severity, name, std::move(text)});
}
