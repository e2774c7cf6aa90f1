#include "WarningOptions.h"

#include <common/PrintedMessage.h>
#include <common/UsageError.h>

#include <krender/frontend/Diagnostic.h>
#include <krender/frontend/NearNames.h>

#include <algorithm>
#include <utility>
#include <vector>

using krFrontend::DiagnosticKind;

namespace
{

/// The text with dots where the source's own words stand.
std::string withDots(std::string_view text)
{
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i)
        if (text[i] == '%')
        {
            result += "...";
            ++i;
        }
        else
            result += text[i];
    return result;
}

} // namespace

void WarningOptions::apply(std::string_view option)
{
    if (option == "error")
    {
        fAreErrors = true;
        return;
    }
    const bool enable = !option.starts_with("no-");
    const std::string_view name = enable ? option : option.substr(3);
    const std::vector<DiagnosticKind>& kinds = krFrontend::diagnosticKinds();
    const auto kind =
        std::find_if(kinds.begin(), kinds.end(), [name](const DiagnosticKind& row) { return row.name == name; });
    if (kind == kinds.end())
    {
        std::vector<std::string> names;
        for (const DiagnosticKind& row : kinds)
            if (row.severity == krFrontend::Severity::Warning)
                names.emplace_back(row.name);
        throw krTools::UsageError("no warning is called " + krTools::inQuotes(name) +
                                  krFrontend::didYouMean(name, names));
    }
    if (kind->severity == krFrontend::Severity::Error)
        throw krTools::UsageError(krTools::inQuotes(name) + " is an error and cannot be switched");
    if (enable)
        fOff.erase(fOff.lower_bound(name), fOff.upper_bound(name));
    else
        fOff.emplace(name);
}

std::string listWarnings()
{
    constexpr std::size_t kNameWidth = 20;
    std::string text;
    std::string_view before;
    for (const DiagnosticKind& kind : krFrontend::diagnosticKinds())
    {
        // A group has several texts, and the first tells what it is about.
        if (kind.severity != krFrontend::Severity::Warning || std::exchange(before, kind.name) == kind.name)
            continue;
        text += kind.name;
        text.append(kNameWidth - kind.name.size(), ' ');
        text += withDots(kind.text) + (kind.name == kPlainWarnings ? " (off without -Wplain)\n" : "\n");
    }
    return text;
}
