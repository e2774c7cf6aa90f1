#include <krender/frontend/PlainReading.h>

#include "krender/frontend/private/DiagnosticList.h"
#include "krender/frontend/private/Message.h"
#include "krender/frontend/private/ModuleContents.h"
#include "krender/frontend/private/Syntax.h"
#include <krender/core/Exception.h>
#include <krender/frontend/Diagnostic.h>
#include <krender/frontend/Module.h>
#include <krender/frontend/SourceSet.h>
#include <krender/platform/String.h>
#include <krender/shading/MemMappedFile.h>
#include <krender/shading/ShadingNodeSpec.h>
#include <krender/shading/ShadingParser.h>
#include <krender/shading/ShadingParserLimits.h>
#include <krender/shading/Statement.h>
#include <krender/shading/StatementCompound.h>
#include <krender/shading/Token.h>
#include <krender/shading/Tokenizer.h>

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace krFrontend
{
namespace
{

using krShadingDag::ShadingNodeSpec;
using krShadingDag::Statement;
using krShadingDag::StatementCompound;
using krShadingDag::StatementType;

/// One line of a body taken apart: a statement's text, or what opens and closes a block.
struct Piece
{
    std::string_view text;
    Offset offset = 0; ///< of the front end's pieces
};

/// A body as the front end has it, in the pieces that a plain host makes of what it reads alike.
class Pieces
{
public:
    explicit Pieces(const SourceSet& sources) : fSources(sources) {}

    void add(const Stmt* first)
    {
        for (const Stmt* statement = first; statement; statement = statement->next)
            addStatement(*statement);
    }

    [[nodiscard]] const std::vector<Piece>& list() const noexcept { return fPieces; }

private:
    void addText(SourceRange range) { fPieces.push_back({fSources.text(range), range.begin}); }
    void addMark(std::string_view mark, Offset offset) { fPieces.push_back({mark, offset}); }

    void addBlock(std::string_view mark, const Stmt* body, Offset offset)
    {
        addMark(mark, offset);
        if (body->kind == StmtKind::Block)
            add(body->body);
        else
            addStatement(*body);
        addMark("}", body->end - 1);
    }

    void addStatement(const Stmt& statement)
    {
        switch (statement.kind)
        {
        case StmtKind::Block:
            addBlock("{", &statement, statement.begin);
            break;
        case StmtKind::Illuminance:
            addBlock("illuminance", statement.body, statement.begin);
            break;
        case StmtKind::If:
            addIf(statement);
            break;
        case StmtKind::For:
        case StmtKind::While:
        case StmtKind::DoWhile:
            addLoop(statement);
            break;
        case StmtKind::Expression:
        case StmtKind::Declaration:
        case StmtKind::Break:
        case StmtKind::Continue:
        case StmtKind::Return:
        case StmtKind::Discard:
            addText(statement.range());
            break;
        case StmtKind::Empty:
            break;
        }
    }

    void addIf(const Stmt& first)
    {
        for (const Stmt* part = &first; part; part = part->otherwise)
        {
            addText({part->begin, part->mark});
            addBlock("if", part->body, part->begin);
            if (!part->otherwise)
            {
                if (part != &first)
                    addMark("}", part->end - 1); // of the else that the last if is the body of
                return;
            }
            if (!part->otherwise->isChained)
            {
                addBlock("else", part->otherwise, part->otherwise->begin);
                return;
            }
            addMark(part->otherwise->otherwise ? "else if" : "else", part->otherwise->begin);
        }
    }

    /// A loop of one simple statement is passed on whole; a plain host cuts its text at each ";".
    void addLoop(const Stmt& loop)
    {
        const bool isSimple = loop.body->kind == StmtKind::Expression || loop.body->kind == StmtKind::Break ||
                              loop.body->kind == StmtKind::Continue || loop.body->kind == StmtKind::Discard;
        if (!isSimple)
        {
            addMark("loop", loop.begin);
            return;
        }
        const std::string_view text = fSources.text({loop.begin, loop.end});
        std::size_t begin = 0;
        for (std::size_t end = text.find(';'); end != std::string_view::npos; end = text.find(';', begin))
        {
            addText({loop.begin + static_cast<Offset>(begin), loop.begin + static_cast<Offset>(end) + 1});
            begin = text.find_first_not_of(" \t\r\n", end + 1);
            if (begin == std::string_view::npos)
                break;
        }
    }

    const SourceSet& fSources;
    std::vector<Piece> fPieces;
};

void addPieces(const StatementCompound& list, std::vector<std::string_view>& pieces);

void addPieces(const Statement& statement, std::vector<std::string_view>& pieces)
{
    switch (statement.type())
    {
    case StatementType::Block:
        pieces.emplace_back("{");
        break;
    case StatementType::Illuminance:
        pieces.emplace_back("illuminance");
        break;
    case StatementType::If:
        pieces.push_back(statement.text().view());
        pieces.emplace_back("if");
        break;
    case StatementType::Else:
        pieces.emplace_back("else");
        break;
    case StatementType::Invalid:
    case StatementType::Simple:
    case StatementType::Opaque:
    case StatementType::Literal:
        pieces.push_back(statement.text().view());
        return;
    }
    addPieces(statement.children(), pieces);
    pieces.emplace_back("}");
}

void addPieces(const StatementCompound& list, std::vector<std::string_view>& pieces)
{
    for (unsigned i = 0; i < list.size(); ++i)
        addPieces(*list.statement(i), pieces);
}

void compareBodies(const SourceSet& sources, const Function& function, const ShadingNodeSpec& spec,
                   DiagnosticList& diagnostics)
{
    Pieces own(sources);
    own.add(function.body->body);
    std::vector<std::string_view> plain;
    if (!spec.body().empty())
        addPieces(spec.body().statement(0)->children(), plain);
    for (std::size_t i = 0; i < own.list().size(); ++i)
    {
        const Piece& piece = own.list()[i];
        if (i < plain.size() && plain[i] == piece.text)
            continue;
        const std::string_view read =
            i < plain.size() ? plain[i].substr(0, plain[i].find('\n')) : "the end of the body";
        diagnostics.report(Message::PlainReadsOther, {piece.offset, piece.offset + 1}, {read});
        return;
    }
}

/// What a source has at file level, from the end of what stands ahead of it: comments there may swallow its beginning.
struct Part
{
    SourceRange range;
    const Function* function = nullptr;
    std::string_view problem; ///< of what plain KRSL does not have
};

/// The parts of the module's first file, in order; the last one is what stands behind them.
std::vector<Part> partsOf(const ModuleContents& contents)
{
    const SourceFile& file = contents.sources.file(0);
    const auto endOfStatement = [&file](Offset behind) // behind the next ";"
    {
        return static_cast<Offset>(file.begin() +
                                   std::min(file.text().find(';', behind - file.begin()), file.text().size() - 1) + 1);
    };
    const auto isHere = [&file](Offset offset) { return offset < file.end(); };
    std::vector<Part> parts;
    for (const Function* function : contents.tree.functions)
        if (isHere(function->header.begin))
            parts.push_back(
                {{function->header.begin, function->body ? function->body->end : endOfStatement(function->header.end)},
                 function,
                 {}});
    for (const SourceRange include : contents.tree.includes)
        if (isHere(include.begin))
            parts.push_back({include, nullptr, "plain KRSL has no #include"});
    for (const Symbol* constant : contents.tree.constants)
        if (isHere(constant->range.begin))
            parts.push_back({{constant->range.begin, endOfStatement(constant->initializer->end)},
                             nullptr,
                             "plain KRSL has no constants outside functions"});
    std::sort(parts.begin(), parts.end(), [](const Part& a, const Part& b) { return a.range.begin < b.range.begin; });
    Offset begin = file.begin();
    for (Part& part : parts)
    {
        part.range.begin = part.problem.empty() ? begin : part.range.begin;
        begin = part.range.end;
    }
    parts.push_back({{begin, file.end()}, nullptr, {}});
    return parts;
}

/// Reads a function as such a host does.
void compareFunction(const SourceSet& sources, const Part& part, DiagnosticList& diagnostics)
{
    krShadingDag::ShadingParser parser;
    parser.setLimits(krShadingDag::kLimitsForAnySource);
    ShadingNodeSpec* read = nullptr;
    const bool isRead = parser.parseString(krString::CString(sources.text(part.range)), &read);
    const std::unique_ptr<ShadingNodeSpec> spec(read);
    const krString::CString problem = parser.errorString();
    if (!isRead)
        diagnostics.report(Message::PlainRefuses, part.function->range,
                           {problem.view().substr(0, problem.view().find('\n'))});
    else if (part.function->body && spec)
        compareBodies(sources, *part.function, *spec, diagnostics);
}

/// What stands behind the last function can only end badly: within a comment.
void checkEnd(const SourceSet& sources, SourceRange end, DiagnosticList& diagnostics)
{
    krShadingDag::Tokenizer tokenizer;
    tokenizer.openString(krString::CString(std::string(sources.text(end)) + MemMappedFile::kClosingByte));
    try
    {
        for (krShadingDag::Token token; token.type != krShadingDag::TokenType::EndOfStream;)
            tokenizer.nextToken(&token);
    }
    catch (const Exception&)
    {
        diagnostics.report(Message::PlainRefuses, {end.begin, end.begin}, {"a comment that the source ends within"});
    }
}

} // namespace

std::vector<Diagnostic> plainDifferences(const Module& module)
{
    DiagnosticList diagnostics;
    if (module.hasErrors())
        return {};
    for (const Part& part : partsOf(module.contents()))
        if (part.function)
            compareFunction(module.sources(), part, diagnostics);
        else if (part.problem.empty())
            checkEnd(module.sources(), part.range, diagnostics);
        else
            diagnostics.report(Message::PlainRefuses, part.range, {part.problem});
    return diagnostics.take();
}

} // namespace krFrontend
