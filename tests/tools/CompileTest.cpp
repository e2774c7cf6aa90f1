#include "CaseName.h"
#include "Program.h"
#include "Schema.h"

#include <krender/shadergen/CgMaterialCompiler.h>
#include <krender/shadergen/GlslMaterialCompiler.h>
#include <krender/shading/ShadingParser.h>

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <sstream>

using krShadingDag::ShadingNodeSpec;

namespace
{

constexpr const char* kMaterial =
    "// A material and what stands beside it.\n"
    "float helper(float a) { output = a; }\n"
    "material plain(uniform float3 color, vertex float2 uv, out float4 outRGBA)\n"
    "{\n"
    "    outRGBA = float4(color, uv.x);\n"
    "    illuminance { outRGBA.xyz += gLightDiffuseColor; }\n"
    "}\n"
    "material other(out float4 outRGBA) { outRGBA = float4(1.0, 0.0, 0.0, helper(1.0)); }\n"
    "material declared(out float4 outRGBA);\n";

constexpr const char* kLights = "light declaredLight(out float3 outLightDiffuseColor);\n"
                                "light redLight(uniform float strength, out float3 outLightDiffuseColor)\n"
                                "{ outLightDiffuseColor = strength * float3(1.0, 0.0, 0.0); }\n"
                                "light blueLight(out float3 outLightDiffuseColor)\n"
                                "{ outLightDiffuseColor = float3(0.0, 0.0, 1.0); }\n";

/// A workplace with the sources above.
class CompileTest : public testing::Test
{
protected:
    CompileTest()
    {
        fPlace.write("m.krs", kMaterial);
        fPlace.write("l.krs", kLights);
    }

    /// Runs "krslc compile --material m.krs --stdlib none --lib l.krs" and the arguments.
    [[nodiscard]] Outcome compile(const std::vector<std::string>& arguments,
                                  const Circumstances& circumstances = {}) const
    {
        std::vector<std::string> all{"compile", "--stdlib", "none", "--lib", "l.krs"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        if (std::find(arguments.begin(), arguments.end(), "--material") == arguments.end())
            all.insert(all.end(), {"--material", "m.krs"});
        return fPlace.krslc(all, circumstances);
    }

    const Workplace fPlace;
};

using Names = std::vector<std::string>;
const Names kNoLights;

/// The library's own answer for the material "plain" and lights of function redLight.
struct Programs
{
    std::string vertex;
    std::string fragment;
};

Programs libraryPrograms(bool isGlsl, const Names* lightNames)
{
    const std::string source(kMaterial);
    const auto parse = [](const std::string& text)
    {
        ShadingNodeSpec* spec = nullptr;
        EXPECT_TRUE(krShadingDag::ShadingParser().parseString(text.c_str(), &spec));
        return std::unique_ptr<ShadingNodeSpec>(spec);
    };
    const auto material = parse(source.substr(source.find("material plain")));
    const auto light = parse(std::string(kLights).substr(std::string(kLights).find("light redLight")));
    std::vector<LightSpec> lights;
    if (lightNames)
        for (const std::string& name : *lightNames)
            lights.push_back({light.get(), name.c_str()});
    krString::CString vertex;
    krString::CString fragment;
    if (isGlsl)
        compileMaterialToGlsl(*material, lightNames ? &lights : nullptr, vertex, fragment);
    else
        compileMaterialToCg(*material, lightNames ? &lights : nullptr, vertex, fragment);
    return {vertex.asChar(), fragment.asChar()};
}

} // namespace

TEST_F(CompileTest, WritesExactlyTheLibrarysPrograms)
{
    const Names names{"b", "a"};
    const Outcome outcome =
        compile({"--target", "cg,glsl", "--light", "b=redLight", "--light", "a=redLight", "-o", "out"});
    ASSERT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.err + outcome.out, "");
    const Programs glsl = libraryPrograms(true, &names);
    const Programs cg = libraryPrograms(false, &names);
    EXPECT_EQ(fPlace.read("out.vert"), glsl.vertex);
    EXPECT_EQ(fPlace.read("out.frag"), glsl.fragment);
    EXPECT_EQ(fPlace.read("out.vert.cg"), cg.vertex);
    EXPECT_EQ(fPlace.read("out.frag.cg"), cg.fragment);
    EXPECT_EQ(fPlace.names(), (Names{"l.krs", "m.krs", "out.frag", "out.frag.cg", "out.vert", "out.vert.cg"}));
}

