// Work and memory grow with the source and not with its square. What is counted are allocations and the bytes held at
// the peak, which do not depend on the machine or on what else it does; memory is what limits take first.
#include <krender/frontend/PlainReading.h>
#include <krender/frontend/Program.h>
#include <krender/shadergen/CgMaterialCompiler.h>
#include <krender/shadergen/GlslMaterialCompiler.h>
#include <krender/shadergen/LightSpec.h>
#include <krender/shadergen/Target.h>
#include <krender/shading/ShadingNodeSpec.h>
#include <krender/shading/ShadingParser.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <new>
#include <sstream>

namespace
{

std::size_t gAllocations = 0;
std::size_t gHeld = 0;
std::size_t gPeak = 0;
constexpr std::size_t kHeader = alignof(std::max_align_t);

void* allocate(std::size_t size)
{
    void* block = std::malloc(size + kHeader);
    if (!block)
        throw std::bad_alloc();
    *static_cast<std::size_t*>(block) = size;
    ++gAllocations;
    gHeld += size;
    gPeak = std::max(gPeak, gHeld);
    return static_cast<char*>(block) + kHeader;
}

void release(void* pointer) noexcept
{
    if (!pointer)
        return;
    void* block = static_cast<char*>(pointer) - kHeader;
    gHeld -= *static_cast<std::size_t*>(block);
    std::free(block);
}

} // namespace

