// One function of any source: parsed within the limits for sources from people, printed, copied, and its tokens made.
#include "FuzzInput.h"

#include <krender/shading/Statement.h>

using namespace krShadingDag;

namespace
{

void makeTokens(const StatementCompound& list)
{
    for (unsigned i = 0; i < list.size(); ++i)
    {
        const Statement& statement = *list.statement(i);
        require(statement.type() != StatementType::Opaque || statement.tokens().size() >= 2,
                "an opaque statement's first token stands twice");
        require(toString(statement.tokens()).length() <= 2 * statement.text().length(), "tokens come from the text");
        makeTokens(statement.children());
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    ShadingParser parser;
    parser.setLimits(krShadingDag::kLimitsForAnySource);
    ShadingNodeSpec* spec = nullptr;
    if (!parser.parseString(textOf(data, size), &spec))
    {
        require(parser.errorString().length() > 0, "a failure says why");
        return 0;
    }
    makeTokens(spec->body());
    ShadingNodeSpec copy(kGenerated);
    copy.cloneFrom(*spec);
    const krString::CString printed = spec->body().toString("", "\t");
    require(krString::equal(copy.body().toString("", "\t"), printed), "a copy prints like the original");
    delete spec;
    return 0;
}
