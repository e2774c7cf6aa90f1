#include "CheckCommand.h"
#include "CompileCommand.h"
#include "SpecsCommand.h"
#include "TokensCommand.h"

#include <common/ExitStatus.h>
#include <common/Findings.h>
#include <common/StandardOutput.h>
#include <common/UsageError.h>

#include <CLI/CLI.hpp>

#include <csignal>
#include <functional>
#include <memory>

namespace
{

/// What is left to do once the command line is understood.
using Command = std::function<int()>;

int printText(const std::string& text)
{
    krTools::StandardOutput output;
    output.write(text);
    output.finish();
    return krTools::kDone;
}

void addCompile(CLI::App& app, Command& command)
{
    struct Arguments
    {
        CompileOptions options;
        std::string target = "glsl";
        std::string preamble = "none";
    };
    const auto arguments = std::make_shared<Arguments>();
    CompileOptions& options = arguments->options;
    CLI::App* compileApp = app.add_subcommand("compile", "Write the vertex and fragment programs of a material");
    compileApp->add_option("--material", options.material, "the material: a file, and a function in it")
        ->type_name("FILE[:NAME]")
        ->required();
    compileApp->add_option("--stdlib", options.stdlib, "the standard library; \"none\" for none")->type_name("FILE");
    compileApp->add_option("--lib", options.libraries, "a further library")->type_name("FILE")->allow_extra_args(false);
    compileApp->add_option("--light", options.lights, "a light, in order: its name and its function in a library")
        ->type_name("KEY=FUNCTION")
        ->allow_extra_args(false);
    compileApp->add_option("--target", arguments->target, "which programs to write; glsl if not given")
        ->type_name("TARGET")
        ->check(CLI::IsMember({"glsl", "cg", "all"}));
    compileApp
        ->add_option("-o", options.base,
                     "write BASE.vert and BASE.frag, for cg BASE.vert.cg and BASE.frag.cg; with a slash at its end "
                     "BASE is a folder, and the files take the material's name; \"-\" for standard output")
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
    compileApp->add_option("--depfile", options.depfile, "write what the programs depend on, for make")
        ->type_name("FILE");
    compileApp->final_callback(
        [&command, arguments]
        {
            arguments->options.target = arguments->target == "glsl" ? Target::Glsl
                                        : arguments->target == "cg" ? Target::Cg
                                                                    : Target::All;
            arguments->options.withPreamble = arguments->preamble == "glsl120";
            command = [arguments] { return compile(arguments->options); };
        });
}

void addCheck(CLI::App& app, Command& command)
{
    struct Arguments
    {
        CheckOptions options;
        std::vector<std::string> warnings;
        bool list = false;
    };
    const auto arguments = std::make_shared<Arguments>();
    CLI::App* checkApp =
        app.add_subcommand("check", "Report errors in sources, and code that does something else than it seems to");
    checkApp->add_option("files", arguments->options.files, "the sources; \"-\" for standard input")->type_name("FILE");
    checkApp
        ->add_option("-W", arguments->warnings,
                     "-Wno-NAME switches a warning off, -WNAME on, -Werror turns warnings into errors")
        ->type_name("NAME")
        ->allow_extra_args(false);
    checkApp->add_flag("--list-warnings", arguments->list, "print the names of all warnings");
    checkApp->add_flag("--json", arguments->options.asJson, "print the findings as JSON on standard output");
    checkApp->final_callback(
        [&command, arguments]
        {
            if (!arguments->list && arguments->options.files.empty())
                throw krTools::UsageError("check: no file is given");
            for (const std::string& option : arguments->warnings)
                arguments->options.warnings.apply(option);
            command = [arguments] { return arguments->list ? printText(listWarnings()) : check(arguments->options); };
        });
}

void addTokens(CLI::App& app, Command& command)
{
    const auto file = std::make_shared<std::string>();
    CLI::App* tokensApp = app.add_subcommand("tokens", "Print the tokens of a source, one a line");
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
    CLI::App* specsApp = app.add_subcommand("specs", "Print what a source declares and defines");
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
    addTokens(app, command);
    addSpecs(app, command);
    try
    {
        app.parse(argc, argv);
    }
    catch (const CLI::CallForHelp&)
    {
        return printText(app.help());
    }
    catch (const CLI::CallForVersion&)
    {
        return printText("krslc " KRENDER_VERSION "\n");
    }
    catch (const CLI::ParseError& error)
    {
        throw krTools::UsageError(error.what());
    }
    return command();
}

} // namespace

int main(int argc, char** argv)
{
    // A file past the limit for its size is then an error like any other, and leaves nothing behind.
    std::signal(SIGXFSZ, SIG_IGN);
    try
    {
        return run(argc, argv);
    }
    catch (const krTools::UsageError& error)
    {
        krTools::print(stderr, "krslc", krTools::Severity::Error, error.what());
        std::fputs("Try \"krslc --help\".\n", stderr);
    }
    catch (const std::bad_alloc&)
    {
        krTools::print(stderr, "krslc", krTools::Severity::Error, "out of memory");
    }
    catch (const std::exception& error)
    {
        krTools::print(stderr, "krslc", krTools::Severity::Error, error.what());
    }
    return krTools::kCannotRun;
}
