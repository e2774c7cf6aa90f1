#include "CompileCommand.h"

#include "Depfile.h"
#include "Report.h"
#include "Validation.h"

#include <common/ExitStatus.h>
#include <common/InterfaceJson.h>
#include <common/MaterialCompiler.h>
#include <common/OutputFiles.h>
#include <common/ProgramBounds.h>
#include <common/StagedFile.h>
#include <common/Targets.h>
#include <common/UsageError.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <memory>
#include <optional>
#include <set>
#include <stdexcept>
#include <utility>

using krFrontend::Diagnostic;
using krFrontend::LineOrigin;
using krFrontend::Severity;
using krTools::CompiledProgram;
using krTools::MaterialCompiler;
using krTools::UsageError;
using nlohmann::ordered_json;

namespace
{

// Options

void checkPrograms(const CompileOptions& options)
{
    const bool hasFiles = !options.vertexFile.empty() || !options.fragmentFile.empty();
    if (hasFiles && !options.base.empty())
        throw UsageError("-o and --vertex with --fragment exclude each other");
    if (hasFiles && (options.vertexFile.empty() || options.fragmentFile.empty()))
        throw UsageError("--vertex and --fragment go together");
    if (hasFiles && options.targets.size() > 1)
        throw UsageError("--vertex and --fragment name the programs of one target: use -o for several");
    if (!hasFiles && options.base.empty())
        throw UsageError("where should the programs go? Give -o BASE, -o -, or --vertex and --fragment");
    std::error_code failure;
    if (!options.base.ends_with('/') && std::filesystem::is_directory(options.base, failure))
        throw UsageError("-o " + options.base + " is a folder: give " + options.base +
                         "/ to write into it, or a file name without its ending");
    if (options.materials.size() > 1 && !options.base.ends_with('/'))
        throw UsageError("several materials need a folder for their programs: give -o FOLDER/");
}

void checkOptions(const CompileOptions& options)
{
    checkPrograms(options);
    const auto isOutput = [&options](const std::string& path)
    { return options.base == path || options.vertexFile == path || options.fragmentFile == path; };
    if (!options.depfile.empty() && isOutput("-"))
        throw UsageError("--depfile names the files that depend on the sources, and standard output is none");
    if (options.keepIlluminance && !options.lights.empty())
        throw UsageError("--keep-illuminance and --light exclude each other");
    if (options.asPlain && !options.interfaceFile.empty())
        throw UsageError("--interface tells of full KRSL, which --plain does not read");
    if (options.asJson && (isOutput("-") || options.interfaceFile == "-"))
        throw UsageError("--json writes to standard output, so nothing else can");
}

/// No output may overwrite a source, or another output.
void checkOverwriting(const krTools::OutputFiles& outputs, const std::vector<std::string>& sources)
{
    const auto canonical = [](const std::string& path)
    {
        std::error_code failure;
        const std::filesystem::path target = std::filesystem::absolute(krTools::followLinks(path), failure);
        const std::filesystem::path place = std::filesystem::weakly_canonical(target, failure);
        // Why it cannot be reached is said when it is written.
        return (failure ? target : place).string();
    };
    std::set<std::string> sourcePaths;
    for (const std::string& source : sources)
        sourcePaths.insert(canonical(source));
    std::set<std::string> paths;
    for (const auto& [path, text] : outputs.files())
    {
        std::error_code failure;
        if (path == "-" || std::filesystem::is_character_file(path, failure))
            continue;
        const std::string place = canonical(path);
        if (sourcePaths.contains(place))
            throw UsageError("'" + path + "' is a source of this compilation and would be overwritten");
        if (!paths.insert(place).second)
            throw UsageError("'" + path + "' is named twice for an output");
    }
}

krTools::CompilerOptions compilerOptions(const CompileOptions& options, krTools::Messages& messages)
{
    krTools::CompilerOptions result{.asPlain = options.asPlain,
                                    .libraries = krTools::libraryFiles(options.stdlib, options.libraries),
                                    .includeFolders = options.includeFolders,
                                    .lights = std::nullopt,
                                    .targets = options.targets};
    settleTargets(result.targets, options.asPlain, options.keepIlluminance, messages);
    if (!options.keepIlluminance)
        std::transform(options.lights.begin(), options.lights.end(), std::back_inserter(result.lights.emplace()),
                       krTools::lightName);
    return result;
}

// Programs

/// A material's programs for a target as they are written.
struct ProgramFiles
{
    krTools::Source vertex; ///< named after its file
    krTools::Source fragment;
};

ProgramFiles filesOf(const CompiledProgram& compiled, const CompileOptions& options)
{
    const std::string base = options.base.ends_with('/') ? options.base + compiled.material : options.base;
    const auto file = [&](const std::string& text, std::string_view ending, const std::string& ownFile)
    {
        const std::string path = !ownFile.empty() ? ownFile : base == "-" ? "-" : base + std::string(ending);
        std::string whole(options.withPreamble ? compiled.target->preamble : std::string_view());
        return krTools::Source(path, whole.append(text));
    };
    return {file(compiled.vertex(), compiled.target->vertexEnding, options.vertexFile),
            file(compiled.fragment(), compiled.target->fragmentEnding, options.fragmentFile)};
}

/// Reports what the checker of a target found in a program. Where the front end accepted the source, the fault is
/// krender's, and is shown at the line that the program's line came from.
/// @param origins  of the program's lines behind the preamble
void reportFaults(const krTools::Source& program, const char* nameOnOutput, krTools::Findings findings,
                  const std::vector<LineOrigin>& origins, std::size_t preambleLines, bool isPlain, Report& report)
{
    const krTools::Source shown(program.name() == "-" ? nameOnOutput : program.name(), std::string(program.text()));
    if (isPlain)
        return report.add(shown, std::move(findings));
    findings.sort();
    krTools::Findings withoutOrigin;
    for (const krTools::Finding& finding : findings.kept())
    {
        const std::string prefix = finding.severity == Severity::Error ? "this is a fault of krender's: " : "";
        const std::size_t line = shown.place(finding.position).line;
        const std::size_t index = line - 1 - preambleLines; // wraps around within the preamble
        const LineOrigin origin = index < origins.size() ? origins[index] : LineOrigin();
        if (!origin.module)
        {
            withoutOrigin.add({finding.position, finding.severity, prefix + finding.text});
            continue;
        }
        Diagnostic diagnostic;
        diagnostic.severity = finding.severity;
        diagnostic.range = krFrontend::lineRange(origin);
        diagnostic.text = prefix + finding.text + ", in line " + std::to_string(line) + " of " + shown.name();
        report.add(origin.module->sources(), std::move(diagnostic));
    }
    report.add(shown, std::move(withoutOrigin));
}

void validate(const CompiledProgram& compiled, const ProgramFiles& files, const CompileOptions& options, Report& report)
{
    krTools::PairFindings findings;
    if (options.asPlain)
    {
        findings.vertex = findUnbounded(files.vertex);
        findings.fragment = findUnbounded(files.fragment);
    }
    if (!findings.hasErrors())
        findings = validate(*compiled.target, files.vertex, files.fragment);
    const std::string_view preamble = options.withPreamble ? compiled.target->preamble : std::string_view();
    const auto lines = static_cast<std::size_t>(std::count(preamble.begin(), preamble.end(), '\n'));
    reportFaults(files.vertex, "<vertex program>", std::move(findings.vertex), {}, lines, options.asPlain, report);
    // Lines of a translation came from none.
    reportFaults(files.fragment, "<fragment program>", std::move(findings.fragment),
                 compiled.translation ? std::vector<LineOrigin>() : compiled.program.fragmentOrigins, lines,
                 options.asPlain, report);
    for (const std::string& error : findings.pair)
        report.error(error);
}

/// What a run writes in the end.
struct Outputs
{
    krTools::OutputFiles files;
    std::vector<std::string> programs; ///< the names of the program files
    ordered_json interfaces = ordered_json::array();
};

/// Adds a material's programs to the outputs, all or none.
/// @return  whether there was no error
bool addMaterial(const krTools::MaterialName& name, MaterialCompiler& compiler, const CompileOptions& options,
                 Report& report, Outputs& outputs)
{
    const std::size_t errorsBefore = report.errorCount();
    const std::vector<CompiledProgram> programs = compiler.compile(name);
    std::vector<ProgramFiles> files;
    for (const CompiledProgram& compiled : programs)
    {
        files.push_back(filesOf(compiled, options));
        if (options.validate)
            validate(compiled, files.back(), options, report);
    }
    if (report.errorCount() != errorsBefore || programs.empty())
        return false;
    for (std::size_t i = 0; i < programs.size(); ++i)
    {
        for (const krTools::Source* program : {&files[i].vertex, &files[i].fragment})
        {
            outputs.files.add(program->name(), std::string(program->text()));
            outputs.programs.push_back(program->name());
        }
        ordered_json interface {
            {"material", programs[i].material}, {"target", programs[i].target->name},
                {"vertexFile", files[i].vertex.name()},
            {
                "fragmentFile", files[i].fragment.name()
            }
        };
        interface.update(krTools::jsonOf(programs[i].program.interface, programs[i].translation));
        outputs.interfaces.push_back(std::move(interface));
    }
    return true;
}

void publish(const CompileOptions& options, const MaterialCompiler& compiler, Outputs& outputs)
{
    if (!options.interfaceFile.empty())
        outputs.files.add(options.interfaceFile, textOf(outputs.interfaces));
    if (!options.depfile.empty())
        outputs.files.add(options.depfile, makeRule(outputs.programs, compiler.files()));
    checkOverwriting(outputs.files, compiler.files());
    outputs.files.publish(krTools::MissingFolders::Make);
}

/// Compiles all materials and writes the programs of those without an error.
/// @return  the exit status
int compileAll(const CompileOptions& options, Report& report)
{
    int status = krTools::kDone;
    const std::unique_ptr<MaterialCompiler> compiler = MaterialCompiler::make(compilerOptions(options, report), report);
    Outputs outputs;
    const std::size_t count = options.materials.size();
    std::size_t done = 0;
    for (std::size_t i = 0; i < count; ++i)
        try
        {
            if (count > 1)
                report.showProgress(std::to_string(i + 1) + '/' + std::to_string(count) + ' ' + options.materials[i]);
            const krTools::MaterialName name = krTools::materialName(options.materials[i]);
            done += addMaterial(name, *compiler, options, report, outputs) ? 1 : 0;
        }
        catch (const krTools::FileError& error)
        {
            report.error(error.what());
            status = krTools::kCannotRun;
        }
    if (done > 0)
        publish(options, *compiler, outputs);
    if (count > 1)
        report.summarize(std::to_string(done) + " of " + std::to_string(count) + " materials compiled");
    return status == krTools::kDone && done < count ? krTools::kInputHasErrors : status;
}

} // namespace

int compile(const CompileOptions& options)
{
    checkOptions(options);
    int status = krTools::kCannotRun;
    Report report(options.warnings, options.asJson);
    try
    {
        status = compileAll(options, report);
    }
    catch (const std::runtime_error& error) // a FileError or UsageError
    {
        report.error(error.what());
    }
    report.finish();
    return status;
}
