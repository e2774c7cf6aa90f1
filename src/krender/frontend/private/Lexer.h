#pragma once
#include "krender/frontend/private/DiagnosticList.h"
#include "krender/frontend/private/NameTable.h"
#include <krender/frontend/SourceSet.h>

#include <cstdint>
#include <span>
#include <string_view>

namespace krFrontend
{

enum class TokenKind : std::uint8_t
{
    EndOfFile,
    Identifier,
    TypeName,
    IntNumber,
    FloatNumber,
    Text, ///< a string
    Hash,
    // Keywords, in the order of fixedWords().
    Break,
    Const,
    Constant,
    Continue,
    Discard,
    Do,
    Else,
    Evaluate,
    False,
    For,
    Fragment,
    If,
    Illuminance,
    Inout,
    Out,
    Output,
    Return,
    True,
    Uniform,
    Vertex,
    While,
    // Punctuation.
    OpenParen,
    CloseParen,
    OpenBracket,
    CloseBracket,
    OpenBrace,
    CloseBrace,
    Comma,
    Semicolon,
    Colon,
    Question,
    Dot,
    // Operators.
    Assign,
    PlusAssign,
    MinusAssign,
    StarAssign,
    SlashAssign,
    PercentAssign,
    Plus,
    Minus,
    Star,
    Slash,
    Percent,
    PlusPlus,
    MinusMinus,
    Not,
    And,
    Or,
    Xor,
    Equal,
    NotEqual,
    Less,
    Greater,
    LessEqual,
    GreaterEqual,
    At,
    Unknown, ///< reported already
};

struct LexerToken
{
    TokenKind kind = TokenKind::EndOfFile;
    bool hasError = false;   ///< something was reported in it or directly before it
    bool startsLine = false; ///< nothing but blanks and comments stands before it on its line
    Offset begin = 0;
    Offset end = 0;
    Name name = 0;       ///< of a word
    double number = 0.0; ///< of a number

    [[nodiscard]] SourceRange range() const noexcept { return {begin, end}; }
};

/// The keywords and then the type names.
[[nodiscard]] std::span<const std::string_view> fixedWords() noexcept;

/// Splits one file into tokens. What is no token is reported and left out.
class Lexer
{
public:
    Lexer(const SourceFile& file, NameTable& names, DiagnosticList& diagnostics);

    [[nodiscard]] LexerToken next();
    /// Nothing follows any more: the rest of the file is passed over.
    void stop() noexcept { fAt = fEnd; }

private:
    [[nodiscard]] Offset offset(const char* at) const noexcept;
    bool skipBlanks();
    void skipBlockComment();
    void readWord(LexerToken& token);
    void readNumber(LexerToken& token);
    void readHexNumber(LexerToken& token);
    void readText(LexerToken& token);
    void readPunctuation(LexerToken& token);

    NameTable& fNames;
    DiagnosticList& fDiagnostics;
    Offset fBase;
    const char* fBegin;
    const char* fAt;
    const char* fEnd;
};

} // namespace krFrontend
