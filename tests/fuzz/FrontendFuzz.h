#pragma once
#include <krender/frontend/PlainReading.h>
#include <krender/frontend/Program.h>

#include <cstdio>
#include <cstdlib>

namespace frontendFuzz
{

/// What must hold for every input; the fuzzer reports an abort with the input.
inline void require(bool condition, const char* what)
{
    if (condition)
        return;
    std::fprintf(stderr, "failed: %s\n", what);
    std::abort();
}

/// Answers an include with one of the parts of an input: by the last byte of the path.
class Parts final : public krFrontend::SourceReader
{
public:
    explicit Parts(std::vector<std::string> parts) : fParts(std::move(parts)) {}

    std::string read(const std::string& path, std::size_t limit, std::string& text) override
    {
        text = fParts[place(path)];
        return text.size() > limit ? "it is too long" : "";
    }
    bool exists(const std::string& path) override { return place(path) < fParts.size(); }

private:
    static std::size_t place(const std::string& path)
    {
        return path.empty() ? ~std::size_t{0} : static_cast<std::size_t>(static_cast<unsigned char>(path.back()) - '0');
    }

    std::vector<std::string> fParts;
};

inline void checkDiagnostics(const krFrontend::Module& module)
{
    for (const krFrontend::Diagnostic& diagnostic : module.diagnostics())
    {
        const auto checkRange = [&](krFrontend::SourceRange range)
        {
            const krFrontend::SourceFile& file = module.sources().fileAt(range.begin);
            require(range.begin <= range.end && range.begin >= file.begin() && range.end <= file.end(),
                    "a range lies within its file");
        };
        require(!diagnostic.name.empty() && !diagnostic.text.empty(), "a diagnostic says what it is");
        checkRange(diagnostic.range);
        for (const krFrontend::DiagnosticNote& note : diagnostic.notes)
            checkRange(note.range);
        for (const krFrontend::DiagnosticFix& fix : diagnostic.fixes)
            checkRange(fix.range);
    }
}

/// Reads a source and does with it all that can be done: every material with every light of it, for every target.
inline void readAndCompile(std::vector<std::string> parts)
{
    using namespace krFrontend;
    const std::string main = parts.front();
    Parts reader(std::move(parts));
    const Module module = Module::readText("0", main, {{}, &reader});
    checkDiagnostics(module);
    const std::vector<ShaderInterface> shaders = interfaceOf(module);
    (void)plainDifferences(module);
    if (module.hasErrors())
        return;
    std::vector<LightUse> lights;
    for (const ShaderInterface& shader : shaders)
        if (shader.kind == ShaderKind::Light && shader.hasBody && lights.size() < 3)
            lights.push_back({&module, shader.name, std::string(1, static_cast<char>('a' + lights.size()))});
    for (const ShaderInterface& shader : shaders)
        for (const Target& target : targets())
        {
            if (shader.kind != ShaderKind::Material || !shader.hasBody)
                continue;
            std::vector<ProgramDiagnostic> problems;
            const auto program = compileProgram({&module, shader.name, lights, false}, target, problems);
            require(program.has_value() == problems.empty(), "a program or a problem comes back");
            require(!program || (!program->vertex.empty() && !program->fragment.empty()), "a program has its text");
        }
}

} // namespace frontendFuzz

/// The entry point that libFuzzer calls.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
