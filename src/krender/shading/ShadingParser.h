#pragma once
#include <krender/shading/ShadingNodeSpec.h>
#include <krender/shading/Tokenizer.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace krShadingDag
{

/// Reads KRSL source, function by function: a whole library file with parseFile, or one function with parseString.
///
/// Empty statements (";;", or ";" behind a closing brace) are no part of the language: inside a block the parser never
/// gets past one. Programs that take sources from people look for them first. Blocks nest as deep as the stack allows.
class KRENDER_EXPORT ShadingParser
{
public:
    ShadingParser();
    ShadingParser(const ShadingParser&) = delete;
    ShadingParser& operator=(const ShadingParser&) = delete;
    ~ShadingParser();

    /// Forgets the last parse. The source and the place in it stay: the next parse appends its source and goes on from
    /// there, with line numbers that continue. Use a fresh parser for fresh line numbers.
    void reset();
    /// Reads a file and enters every function of it into the spec library. Reading stops at the first error; what was
    /// entered before stays.
    /// @param flag  accepted and ignored
    /// @return  whether the file was read to its end; a message in errorString() alone is no failure
    bool parseFile(const krString::CString& path, bool flag);
    /// Reads one function from a text and keeps it out of the library; what follows it is not read.
    /// @param spec  gets the function, which the caller then owns; untouched on failure
    bool parseString(const krString::CString& code, ShadingNodeSpec** spec);
    /// The messages of the last parse; asking empties them.
    [[nodiscard]] krString::CString errorString();

    // The queue of tokens that were read and not consumed; comments never get into it.

    /// Reads a token into the back of the queue; the reference lasts until the queue changes.
    Token& accumulate_token();
    /// The n-th token not consumed yet, 0 being the front; EndOfStream where the source has ended.
    [[nodiscard]] Token token_ahead(unsigned n);
    /// Takes the front token.
    Token consume_front_token();
    /// The source from the start of `first` through the first character of `last`.
    [[nodiscard]] krString::CString originalString(const Token& first, const Token& last) const;

    // The grammar, for hosts that read sources piecewise. Each throws an Exception on a source that it cannot read.

    /// Reads one declaration or definition.
    void parseFunc();
    void parseFuncDecl();
    void parseFuncDef();
    /// Reads the header at the front of the queue without consuming it.
    /// @return  the place of its ")" in the queue
    unsigned parseFuncHeader();
    /// Reads an optional range such as "uniform" or "uniform:fragment" at a place of the queue and moves the place past
    /// it. Without one the range is the full one; a reversed one is empty.
    CompFreqRange readOptionalCompFreqRange(unsigned& index);

    // Statements. Each reads its form into the block and tells whether the front tokens began it.
    bool parseStatement(StatementCompound& block);
    bool parseCompoundStatement(StatementCompound& block);
    bool parseIlluminanceStatement(StatementCompound& block);
    bool parseIfStatement(StatementCompound& block);
    bool parseElseStatement(StatementCompound& block);
    bool parseOpaqueStatement(StatementCompound& block);

    /// Copies the first variable of that name into `out`; false when there is none.
    bool retrieveVariable(const krString::CString& name, ShadingAttribute& out);
    /// Overwrites the first variable of that name and of the attribute's type; false, and nothing is added, when there
    /// is none.
    bool assignVariable(const krString::CString& name, const ShadingAttribute& attribute);

private:
    const Token& peek(unsigned n);
    void dropFront();
    [[nodiscard]] FileLocation frontLocation();
    void beginSpec(NodeType nodeType);
    void finishSpec();
    void forgetFunction();
    void parseArgument(unsigned& index);
    static Statement& appendTyped(StatementCompound& block, StatementType type);
    void parseBlock(StatementCompound& block);
    void parseBody(StatementCompound& block);
    std::uint64_t consumeThroughSemicolon();

    Tokenizer fTokenizer;
    bool fEndOfStream = false;
    bool fAddToLibrary = true;
    krString::CString fSecondText; ///< emptied by reset(), else unused
    krString::CString fErrorText;
    std::vector<Token> fQueue; ///< consumed up to fQueueFront
    std::size_t fQueueFront = 0;
    ShadingNodeSpec* fpNodeSpec = nullptr;
    std::vector<ShadingAttribute> fInputs;
    std::vector<ShadingAttribute> fOutputs;
    std::vector<std::pair<krString::CString, ShadingAttribute>> fVariables;
    /// The spec being built, until it belongs to the library or the caller.
    std::unique_ptr<ShadingNodeSpec> fUnfinished;
    /// Specs whose source had an error; nobody else can end them.
    std::vector<std::unique_ptr<ShadingNodeSpec>> fAbandoned;
};

/// The frequency that a keyword names, kFreqInvalid for any other token.
[[nodiscard]] KRENDER_EXPORT CompFreq tokenToCompFreq(const Token& token) noexcept;

} // namespace krShadingDag
