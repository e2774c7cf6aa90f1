#include "CaseName.h"
#include "Program.h"

#include <krender/shadergen/CgMaterialCompiler.h>
#include <krender/shadergen/GlslMaterialCompiler.h>
#include <krender/shading/ShadingParser.h>

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

constexpr const char* kMaterial = "// A material and what stands beside it.\n"
                                  "float helper(float a) { output = a; }\n"
                                  "material plain(uniform float3 color, vertex float2 uv, out float4 outRGBA)\n"
                                  "{\n"
                                  "    outRGBA = float4(color, uv.x);\n"
                                  "    illuminance { outRGBA.xyz += gLightDiffuseColor; }\n"
                                  "}\n"
                                  "material other(out float4 outRGBA) { outRGBA = float4(1.0, 0.0, 0.0, 1.0); }\n"
                                  "material declared(out float4 outRGBA);\n";

constexpr const char* kLights = "light declaredLight(out float3 outLightDiffuseColor);\n"
                                "light redLight(uniform float strength, out float3 outLightDiffuseColor)\n"
                                "{ outLightDiffuseColor = strength * float3(1.0, 0.0, 0.0); }\n"
                                "light nestedLight(out float3 outLightDiffuseColor) { illuminance { "
                                "outLightDiffuseColor = float3(0.0, 0.0, 0.0); } }\n";

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
    (isGlsl ? compileMaterialToGlsl : compileMaterialToCg)(*material, lightNames ? &lights : nullptr, vertex, fragment);
    return {vertex.asChar(), fragment.asChar()};
}

} // namespace

TEST_F(CompileTest, WritesExactlyTheLibrarysPrograms)
{
    const Names names{"b", "a"};
    const Outcome outcome = compile({"--target", "all", "--light", "b=redLight", "--light", "a=redLight", "-o", "out"});
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
    const Names none;
    const Programs removed = libraryPrograms(true, &none);
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
    EXPECT_NE(compile({"--material", "m.krs:other", "-o", "-"}).out.find("1.0, 0.0, 0.0, 1.0"), std::string::npos);
    EXPECT_NE(compile({"--material", "m.krs:helper", "-o", "-"}).out.find("output = a;"), std::string::npos);
    EXPECT_EQ(compile({"--material", "-", "-o", "-"}, {.input = std::string("\xef\xbb\xbf") + kMaterial}).out, all);
    fPlace.write("m.krs:other", kMaterial); // a file's whole name wins
    EXPECT_EQ(compile({"--material", "m.krs:other", "-o", "-"}).out, all);
}

