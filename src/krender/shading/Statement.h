#pragma once
#include <krender/Export.h>
#include <krender/platform/String.h>
#include <krender/shading/StatementCompound.h>
#include <krender/shading/Token.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace krShadingDag
{

/// One statement of a function body. Statements are not interpreted: they carry text that is printed again.
///
/// Trees may be of any depth: they are copied, searched, printed and destroyed without recursion. Nothing here throws
/// unless memory runs out.
class KRENDER_EXPORT Statement
{
public:
    /// A cleared statement, see clear().
    Statement();
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;
    ~Statement();

    [[nodiscard]] StatementType type() const noexcept { return fType; }
    [[nodiscard]] bool isCompound() const noexcept { return fType > StatementType::Literal; }
    /// What a compound statement holds; empty for all others.
    [[nodiscard]] const StatementCompound& children() const noexcept { return fChildren; }
    [[nodiscard]] StatementCompound& children() noexcept { return fChildren; }
    /// The list that holds this statement, or null.
    [[nodiscard]] StatementCompound* parent() const noexcept { return fParent; }
    [[nodiscard]] bool hasParent() const noexcept { return fParent != nullptr; }
    [[nodiscard]] const krString::CString& text() const noexcept { return fText; }
    /// Whether the text is printed verbatim: generated lines, and what the parser kept of a source.
    [[nodiscard]] bool isLiteral() const noexcept { return fIsLiteral; }
    /// The tokens given with setTokens() or, for text given with setSourceText(), those of the text; none otherwise. The
    /// reference lasts until text or tokens are set again.
    [[nodiscard]] const std::vector<Token>& tokens() const;
    /// The statement as source text, without a line break at its end.
    [[nodiscard]] krString::CString toString(const krString::CString& indent, const krString::CString& step) const;

    /// The text and the tokens stay as they are.
    void setType(StatementType type) noexcept { fType = type; }
    void setParent(StatementCompound* parent) noexcept { fParent = parent; }
    /// Sets a text that has no tokens; setTokens() may follow.
    /// @param isLiteral  whether the text is meant verbatim; printing does not ask
    void setText(krString::CString text, bool isLiteral);
    /// Keeps a piece of source verbatim, with its tokens, which leave out comments.
    ///
    /// Of a statement whose type is If they are the condition's: all but the first two and the last. Of any other they are
    /// the statement's without the ";" at its end and, deliberately, with the first one twice; a lone ";" has none. A later
    /// setType() changes neither. Where the text ends inside a token, that token is left out.
    /// @param location  where the text begins in its source; the tokens count lines and columns from there
    /// @param position  the byte index of that place
    void setSourceText(krString::CString text, const FileLocation& location, std::uint64_t position);
    void setTokens(std::vector<Token> tokens) noexcept;
    /// Makes the statement invalid and destroys what it holds. It then prints as "!!!INVALID!!!" and has no parent; a list
    /// that holds it goes on holding it.
    void clear();
    /// Becomes a deep copy of another statement, without a parent. The other may stand below this one or hold it; given
    /// itself, nothing changes.
    void cloneFrom(const Statement& other);

private:
    friend class StatementCompound;

    /// Which tokens of a source text are the statement's, and where the text began.
    struct Origin
    {
        bool isCondition;
        FileLocation location;
        std::uint64_t position;
    };

    void copyAllButChildren(const Statement& other);

    StatementType fType = StatementType::Invalid;
    bool fIsLiteral = false;
    StatementCompound fChildren;
    StatementCompound* fParent = nullptr;
    krString::CString fText;
    // Most source statements are never asked for their tokens, so these are made when they are: then the origin goes.
    mutable std::optional<Origin> fOrigin;
    mutable std::vector<Token> fTokens;
};

/// Indents a block of text anew. The blanks and tabs before the first line are its depth: each line loses up to as many,
/// and gets the prefix before its first other character. Deliberate: deeper indentation comes out before the prefix, and
/// blank lines get none. A text of blanks and tabs alone gives an empty text.
[[nodiscard]] KRENDER_EXPORT krString::CString indent(const krString::CString& text, const krString::CString& prefix);

} // namespace krShadingDag
