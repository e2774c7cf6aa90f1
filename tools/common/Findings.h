#pragma once
#include <common/Source.h>

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace krTools
{

enum class Severity
{
    Warning,
    Error,
};

/// One thing found in a source.
struct Finding
{
    std::size_t position; ///< byte index into the source
    Severity severity;
    std::string_view name; ///< of the warning, without "-W"; empty for what has none
    std::string text;
};

/// What was found in one source, in the order of the places once sorted.
class Findings
{
public:
    /// More are counted and not kept: a hostile source may hold millions.
    static constexpr std::size_t kMaxKept = 1000;

    void add(Finding finding);
    void error(std::size_t position, std::string text, std::string_view name = {});

    [[nodiscard]] const std::vector<Finding>& kept() const noexcept { return fKept; }
    [[nodiscard]] std::size_t notKept() const noexcept { return fNotKept; }
    [[nodiscard]] bool hasErrors() const noexcept { return fHasErrors; }

    /// Orders by place; findings at one place keep their order.
    void sort();

private:
    std::vector<Finding> fKept;
    std::size_t fNotKept = 0;
    bool fHasErrors = false;
};

/// Makes any bytes fit to be shown: control bytes and broken UTF-8 become \xNN, and what is long is cut.
[[nodiscard]] std::string printable(std::string_view text);

/// The text between quotes, for messages.
[[nodiscard]] std::string inQuotes(std::string_view text);

/// Whether a terminal stands behind the file and its user has not asked for plain text (NO_COLOR).
[[nodiscard]] bool wantsColour(std::FILE* file);

/// Writes each finding as "file:line:column: error: text", the line and a caret under the place.
void print(std::FILE* file, const Source& source, const Findings& findings);

/// Writes "program: error: text", for what has no place in a source.
void print(std::FILE* file, std::string_view program, Severity severity, std::string_view text);

} // namespace krTools
