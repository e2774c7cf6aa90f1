#include <common/SourceNames.h>

#include <common/UsageError.h>
#include <common/Words.h>

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace krTools
{

MaterialName materialName(const std::string& text)
{
    const std::size_t colon = text.rfind(':');
    std::error_code failure;
    if (colon == std::string::npos || !isName(std::string_view(text).substr(colon + 1)) ||
        std::filesystem::exists(text, failure))
        return {text, ""};
    return {text.substr(0, colon), text.substr(colon + 1)};
}

LightName lightName(const std::string& option)
{
    const std::size_t equals = std::min(option.find('='), option.size());
    LightName light{"--light " + option, option.substr(0, equals), option.substr(std::min(equals + 1, option.size())),
                    ""};
    if (const std::size_t colon = light.function.rfind(':'); colon != std::string::npos)
    {
        light.file = light.function.substr(0, colon);
        light.function.erase(0, colon + 1);
    }
    if (!isName(light.key) || light.function.empty())
        throw UsageError(light.place + ": this is not KEY=[FILE:]FUNCTION with a name for its key");
    return light;
}

} // namespace krTools
