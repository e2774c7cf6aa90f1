#pragma once
#include <krender/frontend/Program.h>

#include <deque>
#include <string>
#include <vector>

namespace krTools
{

/// Which function of which file is the material.
struct MaterialName
{
    std::string file;
    std::string function; ///< empty: the first material
};

/// Takes FILE or FILE:NAME apart.
[[nodiscard]] MaterialName materialName(const std::string& text);

/// Reads a module from a file, "-" being standard input. Throws a FileError when the file cannot be read; what is wrong
/// with its text, or with a file that it includes, is among the module's diagnostics.
[[nodiscard]] krFrontend::Module readModule(const std::string& path, const std::vector<std::string>& includeFolders);

/// The modules that lights are looked up in, in order.
class LightLibraries
{
public:
    /// Reads a library. Throws a FileError.
    /// @return  the module, which lives as long as this object
    const krFrontend::Module& read(const std::string& path, const std::vector<std::string>& includeFolders);

    [[nodiscard]] const std::deque<krFrontend::Module>& modules() const noexcept { return fModules; }

    /// The first module that has a light of exactly that name with a body: the material's own, then the libraries.
    /// @return  null when there is none
    [[nodiscard]] const krFrontend::Module* findLight(const krFrontend::Module& material,
                                                      const std::string& name) const;
    /// Why findLight found none, for a message: the name, and names that are near it.
    [[nodiscard]] std::string whyNoLight(const krFrontend::Module& material, const std::string& name) const;

private:
    std::deque<krFrontend::Module> fModules;
};

} // namespace krTools
