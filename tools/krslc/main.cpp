#include "CheckCommand.h"
#include "CompileCommand.h"
#include "InterfaceCommand.h"
#include "SpecsCommand.h"
#include "TokensCommand.h"

#include <common/CommandLine.h>
#include <common/ExitStatus.h>
#include <common/StandardOutput.h>
#include <common/Targets.h>
#include <common/UsageError.h>

#include <krender/shadergen/Target.h>

#include <CLI/CLI.hpp>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace
{

/// What is left to do once the command line is understood.
using Command = std::function<int()>;

/// What compile and check share: where sources come from, how they are read, and what is reported.
struct ReadArguments
{
    std::vector<std::string> warnings;
    bool listWarnings = false;
};

template <class Options>
void addReadOptions(CLI::App& command, Options& options, ReadArguments& arguments)
{
    command.add_option("-I", options.includeFolders, "a folder that included files are looked for in")
        ->type_name("FOLDER")
        ->allow_extra_args(false);
    command.add_flag("--plain", options.asPlain, "read as a host that uses ShadingParser does");
    command
        .add_option("-W", arguments.warnings,
                    "-Wno-NAME switches a warning off, -WNAME on, -Werror turns warnings into errors; -Wplain warns of "
                    "what a host that uses ShadingParser reads otherwise")
        ->type_name("NAME")
        ->allow_extra_args(false);
    command.add_flag("--json", options.asJson, "print what is found as JSON on standard output");
}

void applyWarnings(const ReadArguments& arguments, WarningOptions& warnings)
{
    for (const std::string& option : arguments.warnings)
        warnings.apply(option);
}

void addCompile(CLI::App& app, Command& command)
{
    struct Arguments : ReadArguments
    {
        CompileOptions options;
        std::vector<std::string> targets;
        std::string preamble = "none";
    };
    const auto arguments = std::make_shared<Arguments>();
    CompileOptions& options = arguments->options;
    CLI::App* compileApp = app.add_subcommand("compile", "Write the vertex and fragment programs of materials");
    compileApp->add_option("--material", options.materials, "a material: a file, and a material in it; may be repeated")
        ->type_name("FILE[:NAME]")
        ->allow_extra_args(false)
        ->required();
    compileApp->add_option("--stdlib", options.stdlib, "the standard library of lights; \"none\" for none")
        ->type_name("FILE");
    compileApp->add_option("--lib", options.libraries, "a further library of lights")
        ->type_name("FILE")
        ->allow_extra_args(false);
    compileApp
        ->add_option("--light", options.lights,
                     "a light, in order: its name, and its function in the material's file, a library, or a file "
                     "of its own")
        ->type_name("KEY=[FILE:]FUNCTION")
        ->allow_extra_args(false);
    compileApp
        ->add_option("--target", arguments->targets,
                     "which programs to write: names between commas, may be repeated; " + krTools::targetNames() +
                         ", or all that this build has and the material can be written for; glsl if not given")
        ->type_name("TARGETS")
        ->allow_extra_args(false);
    compileApp
        ->add_option(
            "-o", options.base,
            "write BASE.vert and BASE.frag, for cg BASE.vert.cg and BASE.frag.cg, for other targets BASE.TARGET.vert "
            "and BASE.TARGET.frag, in SPIR-V with .spv behind; with a slash at its end BASE is a folder, and "
            "the files take the material's name; \"-\" for standard output")
        ->type_name("BASE");
    compileApp->add_option("--vertex", options.vertexFile, "where the vertex program goes")->type_name("FILE");
    compileApp->add_option("--fragment", options.fragmentFile, "where the fragment program goes")->type_name("FILE");
    compileApp->add_flag("--keep-illuminance", options.keepIlluminance,
                         "leave illuminance blocks in the program; without lights they are removed");
    compileApp->add_option("--preamble", arguments->preamble, "what to put ahead of GLSL programs: none or glsl120")
        ->type_name("TEXT")
        ->check(CLI::IsMember({"none", "glsl120"}));
    compileApp->add_flag("--validate", options.validate,
                         "check the programs with a compiler front end, and write none that fail");
    compileApp
        ->add_option("--interface", options.interfaceFile,
                     "write what a host has to give the programs, as JSON; \"-\" for standard output")
        ->type_name("FILE");
    compileApp->add_option("--depfile", options.depfile, "write what the programs depend on, for make")
        ->type_name("FILE");
    addReadOptions(*compileApp, options, *arguments);
    compileApp->final_callback(
        [&command, arguments]
        {
            for (const std::string& list : arguments->targets)
                krTools::addTargets(list, arguments->options.targets);
            if (arguments->targets.empty())
                krTools::addTargets("glsl", arguments->options.targets);
            arguments->options.withPreamble = arguments->preamble == "glsl120";
            applyWarnings(*arguments, arguments->options.warnings);
            command = [arguments] { return compile(arguments->options); };
        });
}

void addCheck(CLI::App& app, Command& command)
{
    struct Arguments : ReadArguments
    {
        CheckOptions options;
    };
    const auto arguments = std::make_shared<Arguments>();
    CLI::App* checkApp = app.add_subcommand("check", "Report all errors and warnings in sources");
    checkApp->add_option("files", arguments->options.files, "the sources; \"-\" for standard input")->type_name("FILE");
    checkApp->add_flag("--list-warnings", arguments->listWarnings, "print the names of all warnings");
    addReadOptions(*checkApp, arguments->options, *arguments);
    checkApp->final_callback(
        [&command, arguments]
        {
            if (!arguments->listWarnings && arguments->options.files.empty())
                throw krTools::UsageError("check: no file is given");
            applyWarnings(*arguments, arguments->options.warnings);
            command = [arguments]
            {
                if (!arguments->listWarnings)
                    return check(arguments->options);
                krTools::printText(listWarnings());
                return int{krTools::kDone};
            };
        });
}

void addInterface(CLI::App& app, Command& command)
{
    const auto options = std::make_shared<InterfaceOptions>();
    CLI::App* interfaceApp =
        app.add_subcommand("interface", "Print the materials, lights and functions of a source with their inputs");
    interfaceApp->add_option("file", options->file, "the source; \"-\" for standard input")
        ->type_name("FILE")
        ->required();
    interfaceApp->add_option("-I", options->includeFolders, "a folder that included files are looked for in")
        ->type_name("FOLDER")
        ->allow_extra_args(false);
    interfaceApp->add_flag("--json", options->asJson, "print JSON");
    interfaceApp->final_callback([&command, options] { command = [options] { return printInterface(*options); }; });
}

void addTokens(CLI::App& app, Command& command)
{
    const auto file = std::make_shared<std::string>();
    CLI::App* tokensApp = app.add_subcommand("tokens", "Print the tokens that ShadingParser sees, one a line");
    tokensApp->add_option("file", *file, "the source; \"-\" for standard input")->type_name("FILE")->required();
    tokensApp->final_callback([&command, file] { command = [file] { return printTokens(*file); }; });
}

void addSpecs(CLI::App& app, Command& command)
{
    struct Arguments
    {
        std::string file;
        bool asJson = false;
    };
    const auto arguments = std::make_shared<Arguments>();
    CLI::App* specsApp = app.add_subcommand("specs", "Print the functions that ShadingParser reads");
    specsApp->add_option("file", arguments->file, "the source; \"-\" for standard input")
        ->type_name("FILE")
        ->required();
    specsApp->add_flag("--json", arguments->asJson, "print JSON");
    specsApp->final_callback([&command, arguments]
                             { command = [arguments] { return printSpecs(arguments->file, arguments->asJson); }; });
}

int run(int argc, char** argv)
{
    CLI::App app("krslc, the compiler of the shading language KRSL", "krslc");
    app.set_version_flag("--version", "krslc " KRENDER_VERSION);
    app.require_subcommand(1);
    Command command;
    addCompile(app, command);
    addCheck(app, command);
    addInterface(app, command);
    addTokens(app, command);
    addSpecs(app, command);
    return krTools::readCommandLine(app, argc, argv) ? command() : krTools::kDone;
}

} // namespace

int main(int argc, char** argv)
{
    return krTools::runProgram("krslc", [argc, argv] { return run(argc, argv); });
}
