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
    /// More are counted and not kept: a hostile source may hold millions.
    static constexpr std::size_t kMaxKept = 1000;

    void add(Finding finding);
    void error(std::size_t position, std::string text);

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

/// Prints each finding with its line and a caret under the place.
void print(const Source& source, const Findings& findings);

} // namespace krTools
