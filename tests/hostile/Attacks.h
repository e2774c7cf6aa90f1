#pragma once
#include "Program.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// An input that once took a program of ours down, or could.
struct Attack
{
    const char* name;
    void (*prepare)(const Workplace& place); ///< writes the files
    std::vector<std::string> arguments;      ///< of krslc, or of krview behind its name
    int status;
    const char* message;      ///< among what is printed as errors; empty: nothing is said about that
    unsigned megabytes = 200; ///< the most memory
    unsigned seconds = 20;    ///< the most processor time; far more than it takes, as machines are loaded
};

[[nodiscard]] std::vector<Attack> krslcAttacks();
[[nodiscard]] std::vector<Attack> krviewAttacks();
[[nodiscard]] std::vector<Attack> meshAttacks();

/// A number of pieces, each with its number where it has a '@'.
[[nodiscard]] inline std::string pieces(std::size_t count, std::string_view piece)
{
    std::string text;
    for (std::size_t i = 0; i < count; ++i)
        for (const char c : piece)
            if (c == '@')
                text += std::to_string(i);
            else
                text += c;
    return text;
}

/// A material of some statements, the file m.krs.
inline void writeMaterial(const Workplace& place, const std::string& statements)
{
    place.write("m.krs", "material m(uniform float u, out float4 outRGBA)\n{\n    outRGBA = float4(u, u, u, u);\n" +
                             statements + "}\n");
}

/// Whether this build has a sanitizer: its programs take other amounts of time and memory.
#if defined(__SANITIZE_ADDRESS__)
inline constexpr bool kIsSanitized = true;
#elif defined(__has_feature)
inline constexpr bool kIsSanitized = __has_feature(address_sanitizer);
#else
inline constexpr bool kIsSanitized = false;
#endif
