#pragma once
#include <common/Findings.h>
#include <common/FunctionScanner.h>

#include <krender/shading/ShadingNodeSpec.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace krTools
{

/// What the errors that have a name are called.
inline constexpr std::string_view kEmptyStatement = "empty-statement";
inline constexpr std::string_view kDuplicateInput = "duplicate-input";

/// A function of a source: what its header says that its node spec does not.
struct FunctionOutline
{
    std::string resultWord; ///< the result's type, or the shader type
    bool isDefinition;
    std::size_t position; ///< of the name
};

/// Reads the functions of one source into node specs, and every error into findings at the place that it is about. No
/// source makes it hang or run out of stack.
class SourceReader
{
public:
    using Visitor = std::function<void(const FunctionScanner&, const ScannedFunction&)>;
    using Taker = std::function<void(std::unique_ptr<krShadingDag::ShadingNodeSpec>, const FunctionOutline&)>;

    /// @param source, findings  borrowed for the reader's life
    SourceReader(const Source& source, Findings& findings) : fSource(source), fFindings(findings) {}

    /// Goes through the source without parsing it.
    /// @param visitor  called with each function, the one that has an error included; may be empty
    /// @return  whether the parser would come to an end on this source; it may still find errors in it
    [[nodiscard]] bool scan(const Visitor& visitor = {});
    /// Parses what was scanned and hands out the functions in order, up to the first error. The scan must have allowed it.
    void parse(const Taker& take);

    /// The functions that were scanned.
    [[nodiscard]] const std::vector<FunctionOutline>& outlines() const noexcept { return fOutlines; }

private:
    const Source& fSource;
    Findings& fFindings;
    std::vector<FunctionOutline> fOutlines;
    std::optional<ScanFailure> fRejected; ///< where the parser will fail
};

/// Reads a whole source and enters its functions into the spec library, up to the first error.
/// @param registered  called with each function as the library has it; may be empty
void readLibrary(
    const Source& source, Findings& findings,
    const std::function<void(const krShadingDag::ShadingNodeSpec&, const FunctionOutline&)>& registered = {});

} // namespace krTools
