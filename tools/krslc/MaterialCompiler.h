#pragma once
#include "CompileCommand.h"
#include "Report.h"

#include <common/Modules.h>

#include <krender-targets/SpirvProgram.h>
#include <krender/frontend/Program.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

/// A material's programs for one target.
struct CompiledProgram
{
    const Target* target;
    std::string material;
    krFrontend::Program program; ///< texts alone where the source was read with ShadingParser
    /// What is written instead of the program's texts; set where the target is translated.
    std::optional<krTargets::Translation> translation = {};

    [[nodiscard]] const std::string& vertex() const { return translation ? translation->vertex : program.vertex; }
    [[nodiscard]] const std::string& fragment() const { return translation ? translation->fragment : program.fragment; }
};

/// Makes programs of materials, all with the same lights.
class MaterialCompiler
{
public:
    /// Compiles full KRSL. Reads the libraries; throws a FileError.
    /// @param options, report  borrowed for the compiler's life
    [[nodiscard]] static std::unique_ptr<MaterialCompiler> makeFull(const CompileOptions& options, Report& report);
    /// Compiles what ShadingParser reads. One exists at a time: the libraries' functions stand in the spec library.
    [[nodiscard]] static std::unique_ptr<MaterialCompiler> makePlain(const CompileOptions& options, Report& report);

    MaterialCompiler(const CompileOptions& options, Report& report);
    MaterialCompiler(const MaterialCompiler&) = delete;
    MaterialCompiler& operator=(const MaterialCompiler&) = delete;
    virtual ~MaterialCompiler() = default;

    /// Compiles a material for all targets. What is wrong is reported. Throws a FileError.
    /// @return  one for each target but those that "all" stands for and that cannot be, valid until the next call; none
    ///          when there is an error
    [[nodiscard]] virtual std::vector<CompiledProgram> compile(const krTools::MaterialName& name) = 0;

    /// The files that were read, in order, each once.
    [[nodiscard]] const std::vector<std::string>& files() const noexcept { return fFiles; }

protected:
    /// A light as an option names it.
    struct LightOption
    {
        std::string option;
        std::string key;
        std::string function;
    };

    [[nodiscard]] static std::vector<std::string> libraryFiles(const CompileOptions& options);
    void addFile(const std::string& path);

    const CompileOptions& fOptions;
    Report& fReport;
    std::vector<LightOption> fLights;

private:
    std::vector<std::string> fFiles;
};