TEST_F(CompileTest, TreatsIlluminanceBlocksAsAsked)
{
    const Programs removed = libraryPrograms(true, &kNoLights);
    const Programs kept = libraryPrograms(true, nullptr);
    ASSERT_NE(removed.fragment, kept.fragment);
    EXPECT_EQ(compile({"-o", "-"}).out, removed.vertex + removed.fragment);
    EXPECT_EQ(compile({"-o", "-", "--keep-illuminance"}).out, kept.vertex + kept.fragment);
}

TEST_F(CompileTest, PutsThePreambleAheadOfGlslAlone)
{
    fPlace.write("types.krs", "material m(vertex float a, uniform int2 b, uniform matrix2 d, out float4 outRGBA)\n"
                              "{ int3 i; int4 j; outRGBA = float4(a, 0.0, 0.0, 1.0); }\n");
    for (const char* file : {"m.krs", "types.krs"})
    {
        ASSERT_EQ(compile({"--material", file, "--vertex", "a b.vert", "--fragment", "c", "--validate"}).status, 0);
        const Programs bare{fPlace.read("a b.vert"), fPlace.read("c")};
        const Outcome outcome = compile(
            {"--material", file, "--preamble", "glsl120", "--vertex", "a b.vert", "--fragment", "c", "--validate"});
        ASSERT_EQ(outcome.status, 0) << outcome.err;
        const std::string preamble = fPlace.read("c").substr(0, fPlace.read("c").size() - bare.fragment.size());
        EXPECT_TRUE(preamble.starts_with("#version 120\n"));
        EXPECT_EQ(fPlace.read("a b.vert"), preamble + bare.vertex);
        EXPECT_EQ(fPlace.read("c"), preamble + bare.fragment);
    }
    EXPECT_EQ(compile({"--preamble", "glsl120", "--target", "cg", "-o", "-"}).out,
              compile({"--target", "cg", "-o", "-"}).out);
}

TEST_F(CompileTest, PicksTheMaterial)
{
    const std::string all = compile({"--material", "m.krs", "-o", "-"}).out;
    EXPECT_NE(all.find("uv.x"), std::string::npos); // the first that says "material", not the helper before it
    EXPECT_EQ(compile({"--material", "m.krs:plain", "-o", "-"}).out, all);
    EXPECT_EQ(compile({"--material", "-:plain", "-o", "-"}, {.input = kMaterial}).out, all);
    EXPECT_NE(compile({"--material", "m.krs:other", "-o", "-"}).out.find("1.0, 0.0, 0.0, helper(1.0)"),
              std::string::npos);
    EXPECT_NE(compile({"--material", "m.krs:helper", "--plain", "-o", "-"}).out.find("output = a;"), std::string::npos);
    EXPECT_EQ(compile({"--material", "m.krs", "--plain", "-o", "-"}).out, all);
    EXPECT_EQ(compile({"--material", "-", "-o", "-"}, {.input = std::string("\xef\xbb\xbf") + kMaterial}).out, all);
    fPlace.write("m.krs:other", kMaterial); // a file's whole name wins
    EXPECT_EQ(compile({"--material", "m.krs:other", "-o", "-"}).out, all);
}

TEST_F(CompileTest, FindsItsStandardLibraryWhereverItIsCalled)
{
    EXPECT_EQ(fPlace.krslc({"compile", "--material", "m.krs", "--light", "k=pointLight", "-o", "x"}).err, "");
}

TEST_F(CompileTest, ReadsPlainSourcesToTheSameBytes)
{
    for (const char* option : {"--light", "--keep-illuminance"})
    {
        Names arguments{"--target", "glsl", "--target", "cg", "--preamble", "glsl120", "-o", "-", option};
        if (std::string(option) == "--light")
            arguments.insert(arguments.end(), {"k=redLight", "--light", "f=blueLight"});
        const std::string full = compile(arguments).out;
        arguments.emplace_back("--plain");
        const Outcome plain = compile(arguments);
        EXPECT_EQ(plain.err, "");
        EXPECT_EQ(plain.out, full);
    }
}

