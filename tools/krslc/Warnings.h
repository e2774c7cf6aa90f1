#pragma once
#include <common/Findings.h>

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// What krslc warns about.
enum class Warning
{
    BraceInStatement,
    BracedLoop,
    CommentSwallowsCode,
    DanglingElse,
    DuplicateInput,
    ElseWithoutIf,
    EmptySource,
    EmptyStatement,
    ExponentPlus,
    HiddenCommentEnd,
    IlluminanceArguments,
    IlluminanceInLight,
    MissingComma,
    ParenInCondition,
    ReservedName,
    ReversedRange,
    SlashesInComment,
    SlashesInString,
    UndeclaredInput,
    VertexRegisters,
    VertexType,
};

struct WarningInfo
{
    Warning warning;
    std::string_view name;    ///< without "-W"
    bool isError;             ///< the source cannot be read at all, so it cannot be silenced
    std::string_view summary; ///< for --list-warnings
};

inline constexpr std::size_t kWarningCount = 21;

[[nodiscard]] const WarningInfo& warningInfo(Warning warning) noexcept;

/// Which warnings are on, as -W options say.
class WarningOptions
{
public:
    WarningOptions();

    /// Takes what stands behind a "-W": "error", a name, or "no-" and a name. Throws a UsageError for anything else.
    void apply(std::string_view option);

    /// Adds a warning unless it is off.
    void warn(krTools::Findings& findings, Warning warning, std::size_t position, std::string text) const;

private:
    std::array<bool, kWarningCount> fEnabled;
    bool fAsErrors = false;
};

/// The names and summaries of all warnings, one a line.
[[nodiscard]] std::string listWarnings();
