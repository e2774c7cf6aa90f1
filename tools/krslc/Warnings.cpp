#include "Warnings.h"

#include <common/NearNames.h>
#include <common/SourceReader.h>
#include <common/UsageError.h>

#include <algorithm>

using krTools::Severity;

namespace
{

/// One row a warning, by its value; the names rise.
constexpr std::array<WarningInfo, kWarningCount> kWarnings{{
    {Warning::BraceInStatement, "brace-in-statement", false,
     "a brace within an ordinary statement, as a missing \";\" leaves it"},
    {Warning::BracedLoop, "braced-loop", false,
     "a loop with a body in braces, which the parser cuts at its first \";\""},
    {Warning::CommentSwallowsCode, "comment-swallows-code", false,
     "code in the two bytes behind \"*/\", which belong to the comment"},
    {Warning::DanglingElse, "dangling-else", false,
     "an \"else\" that looks as if it belonged to the inner \"if\" and goes with the outer"},
    {Warning::DuplicateInput, krTools::kDuplicateInput, true, "an input whose name is taken"},
    {Warning::ElseWithoutIf, "else-without-if", false, "an \"else\" that follows no \"if\""},
    {Warning::EmptySource, "empty-source", false, "a source without any function"},
    {Warning::EmptyStatement, krTools::kEmptyStatement, true,
     "a \";\" where a statement belongs, at which parsing never ends"},
    {Warning::ExponentPlus, "exponent-plus", false, "an exponent with a plus sign, which is three tokens"},
    {Warning::HiddenCommentEnd, "hidden-comment-end", false,
     "a \"*/\" that does not count because of a \"//\" before it"},
    {Warning::IlluminanceArguments, "illuminance-arguments", false,
     "\"illuminance\" with an argument list, which makes it an ordinary statement"},
    {Warning::IlluminanceInLight, "illuminance-in-light", false,
     "an illuminance block within a light, which stays in the program as it is"},
    {Warning::MissingComma, "missing-comma", false, "arguments of a header without a comma between them"},
    {Warning::ParenInCondition, "paren-in-condition", false,
     "an inner parenthesis in a condition, which ends at the first \")\""},
    {Warning::ReservedName, "reserved-name", false,
     "a declaration of a name that the generated programs use themselves"},
    {Warning::ReversedRange, "reversed-range", false, "a frequency range that ends before it begins, and is empty"},
    {Warning::SlashesInComment, "slashes-in-comment", false,
     "a line comment with a second \"//\", which carries it over the next line"},
    {Warning::SlashesInString, "slashes-in-string", false,
     "a string with \"//\", which hides what follows up to the next line"},
    {Warning::UndeclaredInput, "undeclared-input", false, "an input of a material or light that no program declares"},
    {Warning::VertexRegisters, "vertex-registers", false,
     "a per-vertex input past what the Cg target has registers for"},
    {Warning::VertexType, "vertex-type", false, "a per-vertex input of a type that cannot travel between the stages"},
}};

constexpr bool isInOrder()
{
    for (std::size_t i = 0; i < kWarnings.size(); ++i)
        if (kWarnings[i].warning != static_cast<Warning>(i) || (i > 0 && kWarnings[i - 1].name >= kWarnings[i].name))
            return false;
    return true;
}
static_assert(isInOrder());

} // namespace

const WarningInfo& warningInfo(Warning warning) noexcept { return kWarnings[static_cast<std::size_t>(warning)]; }

WarningOptions::WarningOptions() { fEnabled.fill(true); }

void WarningOptions::apply(std::string_view option)
{
    if (option == "error")
    {
        fAsErrors = true;
        return;
    }
    const bool enable = !option.starts_with("no-");
    const std::string_view name = enable ? option : option.substr(3);
    const auto* const info =
        std::find_if(kWarnings.begin(), kWarnings.end(), [name](const WarningInfo& row) { return row.name == name; });
    if (info == kWarnings.end())
    {
        std::vector<std::string> names;
        names.reserve(kWarnings.size());
        for (const WarningInfo& row : kWarnings)
            names.emplace_back(row.name);
        throw krTools::UsageError("no warning is called " + krTools::inQuotes(name) + krTools::didYouMean(name, names));
    }
    if (info->isError && !enable)
        throw krTools::UsageError(krTools::inQuotes(name) + " is an error and cannot be silenced");
    fEnabled[static_cast<std::size_t>(info->warning)] = enable;
}

void WarningOptions::warn(krTools::Findings& findings, Warning warning, std::size_t position, std::string text) const
{
    const auto index = static_cast<std::size_t>(warning);
    if (fEnabled[index])
        findings.add(
            {position, fAsErrors ? Severity::Error : Severity::Warning, kWarnings[index].name, std::move(text)});
}

std::string listWarnings()
{
    constexpr std::size_t kNameWidth = 24;
    std::string text;
    for (const WarningInfo& row : kWarnings)
    {
        text += row.name;
        text.append(kNameWidth - row.name.size(), ' ');
        text.append(row.summary).append(row.isError ? " (always an error)\n" : "\n");
    }
    return text;
}
