// Sources with one token deleted, doubled, swapped with the next one, or replaced by another.
#include "GeneratedPrograms.h"
#include "Tokens.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

namespace
{

#ifdef __SANITIZE_ADDRESS__
constexpr unsigned kMutants = 500;
#else
constexpr unsigned kMutants = 3000;
#endif

/// The shipped sources, those of the diagnostics that compile, and generated ones, as tokens.
std::vector<std::vector<std::string>> corpus()
{
    std::vector<std::vector<std::string>> sources;
    for (const char* folder : {KRENDER_SHARE "/materials", KRENDER_DIAGNOSTICS})
        for (const auto& entry : std::filesystem::directory_iterator(folder))
            if (entry.path().extension() == ".krs" && entry.file_size() < 4096)
            {
                std::ostringstream text;
                text << std::ifstream(entry.path()).rdbuf();
                sources.push_back(tokens::split(text.str()));
            }
    std::sort(sources.begin(), sources.end());
    for (unsigned seed = 0; seed < 60; ++seed)
        sources.push_back(tokens::split(generateProgram(seed, GeneratedKind::InOneFile).source));
    return sources;
}

void checkPlaces(const krFrontend::Module& module)
{
    for (const krFrontend::Diagnostic& diagnostic : module.diagnostics())
    {
        const krFrontend::SourceFile& file = module.sources().file(0);
        const krFrontend::SourceRange range = diagnostic.range;
        ASSERT_TRUE(range.begin >= file.begin() && range.begin <= range.end && range.end <= file.end());
        // The plain form: line breaks counted from the beginning.
        const std::string_view before = file.text().substr(0, range.begin - file.begin());
        const krFrontend::SourceLocation at = module.sources().location(range.begin);
        ASSERT_EQ(at.line, 1 + std::count(before.begin(), before.end(), '\n'));
        ASSERT_EQ(at.column, before.size() - (before.rfind('\n') + 1) + 1);
    }
}

TEST(Mutants, GetErrorsAtTheirPlacesOrProgramsThatCompile)
{
    const char* wish = std::getenv("KRENDER_MUTANTS");
    const unsigned count = wish ? static_cast<unsigned>(std::strtoul(wish, nullptr, 10)) : kMutants;
    const std::vector<std::vector<std::string>> sources = corpus();
    std::mt19937 random(wish ? count : 1);
    const auto below = [&](std::size_t end) { return static_cast<std::size_t>(random() % end); };
    unsigned accepted = 0;
    for (unsigned i = 0, failures = 0; i < count && failures < 8; ++i)
    {
        std::vector<std::string> tokens = sources[below(sources.size())];
        const std::size_t at = below(tokens.size() - 1);
        const std::vector<std::string>& others = sources[below(sources.size())];
        const unsigned kind = static_cast<unsigned>(below(5));
        if (kind == 0)
            tokens.erase(tokens.begin() + static_cast<std::ptrdiff_t>(at));
        else if (kind == 1)
            tokens.insert(tokens.begin() + static_cast<std::ptrdiff_t>(at), std::string(tokens[at]));
        else if (kind == 2)
            std::swap(tokens[at], tokens[at + 1]);
        else
            tokens[at] = std::string(kind == 3 ? others[below(others.size())] : tokens[below(tokens.size())]) + " ";
        const std::string source = tokens::join(tokens);
        const krFrontend::Module module = krFrontend::Module::readText("mutant.krs", source);
        checkPlaces(module);
        if (module.hasErrors() || source.find("\nmaterial ") == std::string::npos)
            continue;
        ++accepted;
        const std::string faults = faultsOf(source);
        const bool isLimit = faults.find("no-interpolant") != std::string::npos || // said of a target, with its place
                             faults.find("no-vertex-register") != std::string::npos;
        failures += !faults.empty() && !isLimit;
        EXPECT_TRUE(faults.empty() || isLimit) << "mutant " << i << "\n" << source << "\n" << faults;
    }
    RecordProperty("accepted", static_cast<int>(accepted));
    EXPECT_GT(accepted, count / 50);
}

} // namespace