// The material's own module comes first, and then the libraries in their order; what is only declared is no light.
TEST_F(CompileTest, TakesTheFirstLightOfTheName)
{
    fPlace.write("own.krs", std::string(kMaterial) + "light blueLight(out float3 outLightDiffuseColor)\n"
                                                     "{ outLightDiffuseColor = float3(0.25, 0.0, 0.0); }\n");
    fPlace.write("later.krs",
                 "light redLight(out float3 outLightDiffuseColor) { outLightDiffuseColor = float3(0.75); }\n"
                 "light declaredLight(out float3 outLightDiffuseColor)\n"
                 "{ outLightDiffuseColor = float3(0.125); }\n");
    const auto fragment = [this](const std::string& light) {
        return compile({"--material", "own.krs", "--lib", "later.krs", "--light", "k=" + light, "-o", "-"}).out;
    };
    EXPECT_NE(fragment("blueLight").find("0.25, 0.0, 0.0"), std::string::npos);
    EXPECT_NE(fragment("redLight").find("kstrength"), std::string::npos);
    EXPECT_NE(fragment("declaredLight").find("0.125"), std::string::npos);
    EXPECT_NE(fragment("l.krs:blueLight").find("0.0, 0.0, 1.0"), std::string::npos);
}

TEST_F(CompileTest, WritesTheInterfaceOfThePrograms)
{
    fPlace.write("d.krs",
                 "material d(uniform float half = 0.1 [[ string label = \"Half\", float max = 1 ]], vertex float2 "
                 "uv,\nfloat3 gWorldPos, out float4 outRGBA)\n{ outRGBA = float4(gWorldPos, half + uv.x);\n"
                 "illuminance { outRGBA.xyz += gLightDiffuseColor; } }\n");
    const Outcome outcome = compile(
        {"--material", "d.krs", "--target", "cg,hlsl,glsl,glsl450", "--light", "k=redLight", "-o", "x", "--interface", "i.json"});
    ASSERT_EQ(outcome.status, 0) << outcome.err;
    const std::string text = fPlace.read("i.json");
    EXPECT_EQ(schemaFault(text, "krslc-program"), "");
    const auto list = nlohmann::json::parse(text);
    ASSERT_EQ(list.size(), 4u);
    EXPECT_EQ(list[0]["target"], "cg");
    EXPECT_EQ(list[0]["vertexInputs"][0]["texCoord"], 1);
    auto expected = nlohmann::json::parse(R"({"material": "d", "target": "glsl", "vertexFile": "x.vert",
        "fragmentFile": "x.frag", "entryPoint": "main", "uniforms": [
            {"programName": "half_1", "name": "half", "light": null, "type": "float", "default": 0.1,
             "metadata": {"label": "Half", "max": 1.0}, "offset": null, "matrixStride": null, "binding": null,
             "texture": null, "sampler": null},
            {"programName": "kstrength", "name": "strength", "light": "k", "type": "float", "default": null,
             "metadata": {}, "offset": null, "matrixStride": null, "binding": null, "texture": null,
             "sampler": null}],
        "vertexInputs": [{"programName": "uv", "name": "uv", "type": "float2", "texCoord": null, "location": null,
                          "metadata": {}}],
        "providedValues": ["gWorldPos"], "block": null, "frameUniforms": [], "frameInputs": []})");
    EXPECT_EQ(list[2], expected);
    expected["target"] = "glsl450";
    expected["vertexFile"] = "x.glsl450.vert";
    expected["fragmentFile"] = "x.glsl450.frag";
    expected["uniforms"][0]["offset"] = 208;
    expected["uniforms"][1]["offset"] = 212;
    expected["vertexInputs"][0]["location"] = 3;
    expected["block"] = {{"name", "kr_Uniforms"}, {"size", 224}, {"set", 0}, {"binding", 0}, {"index", nullptr}};
    expected["frameUniforms"] = list[3]["frameUniforms"];
    expected["frameInputs"] = list[3]["frameInputs"];
    EXPECT_EQ(list[3], expected);
    EXPECT_EQ(list[3]["frameUniforms"][1], nlohmann::json::parse(R"({"programName": "objToWorldMatrix",
        "type": "matrix4", "offset": 64, "matrixStride": 16})"));
    EXPECT_EQ(list[3]["frameInputs"][0], nlohmann::json::parse(R"({"programName": "kr_Vertex", "type": "float4",
        "texCoord": null, "location": 0})"));
    EXPECT_EQ(list[1]["block"]["index"], 0);
    EXPECT_EQ(list[1]["vertexInputs"][0]["texCoord"], 3);
}