TEST_F(CompileTest, FindsItsStandardLibraryWhereverItIsCalled)
{
    const Outcome outcome = fPlace.krslc(
        {"compile", "--material", "m.krs", "--light", "k=pointLight", "--target", "all", "--validate", "-o", "x"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
}

TEST_F(CompileTest, TakesTheDefinitionAmongOverloads)
{
    fPlace.write("l.krs",
                 std::string("light redLight(uniform float3 a, out float3 outLightDiffuseColor);\n") + kLights);
    EXPECT_NE(compile({"--light", "k=redLight", "-o", "-"}).out.find("kstrength"), std::string::npos);
}

TEST_F(CompileTest, WarnsOfALightWithAnIlluminanceBlock)
{
    const Outcome outcome = compile({"--light", "k=nestedLight", "-o", "x"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err.substr(0, outcome.err.find('\n')),
              "l.krs:4:7: warning: the illuminance block of light \"nestedLight\" stays in the program as it is "
              "[-Willuminance-in-light]");
}

TEST_F(CompileTest, WritesDependenciesForMake)
{
    fPlace.write("a $b#.krs", kMaterial);
    ASSERT_EQ(compile({"--material", "a $b#.krs", "-o", "o p", "--depfile", "d"}).status, 0);
    EXPECT_EQ(fPlace.read("d"), "o\\ p.vert o\\ p.frag: \\\n  a\\ $$b\\#.krs \\\n  l.krs\n");
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
    fPlace.write("wrong.krs", "material m(out float4 a)\n{\n    a = x\n");
    fPlace.write("hang.krs", "material m(out float4 a) { a = x;; }\n");
    fPlace.write("empty.krs", "");
    fPlace.write("declared.krs", "float f(float a);\n");
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
        Refused{"unfinished material", "--material wrong.krs -o x", 1,
                "wrong.krs:3:5: error: the source ends within this statement: a \";\" is missing"},
        Refused{"unending material", "--material hang.krs -o x", 1,
                "hang.krs:1:34: error: empty statement: parsing would never end [-Wempty-statement]"},
        Refused{"unending library", "--lib hang.krs -o x", 1,
                "hang.krs:1:34: error: empty statement: parsing would never end [-Wempty-statement]"},
        Refused{"no function", "--material empty.krs -o x", 1,
                "empty.krs:1:1: error: found no function declaration or definition"},
        Refused{"only a declaration", "--material declared.krs -o x", 1,
                "declared.krs:1:7: error: \"f\" is only declared: a material needs a body"},
        Refused{"declaration by name", "--material m.krs:declared -o x", 1,
                "m.krs:9:10: error: \"declared\" is only declared: a material needs a body"},
        Refused{"unknown name", "--material m.krs:plane -o x", 1,
                "m.krs:1:1: error: this source has no function \"plane\"; did you mean plain?"},
        Refused{
            "unknown light", "--light k=readlight -o x", 1,
            "krslc: error: --light k=readlight: the libraries have no function \"readlight\"; did you mean redLight?"},
        Refused{"light that sorts before another", "--light k=redLigh -o x", 1,
                "krslc: error: --light k=redLigh: the libraries have no function \"redLigh\"; did you mean redLight?"},
        Refused{"declared light", "--light k=declaredLight -o x", 1,
                "l.krs:1:7: error: \"declaredLight\" is only declared: a light needs a body"},
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
                "krslc: error: --vertex and --fragment name the programs of one target: use -o for all"},
        Refused{"light without a key", "--light =redLight -o x", 2,
                "krslc: error: --light =redLight: this is not KEY=FUNCTION with a name for its key"},
        Refused{"light without a function", "--light k -o x", 2,
                "krslc: error: --light k: this is not KEY=FUNCTION with a name for its key"},
        Refused{"unknown target", "--target hlsl -o x", 2, "krslc: error: --target: hlsl not in {glsl,cg,all}"},
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
    const Outcome outcome = compile({"--material", "i.krs", "--target", GetParam().target, "--validate", "-o", "x"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err.substr(0, outcome.err.find('\n')), GetParam().message) << outcome.err;
    EXPECT_EQ(fPlace.names(), before);
    EXPECT_EQ(compile({"--material", "i.krs", "--target", GetParam().target, "-o", "x"}).status, 0);
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
                "krslc: error: the checker of Cg programs broke down: the material's code nests too deeply or is too "
                "long for it"},
        Invalid{"cut condition", "material m(out float4 outRGBA) { if (sin(1.0) > 0.0) outRGBA.x = 1.0; }\n", "glsl",
                "x.frag:36:2: error: syntax error, unexpected LEFT_BRACE, expecting RIGHT_PAREN or COMMA"},
        Invalid{
            "matrix per vertex", "material m(vertex matrix3 a, out float4 outRGBA) { }\n", "glsl",
            "x.vert:5:12: error: no target has a vector type of this width: the per-vertex input's type cannot travel "
            "between the stages"},
        Invalid{"too many per vertex",
                "material m(vertex float4 a, vertex float4 b, vertex float4 c, vertex float4 d, vertex float4 e, "
                "vertex float4 "
                "f, out float4 r) { }\n",
                "cg", "x.vert.cg:69:15: error: no register is left for this per-vertex input"}),
    CaseName());

// The checker of Cg programs reads another language, which reserves more words.
TEST_F(CompileTest, AcceptsNamesThatCgHasFree)
{
    fPlace.write(
        "names.krs",
        "material m(uniform sampler2D texture, uniform float s, vertex float2 point, out float4 outRGBA)\n"
        "{ float line = s; float triangle = line; float vector = s; float sampler = s; float string = s;\n"
        "float linear = s; float shared = s; float matrix = s; float sample = s; float uint = s; float mad = s;\n"
        "outRGBA = texture2D(texture, point) + float4(matrix, sample, uint, mad + triangle); }\n");
    EXPECT_EQ(compile({"--material", "names.krs", "--target", "cg", "--validate", "-o", "x"}).err, "");
    EXPECT_NE(fPlace.read("x.frag.cg").find("texture2D(texture, point)"), std::string::npos);
}

TEST_F(CompileTest, ValidatesThatUniformsAreDeclaredOnce)
{
    fPlace.write("two.krs", "material m(uniform float b, out float4 outRGBA) { illuminance { } illuminance { } }\n");
    for (const Names& lights : {Names{"--material", "m.krs", "--light", "k=redLight", "--light", "k=redLight"},
                                Names{"--material", "two.krs", "--light", "k=redLight"}})
        for (const char* target : {"glsl", "cg"})
        {
            Names arguments = lights;
            arguments.insert(arguments.end(), {"--target", target, "-o", "-", "--validate"});
            const Outcome outcome = compile(arguments);
            EXPECT_EQ(outcome.status, 1);
            EXPECT_NE(outcome.err.find("error: another uniform is called \"kstrength\" too\n"), std::string::npos)
                << outcome.err;
        }
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
    for (const std::vector<std::string>& wrong :
         {std::vector<std::string>{}, {"cook"}, {"check"}, {"tokens"}, {"specs", "a", "b"}, {"check", "--cook", "a"}})
    {
        const Outcome outcome = place.krslc(wrong);
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.out, "");
        EXPECT_TRUE(outcome.err.starts_with("krslc: error: ")) << outcome.err;
        EXPECT_TRUE(outcome.err.ends_with("Try \"krslc --help\".\n")) << outcome.err;
    }
}
