// Nothing packaged compiles the Metal language: a C++ compiler reads the programs beside a stub of its library.
#include "TargetPrograms.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <string>
#include <vector>

namespace
{

/// A program as C++ has it: in a namespace of its own, without the library's headers and Metal's attributes.
std::string asCpp(const std::string& program, unsigned number)
{
    std::string text = std::regex_replace(program, std::regex(R"(#(include|pragma)[^\n]*\n)"), "");
    text = std::regex_replace(text, std::regex(R"(\[\[[a-z_]+(\([a-z]*[0-9]*\))?\]\])"), "");
    return "namespace program" + std::to_string(number) + "\n{\n" + text + "}\n";
}

TEST(Msl, IsReadByACppCompiler)
{
    std::string unit = "#include \"" KRENDER_METAL_STUB "\"\n";
    unsigned number = 0;
    const Target& msl = *findTarget("msl");
    for (const char* material : {"phong", "chrome", "textured", "metalrough", "wood", "triplanar", "parallax"})
    {
        const TargetProgram program = compileFor(shippedRequest(material, "gobo"), msl);
        ASSERT_EQ(program.problems, "") << material;
        for (const std::string& text : {program.vertex(), program.fragment()})
            unit += asCpp(text, number++);
    }
    const std::filesystem::path source =
        std::filesystem::temp_directory_path() / ("krender-metal-" + std::to_string(::getpid()) + ".cpp");
    const auto compiles = [&source](const std::string& text, const std::string& messages = "")
    {
        std::ofstream(source) << text;
        return std::system((KRENDER_COMPILER " -std=c++17 -fsyntax-only -w -fpermissive -fsingle-precision-constant " +
                            source.string() + messages)
                               .c_str()) == 0;
    };
    EXPECT_TRUE(compiles(unit));
    EXPECT_FALSE(compiles(unit + "namespace metal { float4 f() { return float3(1.0); } }\n", " 2>/dev/null"));
    std::filesystem::remove(source);
}

} // namespace