// One run writes what several do, and what stands beside a target does not change its bytes.
TEST_F(CompileTest, WritesAllTargetsThatTheMaterialCanBeWrittenFor)
{
    fPlace.write("s.krs", "material s(uniform sampler3D fog, uniform sampler2D dust, out float4 outRGBA)\n"
                          "{ outRGBA = texture3D(fog, gWorldPos) + texture2D(dust, gWorldPos.xy); }\n");
    const Outcome all =
        compile({"--material", "s.krs", "--target", "all", "-o", "x", "--validate", "--interface", "i.json"});
    ASSERT_EQ(all.status, 0) << all.err;
    EXPECT_EQ(all.err.substr(0, all.err.find('\n')),
              "s.krs:1:30: note: essl100 is left out: essl100 cannot do this: it has no sampler3D");
    const std::string interface = fPlace.read("i.json");
    EXPECT_EQ(schemaFault(interface, "krslc-program"), "");
    for (const auto& program : nlohmann::json::parse(interface))
    {
        const std::string target = program["target"];
        ASSERT_EQ(compile({"--material", "s.krs", "--target", target, "-o", "one"}).status, 0) << target;
        for (const char* file : {"vertexFile", "fragmentFile"})
        {
            const std::string path = program[file];
            EXPECT_EQ(fPlace.read(path), fPlace.read("one" + path.substr(1))) << path;
        }
        if (target == "msl")
        {
            EXPECT_EQ(program["entryPoint"], "main0");
            EXPECT_EQ(program["uniforms"][1]["texture"], 1);
        }
    }
    const Outcome named = compile({"--material", "s.krs", "--target", "all,essl100", "-o", "y"});
    EXPECT_EQ(named.status, 1);
    EXPECT_EQ(named.err.substr(0, named.err.find('\n')),
              "s.krs:1:30: error: essl100 cannot do this: it has no sampler3D [target-lacks]");
}

// Several materials

TEST_F(CompileTest, WritesTheGoodOnesOfSeveralMaterials)
{
    fPlace.write("bad.krs", "const float k = kk;\n");
    Names arguments{"--material",  "m.krs", "--material", "bad.krs",   "--material",
                    "m.krs:other", "-o",    "out/",       "--depfile", "d"};
    const Outcome outcome = compile(arguments);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "bad.krs:1:17: error: 'kk' is no constant [not-a-constant]\nconst float k = kk;\n"
                           "                ^~\nkrslc: 2 of 3 materials compiled\n");
    EXPECT_EQ(fPlace.read("out/plain.frag"), libraryPrograms(true, &kNoLights).fragment);
    EXPECT_EQ(fPlace.read("d"),
              "out/plain.vert out/plain.frag out/other.vert out/other.frag: \\\n  l.krs \\\n  m.krs \\\n  bad.krs\n");
    EXPECT_EQ(compile({"--material", "bad.krs:a", "--material", "bad.krs:b", "-o", "out/"}).err,
              outcome.err.substr(0, outcome.err.find("krslc")) + "krslc: 0 of 2 materials compiled\n");
    arguments[3] = "gone.krs";
    EXPECT_EQ(compile(arguments).status, 2);
    EXPECT_EQ(compile(arguments).err, "krslc: error: cannot read 'gone.krs': No such file or directory\n"
                                      "krslc: 2 of 3 materials compiled\n");
}

TEST_F(CompileTest, ShowsItsProgressOnATerminal)
{
    if (!Workplace::canMakeTerminals())
        GTEST_SKIP() << "there are no pseudo-terminals here";
    const Outcome outcome =
        compile({"--material", "m.krs", "--material", "m.krs:other", "-o", "out/"}, {.onTerminal = true});
    EXPECT_EQ(outcome.err, "1/2 m.krs\r\x1b[K2/2 m.krs:other\r\x1b[Kkrslc: 2 of 2 materials compiled\r\n");
}

