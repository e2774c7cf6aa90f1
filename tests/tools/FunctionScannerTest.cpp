#include <common/SourceReader.h>

#include <krender/shading/ShadingParser.h>
#include <krender/shading/Statement.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <sstream>

using krShadingDag::ShadingNodeSpec;
using krTools::FunctionScanner;
using krTools::ScannedFunction;
using krTools::ScannedStatement;

namespace
{

/// The shape of a body: a letter a statement in the order of their beginning.
std::string shapeOf(const krShadingDag::StatementCompound& list)
{
    std::string shape;
    for (unsigned i = 0; i < list.size(); ++i)
    {
        const krShadingDag::Statement& statement = *list.statement(i);
        shape += "....bi.fe"[static_cast<unsigned>(statement.type())];
        shape += shapeOf(statement.children());
    }
    return shape;
}

std::string shapeOf(const ScannedFunction& function)
{
    // The outermost block is no statement of the scan.
    std::string shape = function.isDefinition ? "b" : "";
    for (const ScannedStatement& statement : function.statements)
        shape += "bife.;"[static_cast<unsigned>(statement.kind)];
    return shape;
}

/// What the scan makes of a source: each function's name and shape, and how it ends.
struct Reading
{
    std::vector<std::string> functions;
    bool isSafe = true; ///< to give to the parser
    bool fails = false;
};

Reading scan(const krTools::Source& source)
{
    FunctionScanner scanner(source);
    ScannedFunction function;
    Reading reading;
    while (scanner.next(function))
    {
        using Kind = krTools::ScanFailure::Kind;
        const bool isTooMuch =
            function.failure && (function.failure->kind == Kind::TooDeep || function.failure->kind == Kind::TooMuch);
        reading.isSafe &= function.emptyStatements == 0 && !isTooMuch;
        // Text behind the last function is no failure to the parser.
        const bool isTrailingText =
            function.failure && function.failure->text.starts_with("the source ends within this header");
        reading.fails |= function.failure && !isTrailingText;
        if (!function.failure && function.name)
            reading.functions.push_back(shapeOf(function));
    }
    return reading;
}

/// What the parser itself makes of it.
Reading parse(const krTools::Source& source)
{
    krShadingDag::ShadingParser parser;
    Reading reading;
    krString::CString code = source.contents();
    for (;; code = {})
    {
        ShadingNodeSpec* spec = nullptr;
        if (!parser.parseString(code, &spec))
            break;
        const std::unique_ptr<ShadingNodeSpec> owner(spec);
        reading.functions.push_back(shapeOf(spec->body()));
    }
    const krString::CString text = parser.errorString();
    reading.fails = !text.view().starts_with("error: found no function");
    return reading;
}

void expectAgreement(const std::string& text)
{
    const krTools::Source source("mutant", text);
    const Reading scanned = scan(source);
    if (!scanned.isSafe)
        return;
    const Reading parsed = parse(source);
    EXPECT_EQ(scanned.fails, parsed.fails) << text;
    EXPECT_EQ(scanned.functions, parsed.functions) << text;
}

std::vector<std::string> shippedSources()
{
    std::vector<std::string> texts;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(KRENDER_SHARE))
        if (entry.path().extension() == ".krs")
            texts.emplace_back(krTools::Source(entry.path().string()).text());
    return texts;
}

} // namespace

TEST(FunctionScanner, TakesShippedSourcesApartAsTheParserDoes)
{
    const std::vector<std::string> sources = shippedSources();
    ASSERT_GT(sources.size(), 10u);
    for (const std::string& source : sources)
    {
        expectAgreement(source);
        EXPECT_FALSE(scan(krTools::Source("shipped", source)).fails);
    }
}

// A source on which the scan is wrong can hang the programs: the parser never returns from an empty statement.
TEST(FunctionScanner, AgreesWithTheParserOnMutants)
{
    std::vector<std::string> pieces;
    std::istringstream list(
        ";|{|}|(|)|,|if (a)|else|if|illuminance|illuminance {|operator|operator+|out|uniform|"
        "vertex:uniform|float|float f(float a)|void|material m(out float b) {|for (;;)|\"|//|/*|*/|\n"
        "| |1e+5|&|\xff|[]|:|a|x = 1;|if (a) x = 1; else|{}|{ }|texture2D|//\n//|return");
    for (std::string piece; std::getline(list, piece, '|');)
        pieces.push_back(piece);
    constexpr int kMutants = 30000;
    constexpr std::size_t kLongest = 600;
    const std::vector<std::string> sources = shippedSources();
    std::mt19937 random(20260401); // NOLINT(bugprone-random-generator-seed): the same mutants each time
    const auto below = [&random](std::size_t n) { return static_cast<std::size_t>(random() % n); };

    for (int mutant = 0; mutant < kMutants && !testing::Test::HasFailure(); ++mutant)
    {
        std::string text = sources[below(sources.size())];
        text = text.substr(text.size() > kLongest ? below(text.size() - kLongest) : 0, kLongest);
        if (mutant % 2 == 0)
            text = "float f(float a) { " + text.substr(0, below(80)) + "; x = 1; }\nfloat g(float b);\n";
        for (std::size_t change = 1 + below(5); change > 0; --change)
        {
            const std::size_t at = below(text.size() + 1);
            const std::size_t length = std::min(below(6), text.size() - at);
            text.replace(at, length, below(3) == 0 ? "" : pieces[below(pieces.size())]);
        }
        expectAgreement(text);
    }
}

TEST(FunctionScanner, RefusesOnlyWhatIsTooDeep)
{
    const auto nested = [](std::size_t depth)
    { return "float f(float a) " + std::string(depth, '{') + "x = a;" + std::string(depth, '}') + "\n"; };
    EXPECT_TRUE(scan(krTools::Source("deep", nested(FunctionScanner::kMaxDepth))).isSafe);
    EXPECT_FALSE(scan(krTools::Source("deeper", nested(FunctionScanner::kMaxDepth + 1))).isSafe);
}
