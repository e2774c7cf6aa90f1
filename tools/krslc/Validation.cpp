#include "Validation.h"

#include "FailureTexts.h"

#include <validation/CgValidator.h>
#include <validation/GlslValidator.h>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <exception>
#include <string>

using krTools::Severity;

namespace
{

void print(const krTools::Source& program, krTools::Findings& findings, const char* nameOnOutput)
{
    findings.sort();
    if (program.name() == "-")
        krTools::print(stderr, krTools::Source(nameOnOutput, std::string(program.text())), findings);
    else
        krTools::print(stderr, program, findings);
}

bool checkPrograms(const ProgramPair& programs)
{
    krTools::PairFindings findings;
    findFailureTexts(programs.vertex, findings.vertex);
    findFailureTexts(programs.fragment, findings.fragment);
    if (!findings.hasErrors())
        findings = (programs.isGlsl ? krTools::validateGlsl : krTools::validateCg)(programs.vertex, programs.fragment);
    print(programs.vertex, findings.vertex, "<vertex program>");
    print(programs.fragment, findings.fragment, "<fragment program>");
    for (const std::string& error : findings.pair)
        krTools::print(stderr, "krslc", Severity::Error, error);
    return !findings.hasErrors();
}

} // namespace

bool validate(const ProgramPair& programs)
{
    // The front ends call themselves for each level of nesting and each term of a sum, so that a long program could take
    // krslc's whole stack: a process of its own may end as it likes.
    constexpr rlim_t kMaxSeconds = 60;
    const pid_t child = ::fork();
    if (child == 0)
    {
        const rlimit seconds{kMaxSeconds, kMaxSeconds};
        const rlimit noCore{0, 0};
        std::signal(SIGSEGV, SIG_DFL); // sanitizers catch it and report
        ::setrlimit(RLIMIT_CPU, &seconds);
        ::setrlimit(RLIMIT_CORE, &noCore);
        bool ok = false;
        try
        {
            ok = checkPrograms(programs);
        }
        catch (const std::exception& error)
        {
            krTools::print(stderr, "krslc", Severity::Error, error.what());
        }
        ::_exit(ok ? 0 : 1);
    }
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child)
        throw krTools::FileError(std::string("cannot check the programs: ") + std::strerror(errno));
    if (WIFEXITED(status))
        return WEXITSTATUS(status) == 0;
    krTools::print(stderr, "krslc", Severity::Error,
                   std::string("the checker of ") + (programs.isGlsl ? "GLSL" : "Cg") +
                       " programs broke down: the material's code nests too deeply or is too long for it");
    return false;
}