TEST_F(CompileTest, PrintsWhatItFindsAsJson)
{
    struct
    {
        Names arguments;
        int status;
        const char* message;
    } const cases[] = {
        {{"--light", "k=nothing"}, 1, "--light k=nothing: there is no light \"nothing\" with a body"},
        {{"--lib", "gone.krs"}, 2, "cannot read 'gone.krs': No such file or directory"},
        {{"--depfile", "x.vert"}, 2, "'x.vert' is named twice for an output"},
    };
    for (const auto& [arguments, status, message] : cases)
    {
        Names all{"--material", "m.krs", "-o", "x", "--json"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        const Outcome outcome = compile(all);
        EXPECT_EQ(outcome.status, status);
        EXPECT_EQ(outcome.err, "");
        EXPECT_EQ(schemaFault(outcome.out, "krslc-diagnostics"), "");
        EXPECT_EQ(nlohmann::json::parse(outcome.out)[0]["message"], message);
    }
}

TEST_F(CompileTest, WritesDependenciesForMake)
{
    fPlace.write("a $b#.krs", std::string("#include \"part.krs\"\n") + kMaterial);
    fPlace.write("part.krs", "#include \"deep.krs\"\n");
    fPlace.write("deep.krs", "#include \"part.krs\"\n");
    ASSERT_EQ(compile({"--material", "a $b#.krs", "-o", "o p", "--depfile", "d"}).status, 0);
    EXPECT_EQ(fPlace.read("d"),
              "o\\ p.vert o\\ p.frag: \\\n  l.krs \\\n  a\\ $$b\\#.krs \\\n  part.krs \\\n  deep.krs\n");
}

// What cannot be compiled leaves one clear message, and everything as it was.

struct Refused
{
    const char* about;
    const char* arguments; ///< between blanks
    int status;
    const char* message;
};

class CompileRefuses : public CompileTest, public testing::WithParamInterface<Refused>
{
};

TEST_P(CompileRefuses, AndWritesNothing)
{
    fPlace.write("wrong.krs", "material m(out float4 outRGBA)\n{\noutRGBA=x;\n}\n");
    fPlace.write("hang.krs", "material m(out float4 a) { a = x;; }\n");
    fPlace.write("empty.krs", "");
    fPlace.write("unused.krs", "material m(out float4 outRGBA) { int i = 3; outRGBA = float4(1.0); }\n");
    fPlace.write("wide.krs", "material m(vertex float4 a, vertex float4 b, vertex float4 c,\n"
                             "vertex float4 d, out float4 outRGBA, vertex float4 e, vertex float4 f)\n"
                             "{ outRGBA = a + b + c + d + e + f; }\n");
    std::filesystem::create_directory(fPlace.path() / "folder");
    const Names before = fPlace.names();
    std::istringstream words(GetParam().arguments);
    const Outcome outcome = compile({std::istream_iterator<std::string>(words), {}});
    EXPECT_EQ(outcome.status, GetParam().status);
    EXPECT_EQ(outcome.err.substr(0, outcome.err.find('\n')), GetParam().message);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(fPlace.names(), before);
}

INSTANTIATE_TEST_SUITE_P(
    All, CompileRefuses,
    testing::Values(
        Refused{"material with an error", "--material wrong.krs -o x", 1,
                "wrong.krs:3:9: error: 'x' is not declared [unknown-name]"},
        Refused{"library with an error", "--lib wrong.krs -o x", 1,
                "wrong.krs:3:9: error: 'x' is not declared [unknown-name]"},
        Refused{"unending plain material", "--plain --material hang.krs -o x", 1,
                "hang.krs:1:34: error: Empty statement"},
        Refused{"no material", "--material empty.krs -o x", 1,
                "empty.krs:1:1: error: there is no material with a body [no-such-shader]"},
        Refused{"declaration by name", "--material m.krs:declared -o x", 1,
                "m.krs:1:1: error: there is no material 'declared' with a body [no-such-shader]"},
        Refused{"unknown name", "--material m.krs:plane -o x --target all", 1,
                "m.krs:1:1: error: there is no material 'plane' with a body: is it 'plain'? [no-such-shader]"},
        Refused{"unknown plain name", "--plain --material m.krs:plane -o x", 1,
                "krslc: error: \"m.krs\" has no function \"plane\" with a body; did you mean plain?"},
        Refused{
            "unknown light", "--light k=READLIGHT -o x", 1,
            "krslc: error: --light k=READLIGHT: there is no light \"READLIGHT\" with a body; did you mean redLight?"},
        Refused{
            "unknown plain light", "--plain --light k=redLigh -o x", 1,
            "krslc: error: --light k=redLigh: there is no function \"redLigh\" with a body; did you mean redLight?"},
        Refused{"declared light", "--light k=declaredLight -o x", 1,
                "krslc: error: --light k=declaredLight: there is no light \"declaredLight\" with a body"},
        Refused{"warning as an error", "-Werror --material unused.krs -o x", 1,
                "unused.krs:1:38: error: 'i' is not read [-Wunused-variable]"},
        Refused{
            "input past the last register", "--material wide.krs --target glsl,cg -o x", 1,
            "wide.krs:2:69: error: there is no room left for 'f': cg carries 5 registers of four components from the "
            "vertex to the pixel [no-interpolant]"},
        Refused{"missing material", "--material none.krs -o x", 2,
                "krslc: error: cannot read 'none.krs': No such file or directory"},
        Refused{"missing library", "--lib none.krs -o x", 2,
                "krslc: error: cannot read 'none.krs': No such file or directory"},
        Refused{"no place", "", 2,
                "krslc: error: where should the programs go? Give -o BASE, -o -, or --vertex and --fragment"},
        Refused{
            "folder without a slash", "-o folder", 2,
            "krslc: error: -o folder is a folder: give folder/ to write into it, or a file name without its ending"},
        Refused{"half a pair", "--vertex x", 2, "krslc: error: --vertex and --fragment go together"},
        Refused{"two places", "-o y --vertex x --fragment z", 2,
                "krslc: error: -o and --vertex with --fragment exclude each other"},
        Refused{"two programs in one file", "--vertex x --fragment ./x", 2,
                "krslc: error: './x' is named twice for an output"},
        Refused{"own source", "--vertex x --fragment ./m.krs", 2,
                "krslc: error: './m.krs' is a source of this compilation and would be overwritten"},
        Refused{"two targets in two files", "--target all --vertex x --fragment y", 2,
                "krslc: error: --vertex and --fragment name the programs of one target: use -o for several"},
        Refused{"light without a key", "--light =redLight -o x", 2,
                "krslc: error: --light =redLight: this is not KEY=[FILE:]FUNCTION with a name for its key"},
        Refused{"light without a function", "--light k -o x", 2,
                "krslc: error: --light k: this is not KEY=[FILE:]FUNCTION with a name for its key"},
        Refused{"unknown target", "--target glsl,metal -o x", 2,
                "krslc: error: there is no target \"metal\": there are glsl, cg, spirv, glsl330, glsl450, essl300, "
                "essl100, hlsl, msl and all"},
        Refused{"full target of a plain source", "--plain --target glsl,msl -o x", 2,
                "krslc: error: --target msl: it takes full KRSL, which --plain does not read"},
        Refused{"translation of what is kept", "--keep-illuminance --target spirv -o x", 2,
                "krslc: error: --target spirv: what --keep-illuminance leaves in a program cannot be translated"},
        Refused{"several materials in one place", "--material m.krs --material m.krs:other -o x", 2,
                "krslc: error: several materials need a folder for their programs: give -o FOLDER/"},
        Refused{"two materials of one name", "--material m.krs --material m.krs:plain -o new/", 2,
                "krslc: error: 'new/plain.vert' is named twice for an output"},
        Refused{"programs in the JSON", "--json -o -", 2,
                "krslc: error: --json writes to standard output, so nothing else can"},
        Refused{"interface of a plain source", "--plain --interface i -o x", 2,
                "krslc: error: --interface tells of full KRSL, which --plain does not read"},
        Refused{"lights that are kept out", "--keep-illuminance --light k=redLight -o x", 2,
                "krslc: error: --keep-illuminance and --light exclude each other"}),
    CaseName());

struct Invalid
{
    const char* about;
    std::string source;
    const char* target;
    const char* message; ///< the first line
};

class CompileValidates : public CompileTest, public testing::WithParamInterface<Invalid>
{
};

TEST_P(CompileValidates, AndWritesNoFaultyProgram)
{
    fPlace.write("i.krs", GetParam().source);
    const Names before = fPlace.names();
    Names arguments{"--material", "i.krs", "--plain", "--target", GetParam().target, "-o", "x", "--validate"};
    const Outcome outcome = compile(arguments);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err.substr(0, outcome.err.find('\n')), GetParam().message) << outcome.err;
    EXPECT_EQ(fPlace.names(), before);
    arguments.pop_back();
    EXPECT_EQ(compile(arguments).status, 0);
}

