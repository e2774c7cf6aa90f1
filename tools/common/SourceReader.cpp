#include <common/SourceReader.h>

#include <krender/core/Exception.h>
#include <krender/shading/ShadingParser.h>

using krShadingDag::ShadingNodeSpec;
using krShadingDag::ShadingParser;

namespace krTools
{

namespace
{

/// The parser's message without what frames it.
std::string messageOf(ShadingParser& parser)
{
    const krString::CString line = parser.errorString();
    std::string_view text = line.view();
    if (text.starts_with("error "))
        text.remove_prefix(6);
    if (text.ends_with('\n'))
        text.remove_suffix(1);
    return std::string(text);
}

} // namespace

bool SourceReader::scan(const Visitor& visitor)
{
    FunctionScanner scanner(fSource);
    ScannedFunction function;
    bool safe = true;
    while (scanner.next(function))
    {
        for (const ScannedStatement& statement : function.statements)
            if (function.emptyStatements > 0 && statement.kind == ScannedStatement::Kind::Empty)
            {
                fFindings.error(function.tokens[statement.first].begin, "empty statement: parsing would never end",
                                kEmptyStatement);
                safe = false;
            }
        if (function.failure && !function.failure->text.empty())
        {
            fFindings.error(function.failure->position, std::string(function.failure->text));
            safe &= function.failure->kind == ScanFailure::Kind::Unfinished;
        }
        else if (function.failure)
            fRejected = function.failure;
        else if (function.name)
            fOutlines.push_back({std::string(scanner.text(function.tokens[*function.resultWord])),
                                 function.isDefinition, function.tokens[*function.name].begin});
        if (visitor)
            visitor(scanner, function);
    }
    return safe;
}

void SourceReader::parse(const Taker& take)
{
    ShadingParser parser;
    // A parser goes on in its source when it is given more of it, so each further function takes an empty piece.
    const krString::CString nothing;
    const std::size_t count = fOutlines.size() + (fRejected ? 1 : 0);
    for (std::size_t i = 0; i < count; ++i)
    {
        ShadingNodeSpec* parsed = nullptr;
        if (!parser.parseString(i == 0 ? fSource.contents() : nothing, &parsed))
        {
            const bool isDuplicate = fRejected && fRejected->kind == ScanFailure::Kind::DuplicateInput;
            fFindings.error(fRejected ? fRejected->position : fOutlines[i].position, messageOf(parser),
                            isDuplicate ? kDuplicateInput : std::string_view());
            return;
        }
        take(std::unique_ptr<ShadingNodeSpec>(parsed), fOutlines[i]);
    }
}

void readLibrary(const Source& source, Findings& findings,
                 const std::function<void(const ShadingNodeSpec&, const FunctionOutline&)>& registered)
{
    SourceReader reader(source, findings);
    if (!reader.scan())
        return;
    reader.parse(
        [&registered](std::unique_ptr<ShadingNodeSpec> spec, const FunctionOutline& outline)
        {
            // The library adopts a spec unless it copies it into one that it has.
            const ShadingNodeSpec* const known = spec->addToLibrary();
            if (known == spec.get())
                (void)spec.release();
            if (registered)
                registered(*known, outline);
        });
}

} // namespace krTools
