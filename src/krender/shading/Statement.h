#pragma once
#include <krender/shading/StatementCompound.h>
#include <krender/shading/Token.h>

#include <optional>

namespace krShadingDag
{

/// One statement of a function body. Statements are not interpreted: they carry text that is printed again.
class KRENDER_EXPORT Statement
{
public:
    /// An empty statement: invalid, and printed as such.
    Statement();
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;
    ~Statement();

    [[nodiscard]] StatementType type() const noexcept { return fType; }
    [[nodiscard]] bool isCompound() const noexcept { return fType > StatementType::Literal; }
    /// The statements below a compound one; empty for all others.
    [[nodiscard]] const StatementCompound& children() const noexcept { return fChildren; }
    [[nodiscard]] StatementCompound& children() noexcept { return fChildren; }
    /// The list that holds this statement, or null.
    [[nodiscard]] StatementCompound* parent() const noexcept { return fParent; }
    [[nodiscard]] bool hasParent() const noexcept { return fParent != nullptr; }
    [[nodiscard]] const krString::CString& text() const noexcept { return fText; }
    /// Whether the text is printed verbatim: generated lines, and what the parser kept of a source.
    [[nodiscard]] bool isLiteral() const noexcept { return fIsLiteral; }
    /// The tokens of a source statement, made from its text when first asked for. An opaque statement's list holds its
    /// first token twice and not its ";"; an if statement's list holds the condition without the parentheses.
    [[nodiscard]] const std::vector<Token>& tokens() const;
    /// The statement as source text, without a line break at its end.
    [[nodiscard]] krString::CString toString(const krString::CString& indent, const krString::CString& step) const;

    void setType(StatementType type) noexcept { fType = type; }
    void setParent(StatementCompound* parent) noexcept { fParent = parent; }
    /// Sets text that is no piece of a source; the statement then has no tokens.
    void setText(krString::CString text, bool isLiteral);
    /// Keeps a piece of source verbatim: an opaque statement through its ";", or an if through the ")" of its condition.
    /// @param first  where the text's first token stands
    void setSourceText(krString::CString text, const FileLocation& location, std::uint64_t position);
    /// Back to the empty statement; destroys what is below and leaves the parent.
    void clear();
    /// Becomes a deep copy of another statement, without a parent.
    void cloneFrom(const Statement& other);

private:
    /// Where a source text began, to number its tokens by.
    struct Origin
    {
        FileLocation location;
        std::uint64_t position;
    };

    StatementType fType = StatementType::Invalid;
    bool fIsLiteral = false;
    StatementCompound fChildren;
    StatementCompound* fParent = nullptr;
    krString::CString fText;
    std::optional<Origin> fOrigin;
    mutable std::unique_ptr<const std::vector<Token>> fTokens;
};

/// Indents a block of text afresh: drops up to as many blanks from each line as the first line begins with, and puts the
/// prefix before the first other character of each line. Deeper indentation therefore comes out before the prefix and
/// blank lines get none; generated programs are laid out by that. A text of blanks alone gives an empty text.
[[nodiscard]] KRENDER_EXPORT krString::CString indent(const krString::CString& text, const krString::CString& prefix);

} // namespace krShadingDag