INSTANTIATE_TEST_SUITE_P(
    All, CompileValidates,
    testing::Values(
        Invalid{"undeclared variable", "material m(out float4 outRGBA) { outRGBA = float4(nothing, 0.0, 0.0, 0.0); }\n",
                "glsl", "x.frag:35:19: error: 'nothing' : undeclared identifier"},
        Invalid{"undeclared variable of Cg",
                "material m(out float4 outRGBA) { outRGBA = float4(nothing, 0.0, 0.0, 0.0); }\n", "cg",
                "x.frag.cg:61:19: error: 'nothing' : unknown variable"},
        Invalid{"word of the checker", "material m(out float4 outRGBA) { outRGBA.x = point; }\n", "cg",
                "x.frag.cg:61:14: error: 'point' : unknown variable"},
        Invalid{"function of the checker", "material m(out float4 outRGBA) { outRGBA.x = mad(1.0, 2.0, 3.0); }\n", "cg",
                "x.frag.cg:61:14: error: 'mad' : no matching overloaded function found"},
        Invalid{"components of GLSL", "material m(out float4 outRGBA) { outRGBA.st = float2(1.0, 1.0); }\n", "cg",
                "x.frag.cg:61:10: error: \"st\" names no components: Cg has xyzw and rgba"},
        Invalid{"return without a value", "material m(out float4 outRGBA) { return ; }\n", "cg",
                "x.frag.cg:61:2: error: a value is missing: this program returns a colour"},
        Invalid{"more than the checker's stack holds",
                "material m(out float4 outRGBA) { outRGBA.x = " + std::string(200000, '(') + "1.0" +
                    std::string(200000, ')') + "; }\n",
                "cg",
                "krslc: error: the checker of cg programs broke down: the material's code nests too deeply or is too "
                "long for it"},
        Invalid{"cut condition", "material m(out float4 outRGBA) { if (sin(1.0) > 0.0) outRGBA.x = 1.0; }\n", "glsl",
                "x.frag:36:2: error: syntax error, unexpected LEFT_BRACE, expecting RIGHT_PAREN or COMMA"},
        Invalid{"program of more than a megabyte",
                "material m(out float4 outRGBA) { outRGBA.x = " + std::string(1100000, ' ') + "1.0; }\n", "glsl",
                "krslc: error: a program of more than 1 MB is not checked"}),
    CaseName());

