#include <common/Modules.h>

#include <common/NearNames.h>
#include <common/PrintedMessage.h>
#include <common/Source.h>
#include <common/Words.h>

#include <algorithm>
#include <filesystem>
#include <system_error>

using krFrontend::Module;

namespace krTools
{

namespace
{

/// The names of the lights of a module that have a body.
std::vector<std::string> lightNames(const Module& module)
{
    std::vector<std::string> names;
    for (const krFrontend::ShaderInterface& shader : krFrontend::interfaceOf(module))
        if (shader.kind == krFrontend::ShaderKind::Light && shader.hasBody)
            names.push_back(shader.name);
    return names;
}

bool hasLight(const Module& module, const std::string& name)
{
    const std::vector<std::string> names = lightNames(module);
    return std::find(names.begin(), names.end(), name) != names.end();
}

} // namespace

MaterialName materialName(const std::string& text)
{
    const std::size_t colon = text.rfind(':');
    std::error_code failure;
    if (colon == std::string::npos || !isName(std::string_view(text).substr(colon + 1)) ||
        std::filesystem::exists(text, failure))
        return {text, ""};
    return {text.substr(0, colon), text.substr(colon + 1)};
}

Module readModule(const std::string& path, const std::vector<std::string>& includeFolders)
{
    krFrontend::ReadOptions options;
    options.includeFolders = includeFolders;
    return Module::readText(path == "-" ? kStandardInputName : path, readText(path, krFrontend::kMostSourceBytes),
                            options);
}

const Module& LightLibraries::read(const std::string& path, const std::vector<std::string>& includeFolders)
{
    return fModules.emplace_back(readModule(path, includeFolders));
}

const Module* LightLibraries::findLight(const Module& material, const std::string& name) const
{
    if (hasLight(material, name))
        return &material;
    const auto found = std::find_if(fModules.begin(), fModules.end(),
                                    [&name](const Module& module) { return hasLight(module, name); });
    return found == fModules.end() ? nullptr : &*found;
}

std::string LightLibraries::whyNoLight(const Module& material, const std::string& name) const
{
    std::vector<std::string> names = lightNames(material);
    for (const Module& module : fModules)
        for (std::string& light : lightNames(module))
            names.push_back(std::move(light));
    return "there is no light " + inQuotes(name) + " with a body" + didYouMean(name, names);
}

} // namespace krTools
