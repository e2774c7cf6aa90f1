#pragma once
#include <krender/Export.h>
#include <krender/platform/String.h>
#include <krender/shading/DataType.h>
#include <krender/shading/MemMappedFile.h>
#include <krender/shading/Token.h>

#include <cstdint>

namespace krShadingDag
{

/// Splits the bytes of one source into tokens, front to back. Fill it with open() or openString(). A source must stay
/// below 2 GiB.
///
/// Where the source ends inside a token, or in white space, nextToken throws an Exception of type kSourceEnded with an
/// empty message. The tokenizer then stands where that token began, or at the end.
class KRENDER_EXPORT Tokenizer : public MemMappedFile
{
public:
    /// Fills *token with the next token, comments included, and moves past it. At the end of the bytes the token is
    /// EndOfStream, each time again. A token that cannot be read leaves *token reset: Unknown, without a text.
    void nextToken(Token* token);

    /// The bytes from one index to another, both included, as far as the source has them; empty when `to` is less than
    /// `from`. Both are taken as signed 32-bit numbers.
    [[nodiscard]] krString::CString stringify(unsigned long from, unsigned long to) const;
    /// The source from the start of `first` through the first character of `last`.
    [[nodiscard]] krString::CString stringify(const Token& first, const Token& last) const;

    /// Where the next unread byte stands.
    [[nodiscard]] const FileLocation& location() const noexcept { return fLocation; }
    [[nodiscard]] std::uint64_t position() const noexcept { return fPosition; }

private:
    friend class ShadingParser;

    /// A token before it is made into a record: where it and its text stand.
    struct Lexeme
    {
        TokenType type = TokenType::Unknown;
        DataType dataType = kInvalidType;
        FileLocation location;
        std::uint64_t position = 0;
        std::uint64_t textBegin = 0;
        std::uint64_t textEnd = 0;
    };

    void scan(Lexeme& lexeme);
    void skipBlanks(Lexeme& lexeme);
    static void resetToken(Token& token);
    void fillToken(Token& token, const Lexeme& lexeme) const;

    // The steps of scan(), one for each form of token. Each sets the lexeme's kind and text and moves past it.
    void processAlphanumeric(Lexeme& lexeme);
    void processNumeric(Lexeme& lexeme);
    void processQuotedString(Lexeme& lexeme);
    void processDivide(Lexeme& lexeme);
    void processOpEqual(Lexeme& lexeme, TokenType single, TokenType withEqual);
    void processPlusOrMinus(Lexeme& lexeme, TokenType single, TokenType withEqual, TokenType doubled, char c);
    void processPair(Lexeme& lexeme, TokenType doubled, char c);
    void finish(Lexeme& lexeme, TokenType type, unsigned length);

    template <class Matches>
    [[nodiscard]] std::uint64_t search(std::uint64_t from, bool forNewline, FileLocation& location,
                                       Matches matches) const;
    [[nodiscard]] std::uint64_t searchForOneChar(std::uint64_t from, char target, FileLocation& location) const;
    [[nodiscard]] std::uint64_t searchForTwoChars(std::uint64_t from, char first, char second,
                                                  FileLocation& location) const;
    [[nodiscard]] std::uint64_t pastNestedComment(std::uint64_t from, FileLocation& location) const;
    [[nodiscard]] char byteAt(std::uint64_t position) const;

    FileLocation fLocation;
    std::uint64_t fPosition = 0;
};

} // namespace krShadingDag
