// Tokens, parsing and registering of generated library sources, beside clang's raw lexer and glslang's front end.
#include "Peers.h"
#include "RatioReporter.h"
#include "SourceGenerator.h"

#include <krender/shading/ShadingParser.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <malloc.h>
#include <unistd.h>

using namespace krShadingDag;

namespace
{

constexpr std::size_t kMegabyte = 1'000'000;

void require(bool condition, const char* what)
{
    if (condition)
        return;
    std::fprintf(stderr, "parse_benchmark: %s\n", what);
    std::exit(1);
}

std::size_t countTokens(Tokenizer& tokenizer)
{
    std::size_t count = 0;
    for (Token token; tokenizer.nextToken(&token), token.type != TokenType::EndOfStream;)
        if (token.type != TokenType::Comment)
            ++count;
    return count;
}

Tokenizer tokenizerFor(const std::string& source)
{
    Tokenizer tokenizer;
    tokenizer.openString(krString::CString(std::string_view(source)));
    return tokenizer;
}

/// A source in a file, as libraries are read.
class SourceFile
{
public:
    explicit SourceFile(const std::string& source)
        : fPath(std::filesystem::temp_directory_path() / ("krender_benchmark_" + std::to_string(getpid()) + ".krs"))
    {
        std::ofstream(fPath, std::ios::binary) << source;
    }
    SourceFile(const SourceFile&) = delete;
    SourceFile& operator=(const SourceFile&) = delete;
    ~SourceFile() { std::filesystem::remove(fPath); }

    [[nodiscard]] bool parse() const { return ShadingParser().parseFile(fPath.c_str(), false); }

private:
    std::filesystem::path fPath;
};

void setRate(benchmark::State& state, std::size_t bytes)
{
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
}

// The source ends in ";" for the tokenizer: one that ends in white space ends in an exception.
std::string tokenSource() { return makeKrslSource(kMegabyte) + ";"; }

void krenderTokens(benchmark::State& state)
{
    const std::string source = tokenSource();
    const Tokenizer filled = tokenizerFor(source);
    for (auto _ : state)
    {
        // The peer reads a buffer that is there already.
        state.PauseTiming();
        Tokenizer tokenizer = filled;
        state.ResumeTiming();
        benchmark::DoNotOptimize(countTokens(tokenizer));
    }
    setRate(state, source.size());
}

void clangTokens(benchmark::State& state)
{
    const std::string source = tokenSource();
    for (auto _ : state)
        benchmark::DoNotOptimize(countTokensWithClang(source));
    setRate(state, source.size());
}

void krenderParse(benchmark::State& state)
{
    const std::string source = makeKrslSource(static_cast<std::size_t>(state.range(0)) * kMegabyte);
    const SourceFile file(source);
    for (auto _ : state)
    {
        require(file.parse(), "the source was not read");
        state.PauseTiming();
        ShadingNodeSpec::clearLibrary();
        state.ResumeTiming();
    }
    setRate(state, source.size());
}

void glslangParse(benchmark::State& state)
{
    const std::string source = makeGlslSource(kMegabyte);
    for (auto _ : state)
        require(parseWithGlslang(source), "glslang rejected the source");
    setRate(state, source.size());
}

BENCHMARK(krenderTokens)->Name("tokens/krender")->Unit(benchmark::kMillisecond)->MinTime(1);
BENCHMARK(clangTokens)->Name("tokens/clang raw lexer")->Unit(benchmark::kMillisecond)->MinTime(1);
BENCHMARK(krenderParse)->Name("parse/krender")->Arg(1)->Unit(benchmark::kMillisecond)->MinTime(1);
BENCHMARK(glslangParse)->Name("parse/glslang")->Unit(benchmark::kMillisecond)->MinTime(1);
BENCHMARK(krenderParse)->Name("growth/krender")->Arg(1)->Arg(10)->Arg(50)->Unit(benchmark::kMillisecond);

std::size_t heapInUse() { return mallinfo2().uordblks + mallinfo2().hblkhd; }

void printMemory()
{
    const std::string source = makeKrslSource(kMegabyte);
    const SourceFile file(source);
    const std::size_t before = heapInUse();
    require(file.parse(), "the source was not read");
    const std::size_t functions = ShadingNodeSpec::fLibrary.size();
    std::printf(
        "memory: %zu bytes a token record; %zu bytes a registered function of %zu source bytes (%zu functions)\n",
        sizeof(Token), (heapInUse() - before) / functions, source.size() / functions, functions);
    ShadingNodeSpec::clearLibrary();
}

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    const std::string source = tokenSource();
    Tokenizer tokenizer = tokenizerFor(source);
    require(countTokens(tokenizer) == countTokensWithClang(source), "the lexers disagree on the number of tokens");
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printRatios();
    printMemory();
}
