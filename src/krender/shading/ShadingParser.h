#pragma once
#include <krender/Export.h>
#include <krender/platform/String.h>
#include <krender/shading/ShadingAttribute.h>
#include <krender/shading/ShadingNodeSpec.h>
#include <krender/shading/ShadingParserLimits.h>
#include <krender/shading/StatementCompound.h>
#include <krender/shading/Token.h>
#include <krender/shading/Tokenizer.h>

#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace krShadingDag
{

/// Reads KRSL source, function by function: a whole library file with parseFile, or one function with parseString.
///
/// The language has no empty statements (";;", or ";" behind a closing brace). Inside a function body the parser never
/// gets past one, unless setLimits lets it refuse them.
///
/// A spec belongs to the parser until the library or the caller of parseString has it. The next parseFile or
/// parseString, and the destructor, delete the specs of failed parses and those that parseFunc finished for nobody;
/// reset() deletes none.
class KRENDER_EXPORT ShadingParser
{
public:
    ShadingParser();
    ShadingParser(const ShadingParser&) = delete;
    ShadingParser& operator=(const ShadingParser&) = delete;
    ~ShadingParser();

    /// Sets what is refused from now on; no parse and no reset changes it. What a limit refuses is an error like any
    /// other, and its message ends with the line and column.
    void setLimits(const ShadingParserLimits& limits) noexcept { fLimits = limits; }
    [[nodiscard]] const ShadingParserLimits& limits() const noexcept { return fLimits; }

    /// Forgets the last parse, and enters functions into the library again. The source and the place in it stay: the
    /// next parse appends its source and goes on from there, with line numbers that continue. Use a fresh parser for
    /// fresh line numbers.
    void reset();
    /// Reads a file and enters every function of it into the spec library. Reading stops at the first error; what was
    /// entered before stays.
    /// @param flag  ignored
    /// @return  whether the file was read to its end; a message in errorString() alone is no failure
    bool parseFile(const krString::CString& path, bool flag);
    /// Reads one function from a text and keeps it out of the library; what follows it is not read.
    /// @param spec  gets the function, which the caller then owns; untouched on failure
    bool parseString(const krString::CString& code, ShadingNodeSpec** spec);
    /// The messages since the last parse began; asking empties them.
    [[nodiscard]] krString::CString errorString();

    // The queue of tokens that were read and not consumed; comments never get into it.

    /// Reads a token into the back of the queue; the reference lasts until that token is consumed.
    Token& accumulate_token();
    /// The n-th token not consumed yet, 0 being the front; EndOfStream where the source has ended.
    [[nodiscard]] Token token_ahead(unsigned n);
    /// Takes the front token; EndOfStream where the source has ended.
    Token consume_front_token();
    /// The source from the start of `first` through the first character of `last`.
    [[nodiscard]] krString::CString originalString(const Token& first, const Token& last) const;

    // The grammar, for hosts that read sources piecewise. Each throws an Exception on a source that it cannot read.

    /// Reads one declaration or definition, and enters it into the library unless parseString was called last. At the
    /// end of the source there is a message in errorString() and no exception.
    void parseFunc();
    /// Reads a declaration, a header and its ";".
    void parseFuncDecl();
    /// Reads a definition, a header and its body.
    void parseFuncDef();
    /// Reads the header at the front of the queue without consuming it, into a spec that stays the parser's own.
    /// @return  the place of its ")" in the queue
    unsigned parseFuncHeader();
    /// Reads an optional range such as "uniform" or "uniform:fragment" at a place of the queue and moves the place past
    /// it. Without one the range is the full one; a reversed one is empty.
    CompFreqRange readOptionalCompFreqRange(unsigned& index);

    // Statements. Each appends its form to the block and returns true, or returns false and consumes nothing where the
    // front tokens do not begin it. Nesting takes memory, but no stack.

    /// Reads whichever statement comes next; always true.
    bool parseStatement(StatementCompound& block);
    /// Reads statements in braces.
    bool parseCompoundStatement(StatementCompound& block);
    /// Reads "illuminance" and statements in braces.
    bool parseIlluminanceStatement(StatementCompound& block);
    /// Reads "if", a condition that ends at its first ")", and one statement or those in braces.
    bool parseIfStatement(StatementCompound& block);
    /// Reads "else", and one statement or those in braces.
    bool parseElseStatement(StatementCompound& block);
    /// Reads everything through the next ";"; always true. A ";" at the front makes an empty statement and stays there.
    bool parseOpaqueStatement(StatementCompound& block);

    // The arguments and the result of the last definition are variables until the next parse or reset().

    /// Copies the first variable of that name into `out`; false when there is none.
    bool retrieveVariable(const krString::CString& name, ShadingAttribute& out);
    /// Overwrites the first variable of that name and of the attribute's type; false, and nothing is added, when there
    /// is none.
    bool assignVariable(const krString::CString& name, const ShadingAttribute& attribute);

private:
    /// A list of statements that is being read.
    struct OpenList
    {
        StatementCompound* statements;
        bool isBraced; ///< ends at a "}"; any other ends behind its first statement
    };

    /// Tokens in a row. Growth moves none, so references into the queue last until the token is consumed. Consumed
    /// tokens are used again: a std::deque alone, which frees and allocates instead, slows parsing by a seventh.
    class TokenQueue
    {
    public:
        [[nodiscard]] bool empty() const noexcept { return fFront == fEnd; }
        [[nodiscard]] std::size_t size() const noexcept { return fEnd - fFront; }
        [[nodiscard]] const Token& operator[](std::size_t n) const noexcept { return fTokens[fFront + n]; }
        Token& append();
        void dropFront() noexcept;
        void dropAllButLast() noexcept { fFront = fEnd - 1; }
        void clear() noexcept { fFront = fEnd = 0; }

    private:
        std::deque<Token> fTokens;
        std::size_t fFront = 0;
        std::size_t fEnd = 0;
    };

    const Token& front() { return peek(0); }
    const Token& peek(unsigned n) { return n < fQueue.size() ? fQueue[n] : readAhead(n); }
    const Token& readAhead(unsigned n);
    void dropFront() noexcept { fQueue.dropFront(); }
    [[nodiscard]] FileLocation frontLocation();
    [[noreturn]] void refuse(std::string what);

    void beginSpec(NodeType nodeType);
    void finishSpec();
    void forgetFunction();
    unsigned readHeader();
    void readArgument(unsigned& index);

    // Each reads its form up to the first statement that it holds, and opens the list of those.
    using Begin = bool (ShadingParser::*)(StatementCompound& block);
    bool beginStatement(StatementCompound& block);
    bool beginCompound(StatementCompound& block);
    bool beginIlluminance(StatementCompound& block);
    bool beginIf(StatementCompound& block);
    bool beginElse(StatementCompound& block);
    Statement& appendNesting(StatementCompound& block, StatementType type);
    void openBody(Statement& statement);
    bool readWhole(Begin begin, StatementCompound& block);
    std::uint64_t consumeThroughSemicolon();

    Tokenizer fTokenizer;
    bool fEndOfStream = false;
    bool fAddToLibrary = true;
    krString::CString fSecondText; ///< emptied by reset(), else unused
    krString::CString fErrorText;
    TokenQueue fQueue;
    ShadingNodeSpec* fpNodeSpec = nullptr;
    std::vector<ShadingAttribute> fInputs;
    std::vector<ShadingAttribute> fOutputs;
    std::vector<std::pair<krString::CString, ShadingAttribute>> fVariables;
    /// The specs that were begun and that neither the library nor a caller has; the last one is the newest.
    std::vector<std::unique_ptr<ShadingNodeSpec>> fOwnSpecs;
    std::vector<OpenList> fOpenLists; ///< the innermost one is the last
    ShadingParserLimits fLimits;
};

/// The frequency that a keyword names, kFreqInvalid for any other token.
[[nodiscard]] KRENDER_EXPORT CompFreq tokenToCompFreq(const Token& token) noexcept;

} // namespace krShadingDag
