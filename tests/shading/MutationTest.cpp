// Damaged functions of the shipped sources: their tokens are what stands in them, and the parser reads them as the plain
// parser does.
#include "PlainParser.h"

#include <krender/core/Exception.h>
#include <krender/platform/String.h>
#include <krender/shading/DataType.h>
#include <krender/shading/ShadingNodeSpec.h>
#include <krender/shading/ShadingParser.h>
#include <krender/shading/Token.h>
#include <krender/shading/Tokenizer.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

using namespace krShadingDag;

namespace
{

/// The functions of the shipped sources in plain KRSL, with the comments before them. Those that include others, and
/// those that are made to be included, are not plain.
std::vector<std::string> shippedFunctions()
{
    std::vector<std::string> functions;
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(KRENDER_SHARE_DIR))
        if (entry.path().extension() == ".krs" && entry.path().parent_path().filename() != "include")
            files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    for (const auto& file : files)
    {
        std::ifstream in(file, std::ios::binary);
        const std::string text{std::istreambuf_iterator<char>(in), {}};
        if (text.find("#include") != std::string::npos)
            continue;
        in.seekg(0);
        std::string function;
        for (std::string line; std::getline(in, line);)
        {
            function += line + "\n";
            if (line == "}" || (line.ends_with(");") && function.find('{') == std::string::npos))
                functions.push_back(std::exchange(function, {}));
        }
    }
    return functions;
}

class Mutator
{
public:
    explicit Mutator(const std::vector<std::string>& functions) : fFunctions(functions)
    {
        std::copy_if(functions.begin(), functions.end(), std::back_inserter(fDefinitions),
                     [](const std::string& function) { return function.find('{') != std::string::npos; });
    }

    std::string next()
    {
        // Most functions are declarations, which nearly every edit spoils.
        std::string text = pick(below(8) == 0 ? fFunctions : fDefinitions);
        for (unsigned edits = 1 + below(3); edits > 0; --edits)
            edit(text);
        return text;
    }

private:
    unsigned below(std::size_t limit) { return static_cast<unsigned>(fRandom() % limit); }
    const std::string& pick(const std::vector<std::string>& from) { return from[below(from.size())]; }

    const std::string& piece()
    {
        static const std::vector<std::string> pieces = []
        {
            std::istringstream words(
                "; { } ( ) // /* */ \" if if( else out e . 1e+5 2.x & \xff float3 = - void : vertex "
                "operator illuminance # 99999999999999999999 0.1e-50 && a");
            std::vector<std::string> all{"\n", " ", "\t", "\r\n", std::string(1, '\0')};
            all.insert(all.end(), std::istream_iterator<std::string>(words), {});
            return all;
        }();
        return pick(pieces);
    }

    void edit(std::string& text)
    {
        const unsigned at = below(text.size() + 1);
        if (below(16) == 0)
            text.resize(at); // the source ends here
        switch (below(5))
        {
        case 0:
            text.insert(at, piece());
            break;
        case 1:
            text.erase(at, 1 + below(8));
            break;
        case 2:
            text.replace(at, 1, piece());
            break;
        case 3:
            text.insert(at, text.substr(below(text.size() + 1), 1 + below(40)));
            break;
        default:
        {
            const std::string& other = pick(fFunctions);
            text.insert(at, other.substr(below(other.size()), 1 + below(60)));
        }
        }
    }

    const std::vector<std::string>& fFunctions;
    std::vector<std::string> fDefinitions;
    std::mt19937 fRandom{20240229};
};

/// Whether a token is what stands at its place: the text, its type and the value of a number.
bool isCut(const Token& token, const std::string& source)
{
    const std::string text(token.text.view());
    if (source.compare(token.position + (token.type == TokenType::QuotedString ? 1 : 0), text.size(), text) != 0)
        return false;
    DataType named = kInvalidType;
    for (unsigned type = 1; type < kDataTypeCount; ++type)
        if (text == dataTypeInfo[type].name && token.type != TokenType::QuotedString)
            named = static_cast<DataType>(type);
    if (token.dataType != named || (token.type == TokenType::DataTypeName) != (named != kInvalidType))
        return false;
    return token.type != TokenType::Number ||
           token.floatValue == static_cast<float>(std::strtod(text.c_str(), nullptr));
}

} // namespace

TEST(Mutants, AreSplitIntoWhatStandsInThem)
{
    const std::vector<std::string> functions = shippedFunctions();
    Mutator mutator(functions);
    for (int mutant = 0; mutant < 5000; ++mutant)
    {
        const std::string source = mutator.next();
        Tokenizer tokenizer;
        tokenizer.openString(krString::CString(std::string_view(source)));
        std::size_t end = 0;
        try
        {
            for (Token token; tokenizer.nextToken(&token), token.type != TokenType::EndOfStream;)
            {
                ASSERT_EQ(std::min(source.find_first_not_of(" \t\r\n", end), source.size()), token.position) << source;
                ASSERT_TRUE(isCut(token, source)) << token.text.asChar() << " in\n" << source;
                end = tokenizer.position();
            }
        }
        catch (const Exception& e)
        {
            ASSERT_EQ(e.type, kSourceEnded);
        }
    }
}

TEST(Mutants, AreReadAsByThePlainParser)
{
    const std::vector<std::string> functions = shippedFunctions();
    ASSERT_GT(functions.size(), 50u);
    Mutator mutator(functions);
    int outcomes[3] = {};
    for (int mutant = 0; mutant < 30000; ++mutant)
    {
        const std::string source = mutator.next();
        const PlainResult plain = parsePlainly(source);
        ++outcomes[plain.outcome];
        if (plain.outcome == PlainResult::Endless)
            continue;
        ShadingParser parser;
        ShadingNodeSpec* spec = nullptr;
        const bool read = parser.parseString(krString::CString(std::string_view(source)), &spec);
        const std::unique_ptr<ShadingNodeSpec> owned(spec);
        ASSERT_EQ(read, plain.outcome == PlainResult::Read) << "mutant " << mutant << ":\n" << source;
        ASSERT_EQ(read ? dumpFunction(*spec) : std::string(parser.errorString().view()), plain.text)
            << "mutant " << mutant << ":\n"
            << source;
    }
    // The edits are worth their time only while all outcomes are common.
    EXPECT_GT(outcomes[PlainResult::Read], 5000);
    EXPECT_GT(outcomes[PlainResult::Rejected], 5000);
    EXPECT_GT(outcomes[PlainResult::Endless], 100);
}
