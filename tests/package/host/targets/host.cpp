#include <krender-targets/SpirvProgram.h>
#include <krender/krender.h>

int main()
{
    using namespace krFrontend;
    const Module module = Module::readText("m.krs", "material m(out float4 outRGBA) { outRGBA = float4(1); }");
    const Target& target = *findTarget("hlsl");
    std::vector<ProgramDiagnostic> problems;
    const auto program = compileProgram({&module, "", {}, false}, target, problems);
    const auto binary = program ? krTargets::SpirvProgram::build(*program, problems) : std::nullopt;
    return binary && binary->translate(target, problems) ? 0 : 1;
}