// The checker warns of such names. A line of the program is one of the source, whatever stands ahead of the program.
TEST_F(CompileTest, ShowsWhatACheckerFindsInTheSource)
{
    fPlace.write("u.krs", "material m(uniform float a, out float4 outRGBA)\n{\n  float x__y = a;\n"
                          "  outRGBA = float4(x__y);\n}\n");
    for (const auto& [preamble, line] : {std::pair{"none", "36"}, {"glsl120", "42"}})
        EXPECT_EQ(
            compile({"--material", "u.krs", "--preamble", preamble, "--validate", "-o", "x"}).err,
            std::string("u.krs:3:3: warning: 'x__y' : identifiers containing consecutive underscores (\"__\") are "
                        "reserved, in line ") +
                line + " of x.frag\n  float x__y = a;\n  ^~~~~~~~~~~~~~~\n");
}

// The checker of Cg programs reads another language, which reserves more words.
TEST_F(CompileTest, AcceptsNamesThatCgHasFree)
{
    fPlace.write(
        "names.krs",
        "material m(uniform sampler2D texture, uniform float s, vertex float2 point, out float4 outRGBA)\n"
        "{ float line = s; float triangle = line; float vector = s; float sampler = s; float string = s;\n"
        "float linear = s; float shared = s; float matrix = s; float sample = s; float uint = s; float mad = s;\n"
        "outRGBA = texture2D(texture, point) + float4(matrix, sample, uint, mad + triangle); }\n");
    EXPECT_EQ(compile({"--material", "names.krs", "--plain", "--target", "cg", "--validate", "-o", "x"}).err, "");
    EXPECT_NE(fPlace.read("x.frag.cg").find("texture2D(texture, point)"), std::string::npos);
}

// Every block of every light has its own copy of the light's code, and the uniforms are declared once.
TEST_F(CompileTest, ValidatesSeveralBlocksAndLights)
{
    fPlace.write("two.krs", "material m(uniform float b, out float4 outRGBA) { outRGBA = float4(b);\n"
                            "illuminance { outRGBA.x += gLightDiffuseColor.x; } illuminance { outRGBA.y += 1.0; } }\n");
    for (const auto& [mode, targets] : {std::pair{"--plain", "glsl,cg"}, {"-Werror", "all"}})
        EXPECT_EQ(compile({"--material", "two.krs", mode, "--light", "k=redLight", "--light", "f=redLight", "--target",
                           targets, "-o", "x", "--validate"})
                      .err,
                  "");
}

