#pragma once
#include <common/PrintedMessage.h>
#include <common/Source.h>

#include <cstddef>
#include <string>
#include <vector>

namespace krTools
{

/// One thing found in a source.
struct Finding
{
    std::size_t position; ///< byte index into the source
    Severity severity;
    std::string text;
};

/// What was found in one source that the front end does not read, in the order of the places once sorted.
class Findings
{
public:
    /// More errors, and more warnings, are counted and not kept: a hostile source may hold millions.
    static constexpr std::size_t kMaxKept = 100;

    void add(Finding finding);
    /// Counts a finding if it would not be kept: there is then no need to make it.
    /// @return  whether it did
    bool countInstead(Severity severity) noexcept;
    /// Counts findings that somebody else has not kept.
    void countMore(std::size_t count) noexcept { fNotKept += count; }
    void error(std::size_t position, std::string text);

    [[nodiscard]] const std::vector<Finding>& kept() const noexcept { return fKept; }
    [[nodiscard]] std::size_t notKept() const noexcept { return fNotKept; }
    [[nodiscard]] bool hasErrors() const noexcept { return fKeptErrors > 0; }

    /// Orders by place; findings at one place keep their order.
    void sort();

private:
    std::vector<Finding> fKept;
    std::size_t fKeptErrors = 0;
    std::size_t fNotKept = 0;
};

/// Shows each finding with its line and a caret under the place.
void print(const Source& source, const Findings& findings, MessageOutput& output = standardMessages());

} // namespace krTools
