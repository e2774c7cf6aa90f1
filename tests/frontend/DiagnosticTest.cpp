#include <krender/frontend/Module.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace
{

using krFrontend::Diagnostic;
using krFrontend::Module;
using krFrontend::SourceLocation;

/// What stands in expected.txt: for each source its diagnostics, "line:column-line:column name", in order.
std::map<std::string, std::vector<std::string>> expectations()
{
    std::map<std::string, std::vector<std::string>> found;
    std::ifstream file(KRENDER_DIAGNOSTICS "/expected.txt");
    for (std::string line; std::getline(file, line);)
        found[line.substr(0, line.find(' '))].push_back(line.substr(line.find(' ') + 1));
    return found;
}

std::string describe(const Module& module, const Diagnostic& diagnostic)
{
    const SourceLocation begin = module.sources().location(diagnostic.range.begin);
    const SourceLocation end = module.sources().location(diagnostic.range.end);
    return std::to_string(begin.line) + ":" + std::to_string(begin.column) + "-" + std::to_string(end.line) + ":" +
           std::to_string(end.column) + " " + std::string(diagnostic.name);
}

class DiagnosticSource : public testing::TestWithParam<std::string>
{
};

TEST_P(DiagnosticSource, GetsItsDiagnosticsAtTheirPlaces)
{
    const Module module = Module::readFile(std::string(KRENDER_DIAGNOSTICS "/") + GetParam() + ".krs");
    std::vector<std::string> found;
    for (const Diagnostic& diagnostic : module.diagnostics())
        found.push_back(describe(module, diagnostic));
    EXPECT_EQ(found, expectations()[GetParam()]);
}

std::vector<std::string> sources()
{
    std::vector<std::string> names;
    for (const auto& [name, expected] : expectations())
        names.push_back(name);
    return names;
}

INSTANTIATE_TEST_SUITE_P(Kinds, DiagnosticSource, testing::ValuesIn(sources()),
                         [](const auto& given)
                         {
                             std::string name = given.param;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

TEST(DiagnosticKinds, HaveASourceEach)
{
    // These need more than one source: files that are not there, too many of them, or a target.
    const std::set<std::string_view> others{"file-failed",     "too-many-files", "no-such-shader",
                                            "no-interpolant",  "large-program",  "no-vertex-register",
                                            "no-uniform-room", "target-lacks",   "plain"};
    for (const krFrontend::DiagnosticKind& kind : krFrontend::diagnosticKinds())
    {
        const std::string file = std::string(KRENDER_DIAGNOSTICS "/") + std::string(kind.name) + ".krs";
        EXPECT_NE(std::filesystem::exists(file), others.contains(kind.name)) << kind.name;
    }
}

/// A fix is sure: the source with it made has one error less, and none where there was one.
TEST(DiagnosticFixes, MendTheirSources)
{
    for (const std::string& name : sources())
    {
        const Module module = Module::readFile(std::string(KRENDER_DIAGNOSTICS "/") + name + ".krs");
        for (const Diagnostic& diagnostic : module.diagnostics())
        {
            if (diagnostic.fixes.empty())
                continue;
            std::string text(module.sources().file(0).text());
            for (std::size_t i = diagnostic.fixes.size(); i-- > 0;)
            {
                const krFrontend::DiagnosticFix& fix = diagnostic.fixes[i];
                text.replace(fix.range.begin, fix.range.end - fix.range.begin, fix.replacement);
            }
            const Module mended = Module::readText(name, text);
            EXPECT_LT(mended.diagnostics().size(), module.diagnostics().size()) << name << "\n" << text;
        }
    }
}

} // namespace
