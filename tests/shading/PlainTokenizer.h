#pragma once
#include <krender/shading/Token.h>

#include <string>

/// What the plain forms throw where a source ends too early.
struct SourceEnded
{
};

/// The tokenizer in its plainest form, byte by byte and word by word: what the library's is compared with.
class PlainTokenizer
{
public:
    explicit PlainTokenizer(std::string source) : fSource(std::move(source)) {}

    void nextToken(krShadingDag::Token& token);
    /// The bytes from one index to another, both included, as far as there are any.
    [[nodiscard]] std::string cut(std::uint64_t from, std::uint64_t to) const;

private:
    [[nodiscard]] char at(std::uint64_t i) const;
    void take(krShadingDag::Token& token, krShadingDag::TokenType type, unsigned bytes);
    void word(krShadingDag::Token& token);
    void number(krShadingDag::Token& token);
    void comment(krShadingDag::Token& token);
    std::uint64_t search(std::uint64_t from, const std::string& target);

    std::string fSource;
    std::uint64_t fPosition = 0;
    std::uint64_t fLine = 1;
    std::uint64_t fColumn = 1;
};
