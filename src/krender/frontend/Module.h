#pragma once
#include <krender/frontend/Diagnostic.h>

#include <krender/Export.h>
#include <krender/frontend/SourceSet.h>

#include <memory>
#include <string>
#include <vector>

namespace krFrontend
{

struct ModuleContents;

/// Where included files are looked for.
struct ReadOptions
{
    std::vector<std::string> includeFolders; ///< after the folder of the including file
    SourceReader* reader = nullptr;          ///< borrowed for the call; null reads files
};

/// One source with all that it includes, read and understood whole. It prints nothing, throws nothing for a source, and
/// shares nothing with other modules: two may each have a function of one name.
class KRENDER_EXPORT Module
{
public:
    /// Reads a file. A file that cannot be read gives a module with that one error.
    [[nodiscard]] static Module readFile(const std::string& path, const ReadOptions& options = {});
    /// Reads a text.
    /// @param name  stands in messages, and its folder is where includes are looked for first
    [[nodiscard]] static Module readText(const std::string& name, std::string text, const ReadOptions& options = {});

    Module(Module&&) noexcept;
    Module& operator=(Module&&) noexcept;
    ~Module();

    [[nodiscard]] const SourceSet& sources() const noexcept;
    /// What was found, in the order of the places; the first hundred errors and the first hundred warnings.
    [[nodiscard]] const std::vector<Diagnostic>& diagnostics() const noexcept;
    /// All errors, those past the hundredth included.
    [[nodiscard]] std::size_t errorCount() const noexcept;
    [[nodiscard]] bool hasErrors() const noexcept { return errorCount() != 0; }

    /// For the front end itself.
    [[nodiscard]] const ModuleContents& contents() const noexcept { return *fContents; }

private:
    explicit Module(std::unique_ptr<ModuleContents> contents) noexcept;

    std::unique_ptr<ModuleContents> fContents;
};

/// The bytes of sources that one module may have.
inline constexpr std::size_t kMostSourceBytes = std::size_t{16} << 20;
/// The files that one module may include.
inline constexpr std::size_t kMostIncludes = 1000;

} // namespace krFrontend