// Output.

TEST_F(CompileTest, ReplacesFilesWholeAndKeepsLinksAndModes)
{
    fPlace.write("real.frag", "old");
    ::chmod((fPlace.path() / "real.frag").c_str(), 0640);
    std::filesystem::create_symlink("real.frag", fPlace.path() / "x.frag");
    ASSERT_EQ(compile({"-o", "x"}).status, 0);
    struct stat status = {};
    ASSERT_EQ(::stat((fPlace.path() / "real.frag").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0640u);
    EXPECT_TRUE(std::filesystem::is_symlink(fPlace.path() / "x.frag"));
    EXPECT_EQ(fPlace.read("real.frag"), fPlace.read("x.frag"));
    EXPECT_NE(fPlace.read("real.frag"), "old");
}

TEST_F(CompileTest, MakesTheFoldersThatItWritesTo)
{
    ASSERT_EQ(compile({"-o", "new/folder/x", "--depfile", "deps/d"}).status, 0);
    ASSERT_EQ(compile({"-o", "new/", "--target", "cg"}).status, 0);
    ASSERT_EQ(compile({"-o", (fPlace.path() / "deps/").string(), "--material", "m.krs:other"}).status, 0);
    for (const char* file : {"new/folder/x.vert", "new/folder/x.frag", "deps/d", "new/plain.vert.cg",
                             "new/plain.frag.cg", "deps/other.vert", "deps/other.frag"})
        EXPECT_NE(fPlace.read(file), "") << file;
}

// Old programs stand where new ones should go; after a failure they stand there still, and nothing else does.
TEST_F(CompileTest, TouchesNothingUnlessAllCanBeWritten)
{
    fPlace.write("x.vert", "old vertex");
    fPlace.write("x.frag", "old fragment");
    const auto expectFailure = [this](const std::vector<std::string>& arguments, const std::string& reason,
                                      const Circumstances& circumstances = {})
    {
        const Outcome outcome = compile(arguments, circumstances);
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.err, "krslc: error: cannot write " + reason + "\n");
        EXPECT_EQ(fPlace.read("x.vert"), "old vertex");
        EXPECT_EQ(fPlace.read("x.frag"), "old fragment");
        EXPECT_EQ(fPlace.names(), (Names{"l.krs", "m.krs", "x.frag", "x.vert"}));
    };
    ASSERT_GT(libraryPrograms(true, nullptr).vertex.size(), 600u);
    expectFailure({"-o", "x"}, "'x.vert': File too large", {.fileSizeLimit = 600});
    expectFailure({"-o", "new/x"}, "'new/x.vert': File too large", {.fileSizeLimit = 600});
    expectFailure({"--vertex", "x.vert", "--fragment", "/dev/full"}, "'/dev/full': No space left on device");
    expectFailure({"-o", "-"}, "standard output: No space left on device", {.standardOutput = "/dev/full"});
    expectFailure({"--vertex", "new/folder/x.vert", "--fragment", "m.krs/x"}, "'m.krs/x': Not a directory");
    expectFailure({"-o", "x", "--depfile", "."}, "'.': Is a directory");
    ::chmod(fPlace.path().c_str(), 0555);
    expectFailure({"-o", "x"}, "'x.vert': Permission denied", {.boundByModes = true});
    ::chmod(fPlace.path().c_str(), 0777);
}

// The command line as a whole.

TEST(CommandLine, AnswersWhatIsAskedAndRefusesTheRest)
{
    const Workplace place;
    EXPECT_EQ(place.krslc({"--version"}).out, "krslc 1.0.0\n");
    EXPECT_EQ(place.krslc({"--help"}).status, 0);
    EXPECT_NE(place.krslc({"compile", "--help"}).out.find("--keep-illuminance"), std::string::npos);
    for (const std::vector<std::string>& wrong : {std::vector<std::string>{},
                                                  {"cook"},
                                                  {"check"},
                                                  {"tokens"},
                                                  {"specs", "a", "b"},
                                                  {"interface"},
                                                  {"check", "--cook", "a"}})
    {
        const Outcome outcome = place.krslc(wrong);
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.out, "");
        EXPECT_TRUE(outcome.err.starts_with("krslc: error: ")) << outcome.err;
        EXPECT_TRUE(outcome.err.ends_with("Try \"krslc --help\".\n")) << outcome.err;
    }
}
