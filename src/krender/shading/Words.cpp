#include "krender/shading/private/Words.h"

#include "krender/shading/private/DataTypeTable.h"

#include <krender/shading/DataType.h>
#include <krender/shading/Token.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace krShadingDag
{

namespace
{

struct Word
{
    std::string_view text;
    WordKind kind;
};

constexpr std::array kKeywords{
    Word{"out", {TokenType::KeywordOut}},
    Word{"return", {TokenType::KeywordReturn}},
    Word{"output", {TokenType::KeywordOutput}},
    Word{"constant", {TokenType::KeywordConstant}},
    Word{"do", {TokenType::KeywordDo}},
    Word{"else", {TokenType::KeywordElse}},
    Word{"evaluate", {TokenType::KeywordEvaluate}},
    Word{"for", {TokenType::KeywordFor}},
    Word{"fragment", {TokenType::KeywordFragment}},
    Word{"if", {TokenType::KeywordIf}},
    Word{"illuminance", {TokenType::KeywordIlluminance}},
    Word{"uniform", {TokenType::KeywordUniform}},
    Word{"vertex", {TokenType::KeywordVertex}},
    Word{"while", {TokenType::KeywordWhile}},
};

constexpr std::size_t kLongestWord = 15;
constexpr std::size_t kWordCount = kKeywords.size() + kDataTypeCount - 1;

/// Words that share length and first letter stand side by side, so that a look-up compares three of them at most.
struct WordTable
{
    static constexpr std::size_t bucketOf(std::string_view word) noexcept
    {
        return word.size() * 26 + static_cast<std::size_t>(word[0] - 'a');
    }

    constexpr WordTable()
    {
        auto next = std::copy(kKeywords.begin(), kKeywords.end(), words.begin());
        // The invalid type, at the front of the table, has a name that no word can be.
        for (std::size_t type = 1; type < kDataTypeCount; ++type)
            *next++ = {kDataTypes[type].name, {TokenType::DataTypeName, static_cast<DataType>(type)}};
        std::sort(words.begin(), words.end(),
                  [](const Word& a, const Word& b) { return bucketOf(a.text) < bucketOf(b.text); });
        for (std::size_t i = words.size(); i-- > 0;)
        {
            Bucket& bucket = buckets[bucketOf(words[i].text)];
            bucket.first = static_cast<unsigned char>(i);
            ++bucket.count;
        }
    }

    struct Bucket
    {
        unsigned char first = 0;
        unsigned char count = 0;
    };
    std::array<Word, kWordCount> words{};
    std::array<Bucket, (kLongestWord + 1) * 26> buckets{};
};

constexpr WordTable kWords;

} // namespace

WordKind classifyWord(std::string_view word) noexcept
{
    if (word.empty() || word.size() > kLongestWord || word[0] < 'a' || word[0] > 'z')
        return {};
    const WordTable::Bucket bucket = kWords.buckets[WordTable::bucketOf(word)];
    for (std::size_t i = bucket.first; i < std::size_t{bucket.first} + bucket.count; ++i)
        if (kWords.words[i].text == word)
            return kWords.words[i].kind;
    return {};
}

} // namespace krShadingDag
