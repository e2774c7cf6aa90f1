#include "Scenes.h"

#include <krender/shading/ShadingParser.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <span>
#include <string_view>

namespace scenes
{

namespace
{

[[noreturn]] void fail(const std::string& message)
{
    std::fprintf(stderr, "%s\n", message.c_str());
    std::exit(EXIT_FAILURE);
}

/// The shipped library, registered for the rest of the program.
class Library
{
public:
    static void need() { static const Library library; }

private:
    Library()
    {
        krShadingDag::ShadingParser parser;
        if (!parser.parseFile(KRENDER_SHARE "/stdlib.krs", true))
            fail(parser.errorString().asChar());
    }
    ~Library() { krShadingDag::ShadingNodeSpec::clearLibrary(); }
};

std::vector<std::string> namesIn(const std::string& folder, bool thatInclude)
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(KRENDER_SHARE "/" + folder))
        if ((readFile(entry.path()).find("#include") != std::string::npos) == thatInclude)
            names.push_back(entry.path().stem());
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace

std::vector<std::string> materialNames() { return namesIn("materials", false); }

std::vector<std::string> fullNamesIn(const std::string& folder) { return namesIn(folder, true); }

Spec parse(const std::string& source)
{
    krShadingDag::ShadingParser parser;
    krShadingDag::ShadingNodeSpec* spec = nullptr;
    if (!parser.parseString(krString::CString(std::string_view(source)), &spec))
        fail(parser.errorString().asChar());
    return Spec(spec);
}

Spec parseMaterial(const std::string& name) { return parse(readFile(KRENDER_SHARE "/materials/" + name + ".krs")); }

const krShadingDag::ShadingNodeSpec* lightFunction(const char* name)
{
    Library::need();
    const auto* spec = krShadingDag::ShadingNodeSpec::findSpecInLibrary(name);
    if (!spec || !krString::equal(spec->name(), name))
        fail(std::string("no light function ") + name);
    return spec;
}

std::vector<LightSpec> lightsFor(const std::string& material, unsigned count)
{
    const auto light = [](const char* function, const char* name) { return LightSpec{lightFunction(function), name}; };
    std::vector<LightSpec> lights;
    if (material == "lacquer") // its two illuminance blocks would declare the uniforms of other lights twice
        lights = {light("headLight", "head"), light("skyLight", "sky"), light("headLight", "second")};
    else if (count == 1)
        lights = {light("pointLight", "key")};
    else if (material < "n")
        lights = {light("directionalLight", "sun"), light("spotLight", "spot"), light("projectorLight", "show")};
    else
        lights = {light("ambientLight", "room"), light("pointLight", "lamp"), light("pointLight", "fill")};
    lights.resize(count);
    return lights;
}

std::span<const Target> plainTargets()
{
    const auto isOther = [](const Target& target) { return target.language == TargetLanguage::VulkanGlsl; };
    return {targets().begin(), std::find_if(targets().begin(), targets().end(), isOther)};
}

Programs compile(Compile compiler, const krShadingDag::ShadingNodeSpec& material, const std::vector<LightSpec>* lights)
{
    krString::CString vertex;
    krString::CString fragment;
    compiler(material, lights, vertex, fragment);
    return {vertex.asChar(), fragment.asChar()};
}

Programs compileShipped(Compile compiler, const std::string& material, unsigned lightCount)
{
    const std::vector<LightSpec> lights = lightsFor(material, lightCount);
    return compile(compiler, *parseMaterial(material), &lights);
}

std::string readFile(const std::string& path)
{
    std::ostringstream text;
    if (std::ifstream file{path, std::ios::binary})
        text << file.rdbuf();
    return text.str();
}

bool replaceFirst(std::string& text, const std::string& from, const std::string& to)
{
    const std::size_t at = text.find(from);
    if (at == std::string::npos)
        return false;
    text.replace(at, from.size(), to);
    return true;
}

} // namespace scenes
