#include <krender/frontend/PlainReading.h>
#include <krender/frontend/Program.h>
#include <krender/frontend/SourceQuery.h>

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

namespace
{

using krFrontend::Module;

/// A source in a document, and the diagnostic that it shows; none where it is right.
struct Example
{
    unsigned line = 0;
    std::string text;
    std::vector<std::string> expected;
};

std::vector<Example> examples(const std::string& document)
{
    const std::string mark = "<!-- gets: ";
    std::vector<Example> found;
    std::ifstream file(KRENDER_DOCS "/" + document);
    std::string before;
    unsigned number = 0;
    for (std::string line; std::getline(file, line); before = line)
    {
        ++number;
        if (line != "```krsl")
            continue;
        Example& example = found.emplace_back();
        example.line = number;
        if (before.starts_with(mark))
            example.expected.push_back(before.substr(mark.size(), before.find(" -->") - mark.size()));
        for (; std::getline(file, line) && line != "```"; ++number)
            example.text += line + "\n";
        ++number;
    }
    return found;
}

/// What is found in a source, and in the programs of its materials under all of its lights, for every target.
std::vector<std::string> namesOf(const Module& module)
{
    std::vector<std::string> names;
    for (const krFrontend::Diagnostic& diagnostic : module.diagnostics())
        names.emplace_back(diagnostic.name);
    if (module.hasErrors())
        return names;
    std::vector<krFrontend::LightUse> lights;
    std::vector<std::string> materials;
    for (const krFrontend::ShaderInterface& shader : interfaceOf(module))
    {
        if (shader.kind == krFrontend::ShaderKind::Light && shader.hasBody)
            lights.push_back({&module, shader.name, std::string("key").append(std::to_string(lights.size()))});
        if (shader.kind == krFrontend::ShaderKind::Material && shader.hasBody)
            materials.push_back(shader.name);
    }
    for (const std::string& material : materials)
        for (const Target& target : targets())
        {
            if (target.isTranslated)
                continue;
            std::vector<krFrontend::ProgramDiagnostic> problems;
            (void)compileProgram({&module, material, lights}, target, problems);
            for (const krFrontend::ProgramDiagnostic& problem : problems)
                names.emplace_back(problem.diagnostic.name);
        }
    return names;
}

TEST(Document, OfTheLanguageHasExamplesThatGetWhatItSays)
{
    const std::vector<Example> all = examples("krsl.md");
    EXPECT_GE(all.size(), 30u);
    for (const Example& example : all)
        EXPECT_EQ(namesOf(Module::readText("krsl.md", example.text)), example.expected)
            << "docs/krsl.md:" << example.line << "\n"
            << example.text;
}

TEST(Document, ForNewcomersHasAMaterialThatCompiles)
{
    const std::vector<Example> all = examples("../README.md");
    ASSERT_EQ(all.size(), 1u);
    const Module module = Module::readText(KRENDER_SHARE "/include/README.md", all[0].text);
    EXPECT_EQ(namesOf(module), all[0].expected);
}

TEST(Document, ForHostsMarksTheExamplesThatShadingParserReadsOtherwise)
{
    const std::vector<Example> all = examples("plain-krsl.md");
    EXPECT_GE(all.size(), 15u);
    for (const Example& example : all)
    {
        const Module module = Module::readText("plain-krsl.md", example.text);
        std::vector<std::string> names = namesOf(module);
        for (const krFrontend::Diagnostic& diagnostic : plainDifferences(module))
            names.emplace_back(diagnostic.name);
        EXPECT_EQ(names, example.expected) << "docs/plain-krsl.md:" << example.line << "\n" << example.text;
    }
}

TEST(Document, OfTheLanguageHasEveryDiagnosticAndBuiltinFunction)
{
    std::ifstream file(KRENDER_DOCS "/krsl.md");
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    const auto has = [](std::string_view where, std::string_view before, std::string_view name, std::string_view behind)
    {
        std::string part(before);
        part.append(name).append(behind);
        return where.find(part) != std::string_view::npos;
    };
    for (const krFrontend::DiagnosticKind& kind : krFrontend::diagnosticKinds())
    {
        EXPECT_TRUE(has(text, "| `", kind.name, "` |") || has(text, "\n### ", kind.name, "\n")) << kind.name;
        std::string shown(kind.text);
        for (std::size_t at = shown.find('%'); at != std::string::npos; at = shown.find('%'))
            shown.replace(at, 2, "…");
        EXPECT_TRUE(has(text, "", shown, "")) << kind.name << ": " << shown;
    }
    std::string_view functions(text);
    functions.remove_prefix(text.find("\n## Built-in functions\n"));
    functions = functions.substr(0, functions.find("\n```"));
    const Module body = Module::readText("body.krs", "float f(float x) { return x; }");
    for (const krFrontend::Declaration& visible : namesVisibleAt(body, body.sources().file(0).end()))
        EXPECT_TRUE(visible.kind != krFrontend::NameKind::BuiltIn || has(functions, " ", visible.name, "("))
            << visible.name;
}

} // namespace
