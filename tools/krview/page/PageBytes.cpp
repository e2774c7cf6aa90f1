#include "PageBytes.h"

#include <nlohmann/json.hpp>
#include <zlib.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <new>
#include <stdexcept>

using nlohmann::ordered_json;

namespace
{

constexpr std::size_t kMostBytes = std::size_t{256} << 20;
constexpr double kMostNarrow = 0xffff;
constexpr double kMostWide = 0xffffffff;

std::string deflated(const std::string& bytes)
{
    uLongf size = compressBound(bytes.size());
    std::string packed(size, '\0');
    if (compress2(reinterpret_cast<Bytef*>(packed.data()), &size, reinterpret_cast<const Bytef*>(bytes.data()),
                  bytes.size(), Z_BEST_COMPRESSION) != Z_OK)
        throw std::bad_alloc();
    packed.resize(size);
    return packed;
}

std::string base64(std::string_view bytes)
{
    constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t at = 0; at < bytes.size(); at += 3)
    {
        std::uint32_t bits = 0;
        for (std::size_t i = at; i < at + 3; ++i)
            bits = bits << 8 | (i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0);
        for (std::size_t i = 0; i < 4; ++i)
            text += at + i <= bytes.size() ? kDigits[bits >> (18 - 6 * i) & 63] : '=';
    }
    return text;
}

} // namespace

void appendLittle(std::string& bytes, std::uint32_t number, unsigned count)
{
    for (unsigned i = 0; i < count; ++i)
        bytes += static_cast<char>(number >> (8 * i) & 0xff);
}

void PageBytes::align() { fBytes.resize((fBytes.size() + 3) / 4 * 4); }

std::size_t PageBytes::addWholes(const std::vector<std::uint32_t>& wholes, std::size_t components, bool isWide)
{
    align();
    const std::size_t at = fBytes.size();
    for (std::size_t component = 0; component < components; ++component)
    {
        std::uint32_t last = 0;
        for (std::size_t i = component; i < wholes.size(); i += components)
        {
            appendLittle(fBytes, wholes[i] - last, isWide ? 4 : 2);
            last = wholes[i];
        }
        align();
    }
    return at;
}

ordered_json PageBytes::addStream(std::span<const float> values, unsigned components, double coarsest)
{
    components = std::max(components, 1U); // so that no division by 0 can be thought of
    constexpr double kGreatest = std::numeric_limits<double>::max();
    std::vector<double> low(components, kGreatest);
    std::vector<double> high(components, -kGreatest);
    for (std::size_t i = 0; i < values.size(); ++i)
        if (std::isfinite(values[i]))
        {
            low[i % components] = std::min<double>(low[i % components], values[i]);
            high[i % components] = std::max<double>(high[i % components], values[i]);
        }
    std::vector<double> step;
    double widest = 0;
    for (std::size_t i = 0; i < components; ++i)
    {
        if (low[i] > high[i])
            low[i] = high[i] = 0;
        step.push_back(high[i] - low[i]);
        widest = std::max(widest, step.back());
    }
    const bool isWide = widest / kMostNarrow > coarsest;
    for (double& extent : step)
        extent /= isWide ? kMostWide : kMostNarrow;
    std::vector<std::uint32_t> wholes;
    wholes.reserve(values.size());
    for (std::size_t i = 0; i < values.size(); ++i)
    {
        const std::size_t component = i % components;
        const double value = std::isfinite(values[i]) ? values[i] : low[component];
        wholes.push_back(step[component] > 0
                             ? static_cast<std::uint32_t>(std::llround((value - low[component]) / step[component]))
                             : 0);
    }
    return {{"at", addWholes(wholes, components, isWide)},
            {"count", values.size() / components},
            {"low", low},
            {"step", step},
            {"isWide", isWide},
            {"isList", false}};
}

ordered_json PageBytes::addList(std::span<const unsigned> entries, unsigned corners)
{
    const std::vector<std::uint32_t> wholes(entries.begin(), entries.end());
    const bool isWide = std::any_of(wholes.begin(), wholes.end(), [](std::uint32_t whole) { return whole > 0xffff; });
    return {{"at", addWholes(wholes, corners, isWide)},
            {"count", entries.size() / corners},
            {"low", std::vector<int>(corners, 0)},
            {"step", std::vector<int>(corners, 1)},
            {"isWide", isWide},
            {"isList", true}};
}

ordered_json PageBytes::addBytes(std::string_view bytes)
{
    const auto known = std::find_if(fParts.begin(), fParts.end(),
                                    [&](const auto& part)
                                    { return std::string_view(fBytes).substr(part.first, part.second) == bytes; });
    if (known != fParts.end())
        return {known->first, known->second};
    align();
    fParts.emplace_back(fBytes.size(), bytes.size());
    fBytes += bytes;
    return {fParts.back().first, fParts.back().second};
}

std::string PageBytes::packed(const ordered_json& json) const
{
    // What is no UTF-8 in a source becomes the sign for that.
    const std::string text = json.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
    std::string all;
    appendLittle(all, static_cast<std::uint32_t>(std::min(text.size(), kMostBytes)), 4);
    if (text.size() + fBytes.size() > kMostBytes)
        throw std::length_error("the meshes, pictures and programs of the page would take more than 256 MB");
    return base64(deflated(all + text + fBytes));
}
