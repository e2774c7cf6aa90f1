#pragma once
#include <common/Messages.h>
#include <common/SourceNames.h>
#include <common/Targets.h>

#include <krender/frontend/Module.h>
#include <krender/frontend/NearNames.h>
#include <krender/frontend/Program.h>
#include <krender/frontend/SourceSet.h>
#include <krender/shadergen/Target.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace krTools
{

/// How materials are compiled.
struct CompilerOptions
{
    bool asPlain = false;                         ///< read sources with ShadingParser
    std::vector<std::string> libraries;           ///< the files that lights are looked for in, in order
    std::vector<std::string> includeFolders;      ///< after the folder of the including file
    std::optional<std::vector<LightName>> lights; ///< nothing: illuminance blocks stay as they are
    std::vector<TargetChoice> targets;            ///< in the order in which they are written
    krFrontend::SourceReader* reader = nullptr;   ///< of included files, borrowed; null reads files
};

/// A material's programs for one target.
struct CompiledProgram
{
    const Target* target;
    std::string material;
    krFrontend::Program program; ///< without origins, defaults and metadata where the source was read as plain KRSL
    /// What stands for the program's texts where the target is translated; else nothing.
    std::optional<krTargets::Translation> translation = {};

    [[nodiscard]] const std::string& vertex() const { return translation ? translation->vertex : program.vertex; }
    [[nodiscard]] const std::string& fragment() const { return translation ? translation->fragment : program.fragment; }
};

/// The libraries of a standard library and further ones. Without a name the standard library is the one that comes with
/// the programs; "none" is none.
[[nodiscard]] std::vector<std::string> libraryFiles(const std::string& stdlib, const std::vector<std::string>& more);

/// Reads a module from a file, "-" being standard input. Throws a FileError when the file cannot be read; what is wrong
/// with its text, or with a file that it includes, is among the module's diagnostics.
[[nodiscard]] krFrontend::Module readModule(const std::string& path, const krFrontend::ReadOptions& options);

/// Makes programs of materials, all with the same lights.
class MaterialCompiler
{
public:
    /// Reads the libraries and the lights' files. Throws a FileError.
    /// @param messages  gets what is wrong with the sources; borrowed for the compiler's life
    [[nodiscard]] static std::unique_ptr<MaterialCompiler> make(CompilerOptions options, Messages& messages);

    MaterialCompiler(CompilerOptions options, Messages& messages);
    MaterialCompiler(const MaterialCompiler&) = delete;
    MaterialCompiler& operator=(const MaterialCompiler&) = delete;
    virtual ~MaterialCompiler() = default;

    /// Compiles a material for all targets. Throws a FileError.
    /// @return  one for each target but those that "all" stands for and that cannot be, valid until the next call; none
    ///          when there is an error
    [[nodiscard]] std::vector<CompiledProgram> compile(const MaterialName& name);

    /// The files that were read, in order, each once.
    [[nodiscard]] const std::vector<std::string>& files() const noexcept { return fFiles; }

protected:
    virtual void readLibrary(const std::string& path) = 0;
    virtual void readLightFile(const std::string& path) = 0;
    virtual void readMaterialFile(const std::string& path) = 0;
    /// Makes the programs of a material of the file that was read last. What is returned where there is an error does
    /// not matter.
    /// @param material  empty: the first
    [[nodiscard]] virtual std::vector<CompiledProgram> makePrograms(const std::string& material) = 0;

    void addFile(const std::string& path);
    /// Reports that a light's function is not there.
    /// @param kind  what it would have to be
    void reportMissing(const LightName& light, const char* kind, const krFrontend::NearNames& near);

    CompilerOptions fOptions;
    Messages& fMessages;

private:
    /// Reads files.
    /// @return  whether there was no error
    template <class Read>
    bool isGood(Read read);

    std::vector<std::string> fFiles;
    bool fLightFilesAreGood = false;
    std::optional<std::string> fMaterialFile; ///< the one that was read last
    bool fMaterialFileIsGood = false;
};

} // namespace krTools
