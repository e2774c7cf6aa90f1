#include <common/Libraries.h>

#include <common/NearNames.h>

using krShadingDag::ShadingNodeSpec;

namespace krTools
{

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

/// The names of the functions that could be lights: those with a body and without a return value.
std::vector<std::string> lightNames()
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

} // namespace

void Libraries::read(const std::string& path)
{
    fLibraries.push_back(std::make_unique<Library>(Library{Source(path), {}}));
    Library& library = *fLibraries.back();
    readLibrary(library.source, library.findings,
                [this, &library](const ShadingNodeSpec& spec, const FunctionOutline& outline) {
                    fOrigins[&spec] = {&library, outline.position};
                });
}

bool Libraries::report()
{
    bool ok = true;
    for (const auto& library : fLibraries)
    {
        library->findings.sort();
        print(stderr, library->source, library->findings);
        ok &= !library->findings.hasErrors();
        library->findings = {};
    }
    return ok;
}

const ShadingNodeSpec* Libraries::findLight(const std::string& name, const std::string& origin)
{
    if (const ShadingNodeSpec* light = findFirst(name, hasBody))
        return light;
    if (const ShadingNodeSpec* declaration = findFirst(name, [](const ShadingNodeSpec&) { return true; }))
        add(*declaration, Severity::Error, {}, inQuotes(name) + " is only declared: a light needs a body");
    else
        print(stderr, fProgram, Severity::Error,
              origin + ": the libraries have no function " + inQuotes(name) + didYouMean(name, lightNames()));
    return nullptr;
}

void Libraries::add(const ShadingNodeSpec& spec, Severity severity, std::string_view name, std::string text)
{
    const Origin& origin = fOrigins.at(&spec);
    origin.library->findings.add({origin.position, severity, name, std::move(text)});
}

} // namespace krTools