void* operator new(std::size_t size) { return allocate(size); }
void* operator new[](std::size_t size) { return allocate(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void operator delete(void* pointer, const std::nothrow_t&) noexcept { release(pointer); }
void operator delete(void* pointer) noexcept { release(pointer); }
void operator delete[](void* pointer) noexcept { release(pointer); }
void operator delete(void* pointer, std::size_t) noexcept { release(pointer); }
void operator delete[](void* pointer, std::size_t) noexcept { release(pointer); }

namespace
{

using krFrontend::Module;
using Maker = std::function<std::string(unsigned)>;

struct Cost
{
    std::size_t allocations = 0;
    std::size_t peak = 0; ///< bytes above what was held before
};

Cost measure(const std::function<void()>& work)
{
    const std::size_t allocations = gAllocations;
    const std::size_t held = gPeak = gHeld;
    work();
    return {gAllocations - allocations, gPeak - held};
}

std::string repeat(unsigned count, const std::function<std::string(std::string)>& piece)
{
    std::string text;
    for (unsigned i = 0; i < count; ++i)
        text += piece(std::to_string(i));
    return text;
}

std::string body(const std::string& statements)
{
    return "float f(float x)\n{\n    float y = x;\n" + statements + "    return y;\n}\n";
}

std::string material(const std::string& statements)
{
    return "light l(uniform float3 c, out float3 outLightDiffuseColor) { outLightDiffuseColor = c; }\n"
           "material m(uniform float u, out float4 outRGBA)\n{\n    outRGBA = float4(u);\n" +
           statements + "}\n";
}

/// Includes a chain of files, each of which includes the next one.
class Chain final : public krFrontend::SourceReader
{
public:
    explicit Chain(unsigned count) : fCount(count) {}

    std::string read(const std::string& path, std::size_t, std::string& text) override
    {
        const unsigned number = static_cast<unsigned>(std::stoul(path));
        text = "const float k" + path + " = 1.0;\n";
        if (number < fCount)
            text += "#include \"" + std::to_string(number + 1) + "\"\n";
        return "";
    }
    bool exists(const std::string&) override { return true; }

private:
    unsigned fCount;
};

/// What is done with a source of so many pieces.
struct Construct
{
    const char* name;
    unsigned first; ///< pieces of the smallest source
    Maker source;
};

void PrintTo(const Construct& construct, std::ostream* out) { *out << construct.name; }

const Construct gConstructs[] = {
    {"Functions", 1000,
     [](unsigned n)
     { return repeat(n, [](const std::string& i) { return "float f" + i + "(float x) { return x; }\n"; }); }},
    {"FunctionsInAChain", 1000,
     [](unsigned n)
     {
         return "float f0(float x) { return x; }\n" + repeat(n,
                                                             [](const std::string& i) {
                                                                 return "float g" + i + "(float x) { return f0(x) + g" +
                                                                        i + "a(x); }\nfloat g" + i +
                                                                        "a(float x) { return x; }\n";
                                                             });
     }},
    {"OverloadsOfOneName", 64,
     [](unsigned n)
     {
         constexpr const char* kTypes[] = {"float", "float2", "float3", "float4", "int", "int2", "int3", "int4"};
         std::string text;
         std::string calls;
         for (unsigned i = 0; i < n; ++i)
         {
             std::string arguments = "float x";
             std::string values = "x";
             for (unsigned digits = i, k = 0; k < 4; ++k, digits /= 8)
             {
                 arguments += std::string(", ") + kTypes[digits % 8] + " a" + std::to_string(k);
                 values += std::string(", ") + kTypes[digits % 8] + "(x)";
             }
             text += "float f(" + arguments + ") { return x; }\n";
             calls += "    y = f(" + values + ");\n";
         }
         return text + "float g(float x)\n{\n    float y = x;\n" + calls + "    return y;\n}\n";
     }},
    {"LongExpressions", 20,
     [](unsigned n)
     {
         return body(repeat(n, [](const std::string&)
                            { return "    y = x" + repeat(500, [](auto) { return " + x"; }) + ";\n"; }));
     }},
    {"DeepNesting", 20,
     [](unsigned n)
     {
         return body(repeat(n,
                            [](const std::string&)
                            {
                                return "    y = " + std::string(200, '(') + "x" + std::string(200, ')') + ";\n" +
                                       std::string(200, '{') + "y = x;" + std::string(200, '}') + "\n";
                            }));
     }},
    {"Errors", 500,
     [](unsigned n) { return body(repeat(n, [](const std::string& i) { return "    y = q" + i + " + 1;\n"; })); }},
    {"UnreadableStatements", 500, [](unsigned n) { return body(repeat(n, [](auto) { return "    y = ) 1 (;\n"; })); }},
    {"Statements", 1000,
     [](unsigned n)
     { return body(repeat(n, [](const std::string& i) { return "    float v" + i + " = x; y += v" + i + ";\n"; })); }},
    {"ElseIfs", 500,
     [](unsigned n)
     {
         return body(repeat(
             n, [](const std::string& i)
             { return std::stoi(i) % 200 == 0 ? "    if (x > 0.0) y = 1.0;\n" : "    else if (x > 1.0) y = 2.0;\n"; }));
     }},
    {"ConstantsInOrder", 1000,
     [](unsigned n)
     {
         return "const float k = 1.0;\nconst float k0x = k;\n" +
                repeat(n, [](const std::string& i)
                       { return "const float k" + std::to_string(std::stoul(i) + 1) + "x = k" + i + "x;\n"; });
     }},
    {"ConstantsInReverse", 1000,
     [](unsigned n)
     {
         return repeat(n, [](const std::string& i)
                       { return "const float k" + i + "x = k" + std::to_string(std::stoul(i) + 1) + "x;\n"; }) +
                "const float k" + std::to_string(n) + "x = 1.0;\n";
     }},
    {"Comments", 1000,
     [](unsigned n) { return body(repeat(n, [](auto) { return "    // a comment\n    /* another */ y = x;\n"; })); }},
    {"IlluminanceWithALight", 100,
     [](unsigned n)
     { return material(repeat(n, [](auto) { return "    illuminance { outRGBA.rgb += gLightDiffuseColor; }\n"; })); }},
    {"LongMaterial", 500,
     [](unsigned n)
     {
         return material(
             repeat(n, [](const std::string& i)
                    { return "    float v" + i + " = u; if (v" + i + " > 0) { outRGBA *= v" + i + "; }\n"; }));
     }},
    {"ChoicesWithEffects", 50,
     [](unsigned n)
     {
         return material("    float a = u;\n" +
                         repeat(n, [](auto) { return "    outRGBA.r = u > 0.5 && (a += 1.0) > 2.0 ? a : u;\n"; }));
     }},
    {"LongChainsOfXor", 4,
     [](unsigned n)
     {
         return material(repeat(
             n, [](auto) { return "    if (u > 0" + repeat(400, [](auto) { return " ^^ u > 1"; }) + ") discard;\n"; }));
     }},
    {"MaterialThatCallsManyFunctions", 200,
     [](unsigned n)
     {
         return repeat(n,
                       [](const std::string& i) { return "float f" + i + "(float x) { return x + gWorldPos.x; }\n"; }) +
                material(repeat(n, [](const std::string& i) { return "    outRGBA.r += f" + i + "(u);\n"; }));
     }},
};

class Growth : public testing::TestWithParam<Construct>
{
};

/// Reads, compares, and compiles what there is of materials.
void process(const std::string& source)
{
    const Module module = Module::readText("growing.krs", source);
    (void)krFrontend::interfaceOf(module);
    (void)krFrontend::plainDifferences(module);
    if (source.find("material m") == std::string::npos)
        return;
    for (const Target& target : targets())
    {
        std::vector<krFrontend::ProgramDiagnostic> problems;
        ASSERT_TRUE(krFrontend::compileProgram({&module, "m", {{&module, "l", "l"}}, false}, target, problems));
    }
}

/// Three doublings in a row that each cost more than 2.6 times as much are no accident.
void expectLinear(unsigned first, const std::function<Cost(unsigned)>& costOf)
{
    constexpr unsigned kSteps = 4;
    constexpr double kMost = 2.6;
    unsigned steepAllocations = 0;
    unsigned steepBytes = 0;
    Cost before = costOf(first);
    for (unsigned step = 1; step <= kSteps; ++step)
    {
        const Cost cost = costOf(first << step);
        const auto isSteep = [](std::size_t now, std::size_t then)
        { return static_cast<double>(now) > kMost * static_cast<double>(then); };
        steepAllocations = isSteep(cost.allocations, before.allocations) ? steepAllocations + 1 : 0;
        steepBytes = isSteep(cost.peak, before.peak) ? steepBytes + 1 : 0;
        EXPECT_LT(steepAllocations, 3u) << (first << step) << " pieces: " << cost.allocations << " allocations, "
                                        << before.allocations << " for half of them";
        EXPECT_LT(steepBytes, 3u) << (first << step) << " pieces: " << cost.peak << " bytes, " << before.peak
                                  << " for half of them";
        before = cost;
    }
}

TEST_P(Growth, IsLinear)
{
    const Construct& construct = GetParam();
    expectLinear(construct.first,
                 [&](unsigned count)
                 {
                     const std::string source = construct.source(count);
                     return measure([&] { process(source); });
                 });
}

INSTANTIATE_TEST_SUITE_P(Of, Growth, testing::ValuesIn(gConstructs),
                         [](const auto& given) { return std::string(given.param.name); });

TEST(GrowthOfIncludes, IsLinear)
{
    expectLinear(60,
                 [](unsigned count)
                 {
                     Chain chain(count);
                     return measure([&] { (void)Module::readFile("0", {{}, &chain}); });
                 });
}

/// What a host of plain sources does, which the front end has no part in.
TEST(GrowthOfPlainSources, IsLinear)
{
    expectLinear(500,
                 [](unsigned count)
                 {
                     const krString::CString source(material(
                         repeat(count, [](const std::string& i)
                                { return "    float v" + i + " = u; illuminance { outRGBA *= v" + i + "; }\n"; })));
                     return measure(
                         [&]
                         {
                             krShadingDag::ShadingParser parser;
                             krShadingDag::ShadingNodeSpec* spec = nullptr;
                             ASSERT_TRUE(parser.parseString(source, &spec));
                             const std::unique_ptr<krShadingDag::ShadingNodeSpec> light(spec);
                             ASSERT_TRUE(parser.parseString(krString::CString(), &spec));
                             const std::unique_ptr<krShadingDag::ShadingNodeSpec> shaded(spec);
                             const std::vector<LightSpec> lights{{light.get(), "k"}};
                             krString::CString vertex;
                             krString::CString fragment;
                             compileMaterialToGlsl(*shaded, &lights, vertex, fragment);
                             compileMaterialToCg(*shaded, &lights, vertex, fragment);
                         });
                 });
}

TEST(Memory, OfTheShippedSourcesIsAtMostTwentyTimesTheirSize)
{
    // Ten megabytes of them, each function of another name, as one source has no two of the same.
    std::string shipped;
    for (const auto& entry : std::filesystem::directory_iterator(KRENDER_SHARE "/materials"))
    {
        std::ostringstream text;
        text << std::ifstream(entry.path()).rdbuf();
        if (text.str().find("#include") ==
            std::string::npos) // these have functions of their own, which are no material
            shipped += text.str();
    }
    std::string all;
    for (unsigned i = 0; all.size() < (std::size_t{10} << 20); ++i)
    {
        const std::size_t begin = all.size();
        all += shipped;
        for (std::size_t at = begin; (at = all.find("\nmaterial ", at)) != std::string::npos; ++at)
            all.insert(at + 10, "n" + std::to_string(i) + "x");
    }
    const Cost cost = measure([&] { EXPECT_EQ(Module::readText("all.krs", all).errorCount(), 0u); });
    EXPECT_LE(cost.peak, 20 * all.size());
}

TEST(Memory, OfTheDensestSourcesIsAtMostAHundredTimesTheirSize)
{
    // Where a node of the tree has the fewest bytes.
    const std::pair<const char*, Maker> dense[] = {
        {"operators", [](unsigned n)
         { return body(repeat(n, [](auto) { return "y=x" + repeat(400, [](auto) { return "+x"; }) + ";\n"; })); }},
        {"signs", [](unsigned n)
         { return body(repeat(n * 3, [](auto) { return "y=" + repeat(120, [](auto) { return "!"; }) + "x;\n"; })); }},
        {"blocks", [](unsigned n)
         { return body(repeat(n * 4, [](auto) { return std::string(100, '{') + std::string(100, '}'); })); }},
        {"declarators",
         [](unsigned n)
         {
             return body(repeat(n * 3,
                                [](const std::string& i) {
                                    return "float a" + i +
                                           repeat(70, [&](const std::string& k) { return ",b" + k + "_" + i; }) + ";\n";
                                }));
         }},
        {"calls",
         [](unsigned n)
         {
             return body(
                 repeat(n * 2, [](auto)
                        { return "y=" + repeat(50, [](auto) { return "q("; }) + "x" + std::string(50, ')') + ";\n"; }));
         }},
        {"constants",
         [](unsigned n) { return repeat(n * 40, [](const std::string& i) { return "const int a" + i + "=1;"; }); }},
        {"functions",
         [](unsigned n) { return repeat(n * 40, [](const std::string& i) { return "int f" + i + "(int a){}"; }); }},
        {"arguments",
         [](unsigned n)
         {
             return repeat(n * 4,
                           [](const std::string& i)
                           {
                               return "void f" + i + "(" +
                                      repeat(60, [](const std::string& k) { return "out int a" + k + ","; }) +
                                      "out int b);\n";
                           });
         }},
        {"names", [](unsigned n) { return body(repeat(n * 40, [](const std::string& i) { return "a" + i + ";"; })); }},
    };
    for (const auto& [name, make] : dense)
    {
        const std::string source = make(500);
        const Cost cost = measure([&] { (void)Module::readText("dense.krs", source); });
        EXPECT_LE(cost.peak, 100 * source.size()) << name << ": " << cost.peak / source.size() << " times";
    }
}

} // namespace
