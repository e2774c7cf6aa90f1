#include "Validation.h"

#include "Report.h"

#include <common/ExitStatus.h>
#include <common/StandardOutput.h>
#include <validation/CgValidator.h>
#include <validation/GlslValidator.h>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <nlohmann/json.hpp>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <new>
#include <string>
#include <utility>

using nlohmann::ordered_json;

namespace
{

/// The bytes of a program past which its checker would take too long.
constexpr std::size_t kMostBytes = std::size_t{1} << 20;

// What the process that checks tells the other one.

ordered_json jsonOf(const krTools::Findings& findings)
{
    ordered_json list = ordered_json::array();
    for (const krTools::Finding& finding : findings.kept())
        list.push_back({finding.position, finding.severity, finding.text});
    return {{"kept", std::move(list)}, {"notKept", findings.notKept()}};
}

void addFindings(const ordered_json& answer, krTools::Findings& findings)
{
    for (const ordered_json& row : answer["kept"])
        findings.add({row[0], row[1], row[2]});
    findings.countMore(answer["notKept"]);
}

[[noreturn]] void checkInChild(const Target& target, const krTools::Source& vertex, const krTools::Source& fragment,
                               int output)
{
    constexpr rlim_t kMaxSeconds = 60;
    const rlimit seconds{kMaxSeconds, kMaxSeconds};
    const rlimit noCore{0, 0};
    std::signal(SIGSEGV, SIG_DFL); // sanitizers catch it and report
    ::setrlimit(RLIMIT_CPU, &seconds);
    ::setrlimit(RLIMIT_CORE, &noCore);
    // A stack that overflows ends this process without a word, in builds that watch over memory too.
    std::signal(SIGSEGV, SIG_DFL);
    try
    {
        const krTools::PairFindings findings = target.language == TargetLanguage::Cg
                                                   ? krTools::validateCg(vertex, fragment)
                                                   : krTools::validateGlsl(target, vertex, fragment);
        const ordered_json answer{
            {"vertex", jsonOf(findings.vertex)}, {"fragment", jsonOf(findings.fragment)}, {"pair", findings.pair}};
        ::_exit(krTools::writeAll(output, textOf(answer)) == 0 ? krTools::kDone : krTools::kInputHasErrors);
    }
    catch (const std::bad_alloc&)
    {
        ::_exit(krTools::kCannotRun);
    }
}

std::string readAll(int input)
{
    std::string text;
    std::array<char, 4096> piece;
    for (ssize_t got; (got = ::read(input, piece.data(), piece.size())) > 0 || (got < 0 && errno == EINTR);)
        text.append(piece.data(), got > 0 ? static_cast<std::size_t>(got) : 0);
    return text;
}

} // namespace

krTools::PairFindings validate(const Target& target, const krTools::Source& vertex, const krTools::Source& fragment)
{
    krTools::PairFindings findings;
    if (target.language != TargetLanguage::Cg && !krTools::canValidateGlsl(target))
        return findings;
    if (vertex.size() > kMostBytes || fragment.size() > kMostBytes)
    {
        findings.pair.emplace_back("a program of more than 1 MB is not checked");
        return findings;
    }
    // The checkers call themselves for each level of nesting and each term of a sum, so that a long program could take
    // krslc's whole stack: a process of its own may end as it likes.
    std::array<int, 2> pipe{};
    const bool hasPipe = ::pipe(pipe.data()) == 0;
    const pid_t child = hasPipe ? ::fork() : -1;
    if (child == 0)
        checkInChild(target, vertex, fragment, pipe[1]);
    const int error = errno;
    std::string answer;
    if (hasPipe)
    {
        ::close(pipe[1]);
        answer = child > 0 ? readAll(pipe[0]) : "";
        ::close(pipe[0]);
    }
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child)
        throw krTools::FileError(std::string("cannot check the programs: ") + std::strerror(error));
    if (WIFEXITED(status) && WEXITSTATUS(status) == krTools::kCannotRun)
        throw std::bad_alloc();
    if (!WIFEXITED(status) || WEXITSTATUS(status) != krTools::kDone)
    {
        findings.pair.push_back(std::string("the checker of ") + std::string(target.name) +
                                " programs broke down: the material's code nests too deeply or is too long for it");
        return findings;
    }
    const ordered_json json = ordered_json::parse(answer);
    addFindings(json["vertex"], findings.vertex);
    addFindings(json["fragment"], findings.fragment);
    findings.pair = json["pair"];
    return findings;
}
