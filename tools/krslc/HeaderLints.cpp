#include "Inspection.h"
#include "ReservedNames.h"

#include <krender/shadergen/InterpolantBank.h>

#include <algorithm>
#include <utility>
#include <vector>

using krShadingDag::TokenType;
using krTools::inQuotes;
using krTools::ScannedArgument;

namespace
{

void lintCommas(const Inspection& in)
{
    for (const ScannedArgument& argument : in.function.arguments)
        if (argument.first > 0 && in.typeAt(argument.first - 1) != TokenType::Comma &&
            &argument != &in.function.arguments.front())
            in.warn(Warning::MissingComma, in.token(argument.first), "a comma is missing before this argument");
}

void lintRanges(const Inspection& in)
{
    const auto check = [&in](const krShadingDag::CompFreqRange& range, unsigned colon)
    {
        if (range == krShadingDag::CompFreqRange{})
            in.warn(Warning::ReversedRange, in.token(colon - 1),
                    "the range " + inQuotes(std::string(in.text(colon - 1)) + ":" + std::string(in.text(colon + 1))) +
                        " ends before it begins and is empty");
    };
    if (in.function.resultWord)
        check(in.function.resultRange, *in.function.resultWord - 2);
    for (const ScannedArgument& argument : in.function.arguments)
        check(argument.range, argument.type - 2);
}

void lintDuplicates(const Inspection& in)
{
    // The parser reports the first input of a taken name itself; outputs it lets pass.
    if (in.function.failure)
        return;
    std::vector<std::pair<std::string_view, unsigned>> names;
    for (const ScannedArgument& argument : in.function.arguments)
        names.emplace_back(in.text(argument.name), argument.name);
    std::sort(names.begin(), names.end());
    for (std::size_t i = 1; i < names.size(); ++i)
        if (names[i].first == names[i - 1].first)
            in.warn(Warning::DuplicateInput, in.token(names[i].second),
                    "another argument is called " + inQuotes(names[i].first) + " too");
}

/// Only what is declared by a program can clash in it: uniform and per-vertex inputs.
void lintInputs(const Inspection& in)
{
    const bool isShader = in.function.isDefinition && (in.resultWord() == "material" || in.resultWord() == "light");
    for (const ScannedArgument& argument : in.function.arguments)
    {
        const std::string_view name = in.text(argument.name);
        if (argument.isOutput || isStandardValue(name))
            continue;
        if (argument.range == krShadingDag::kUniformRange || argument.range == krShadingDag::kVertexRange)
        {
            if (isReserved(name))
                warnReserved(in, argument.name);
        }
        else if (isShader && !isReserved(name))
            in.warn(Warning::UndeclaredInput, in.token(argument.name),
                    "no program declares " + inQuotes(name) + ": it is neither \"uniform\" nor \"vertex\"");
    }
}

/// Takes registers for the per-vertex inputs as the Cg target does.
void lintVertexInputs(const Inspection& in)
{
    constexpr unsigned kRegisters = 8;
    InterpolantBank toVertex(kRegisters, false);
    InterpolantBank toFragment(kRegisters, true);
    toVertex.interpolant(0).reserve(true, true, true, false);
    for (unsigned i = 0; i < 3; ++i)
        toFragment.interpolant(i).reserve(true, true, true, false);

    if (!in.function.isDefinition || in.resultWord() == "light")
        return;
    for (const ScannedArgument& argument : in.function.arguments)
    {
        if (argument.isOutput || argument.range != krShadingDag::kVertexRange ||
            isStandardValue(in.text(argument.name)))
            continue;
        const DataType type = in.token(argument.type).dataType;
        bool vertexOk = false;
        bool fragmentOk = false;
        (void)toFragment.allocateInterpolant(dataTypeNumFloats(type), fragmentOk, nullptr, nullptr);
        (void)toVertex.allocateInterpolant(dataTypeNumFloats(type), vertexOk, nullptr, nullptr);
        if (!isFloatVector(type))
            in.warn(Warning::VertexType, in.token(argument.type),
                    std::string("a per-vertex input cannot be of type ") + dataTypeName(type) +
                        ": only float to float4 travel between the stages");
        else if (!vertexOk || !fragmentOk)
            in.warn(Warning::VertexRegisters, in.token(argument.name),
                    "no register is left for " + inQuotes(in.text(argument.name)) + " in Cg programs" +
                        (vertexOk ? " between the stages" : ": seven per-vertex inputs fit"));
    }
}

} // namespace

void lintHeader(const Inspection& in)
{
    lintCommas(in);
    lintRanges(in);
    lintDuplicates(in);
    lintInputs(in);
    lintVertexInputs(in);
}
