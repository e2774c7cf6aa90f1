#include <krender/frontend/Module.h>

#include "krender/frontend/private/Checker.h"
#include "krender/frontend/private/DiagnosticList.h"
#include "krender/frontend/private/Message.h"
#include "krender/frontend/private/ModuleContents.h"
#include "krender/frontend/private/Syntax.h"
#include "krender/frontend/private/SyntaxReader.h"

#include <krender/frontend/Diagnostic.h>
#include <krender/frontend/SourceSet.h>

#include <filesystem>
#include <string_view>
#include <unordered_set>

namespace krFrontend
{
namespace
{

/// Reads a source and all that it includes.
class ModuleReader
{
public:
    explicit ModuleReader(const ReadOptions& options)
        : fOptions(options), fReader(options.reader ? *options.reader : fDefaultReader)
    {
    }

    std::unique_ptr<ModuleContents> read(const std::string& name, std::string* text)
    {
        if (text && text->size() <= kMostSourceBytes)
            fContents->sources.add(name, std::move(*text));
        else
            readFirst(name, text != nullptr);
        fSeen.insert(std::filesystem::path(name).lexically_normal().string());
        for (std::size_t i = 0; i < fContents->sources.fileCount(); ++i)
            readSyntax(fContents->sources.file(i));
        fContents->tree.isComplete = !fFull && !fHasFailed;
        Checker(fContents->sources, fContents->store, fContents->tree, fDiagnostics, fContents->sources.file(0).end())
            .check();
        fContents->errorCount = fDiagnostics.errorCount();
        fContents->diagnostics = fDiagnostics.take();
        return std::move(fContents);
    }

private:
    void readFirst(const std::string& name, bool isTooLarge)
    {
        std::string text;
        const std::string problem = isTooLarge ? "it has more than " + std::to_string(kMostSourceBytes >> 20) + " MB"
                                               : fReader.read(name, kMostSourceBytes, text);
        fContents->sources.add(name, problem.empty() ? std::move(text) : std::string());
        if (!problem.empty())
            fDiagnostics.report(Message::FileFailed, {}, {name, problem});
    }

    void readSyntax(const SourceFile& file)
    {
        std::vector<IncludeRequest> includes;
        SyntaxReader(file, fContents->store, fContents->tree, fDiagnostics).readFile(includes);
        for (const IncludeRequest& include : includes)
            readInclude(file, include);
    }

    void readInclude(const SourceFile& from, const IncludeRequest& include)
    {
        if (fFull)
            return;
        fContents->tree.includes.push_back(include.range);
        const std::string path = find(std::filesystem::path(from.name()).parent_path(), include.path);
        if (path.empty())
        {
            reportFailed(include, "there is no such file");
            return;
        }
        if (!fSeen.insert(path).second)
            return;
        fFull = fSeen.size() > kMostIncludes + 1;
        if (fFull)
        {
            fDiagnostics.report(Message::TooManyFiles, include.range, {std::to_string(kMostIncludes)});
            return;
        }
        std::string text;
        const std::string problem = fReader.read(path, kMostSourceBytes - fContents->sources.size(), text);
        if (problem.empty())
            fContents->sources.add(path, std::move(text));
        else
            reportFailed(include, problem);
    }

    void reportFailed(const IncludeRequest& include, std::string_view problem)
    {
        fDiagnostics.report(Message::IncludeFailed, include.range, {include.path, problem});
        fHasFailed = true;
    }

    [[nodiscard]] std::string find(const std::filesystem::path& folder, const std::string& wanted)
    {
        const auto in = [&](const std::filesystem::path& place)
        {
            std::string path = (place / wanted).lexically_normal().string();
            return fReader.exists(path) ? path : std::string();
        };
        std::string path = in(folder);
        for (std::size_t i = 0; path.empty() && i < fOptions.includeFolders.size(); ++i)
            path = in(fOptions.includeFolders[i]);
        return path;
    }

    const ReadOptions& fOptions;
    SourceReader fDefaultReader;
    SourceReader& fReader;
    DiagnosticList fDiagnostics;
    std::unique_ptr<ModuleContents> fContents = std::make_unique<ModuleContents>();
    std::unordered_set<std::string> fSeen;
    bool fFull = false; // too many files
    bool fHasFailed = false;
};

} // namespace

Module::Module(std::unique_ptr<ModuleContents> contents) noexcept : fContents(std::move(contents)) {}
Module::Module(Module&&) noexcept = default;
Module& Module::operator=(Module&&) noexcept = default;
Module::~Module() = default;

Module Module::readFile(const std::string& path, const ReadOptions& options)
{
    return Module(ModuleReader(options).read(path, nullptr));
}

Module Module::readText(const std::string& name, std::string text, const ReadOptions& options)
{
    return Module(ModuleReader(options).read(name, &text));
}

const SourceSet& Module::sources() const noexcept { return fContents->sources; }
const std::vector<Diagnostic>& Module::diagnostics() const noexcept { return fContents->diagnostics; }
std::size_t Module::errorCount() const noexcept { return fContents->errorCount; }

} // namespace krFrontend
