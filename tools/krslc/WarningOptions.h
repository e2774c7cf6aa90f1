#pragma once
#include <set>
#include <string>
#include <string_view>

/// The name of the warnings of how a host that uses ShadingParser reads a source. They are off unless asked for.
inline constexpr std::string_view kPlainWarnings = "plain";

/// Which warnings are on, as -W options say.
class WarningOptions
{
public:
    /// Takes what stands behind a "-W": "error", a name, or "no-" and a name. Throws a UsageError for anything else.
    void apply(std::string_view option);

    [[nodiscard]] bool isOn(std::string_view name) const { return !fOff.contains(name); }
    [[nodiscard]] bool areErrors() const noexcept { return fAreErrors; }

private:
    std::set<std::string, std::less<>> fOff{std::string(kPlainWarnings)};
    bool fAreErrors = false;
};

/// The names and texts of all warnings, one a line.
[[nodiscard]] std::string listWarnings();
