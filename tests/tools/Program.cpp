#include "Program.h"

#include <fcntl.h>
#include <linux/capability.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>

namespace
{

/// A file without a name, for what goes in and comes out.
class PassingFile
{
public:
    PassingFile() : fFile(std::tmpfile(), &std::fclose) {}

    [[nodiscard]] int descriptor() const { return ::fileno(fFile.get()); }
    void fill(const std::string& text)
    {
        std::fwrite(text.data(), 1, text.size(), fFile.get());
        std::rewind(fFile.get());
    }
    [[nodiscard]] std::string text()
    {
        std::rewind(fFile.get());
        std::string all;
        std::array<char, 1 << 16> piece;
        for (std::size_t got; (got = std::fread(piece.data(), 1, piece.size(), fFile.get())) > 0;)
            all.append(piece.data(), got);
        return all;
    }

private:
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> fFile;
};

/// Takes the right to pass over files' modes from the programs started after this. The super-user alone has it.
bool obeyFileModes()
{
    return ::geteuid() != 0 ||
           (::prctl(PR_CAPBSET_DROP, CAP_DAC_OVERRIDE) == 0 && ::prctl(PR_CAPBSET_DROP, CAP_DAC_READ_SEARCH) == 0);
}

/// A pseudo-terminal.
class Terminal
{
public:
    Terminal() : fMaster(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC))
    {
        if (fMaster >= 0 && ::grantpt(fMaster) == 0 && ::unlockpt(fMaster) == 0)
            fSlave = ::open(::ptsname(fMaster), O_RDWR | O_NOCTTY | O_CLOEXEC);
    }
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;
    ~Terminal()
    {
        ::close(fSlave);
        ::close(fMaster);
    }

    [[nodiscard]] int descriptor() const noexcept { return fSlave; }
    /// What was written, as far as it fits into the terminal's memory.
    [[nodiscard]] std::string text() const
    {
        std::array<char, 4096> bytes;
        ::fcntl(fMaster, F_SETFL, O_NONBLOCK);
        std::string all;
        for (ssize_t got; (got = ::read(fMaster, bytes.data(), bytes.size())) > 0;)
            all.append(bytes.data(), static_cast<std::size_t>(got));
        return all;
    }

private:
    int fMaster;
    int fSlave = -1;
};

void limit(__rlimit_resource resource, rlim_t value)
{
    const rlimit both{value, value};
    if (::setrlimit(resource, &both) != 0)
        ::_exit(126);
}

} // namespace

Workplace::Workplace()
{
    std::string name = (std::filesystem::temp_directory_path() / "krender-test-XXXXXX").string();
    if (!::mkdtemp(name.data()))
        std::abort();
    fPath = name;
    std::filesystem::permissions(fPath, std::filesystem::perms::all);
}

Workplace::~Workplace() { std::filesystem::remove_all(fPath); }

void Workplace::write(const std::string& name, const std::string& text) const
{
    std::ofstream(fPath / name, std::ios::binary) << text;
}

std::string Workplace::read(const std::string& name) const
{
    std::ifstream file(fPath / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> Workplace::names() const
{
    std::vector<std::string> all;
    for (const auto& entry : std::filesystem::directory_iterator(fPath))
        all.push_back(entry.path().filename().string());
    std::sort(all.begin(), all.end());
    return all;
}

bool Workplace::canMakeTerminals() { return Terminal().descriptor() >= 0; }

Outcome Workplace::run(const std::string& program, const std::vector<std::string>& arguments,
                       const Circumstances& circumstances) const
{
    PassingFile in;
    PassingFile out;
    PassingFile err;
    const std::optional<Terminal> terminal =
        circumstances.onTerminal ? std::optional<Terminal>(std::in_place) : std::nullopt;
    in.fill(circumstances.input);

    std::vector<std::string> words{program};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    argv.reserve(words.size() + 1);
    for (std::string& word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);

    const pid_t child = ::fork();
    if (child == 0)
    {
        const int standardOutput = circumstances.standardOutput.empty()
                                       ? out.descriptor()
                                       : ::open(circumstances.standardOutput.c_str(), O_WRONLY | O_CLOEXEC);
        ::dup2(in.descriptor(), STDIN_FILENO);
        ::dup2(standardOutput, STDOUT_FILENO);
        ::dup2(terminal ? terminal->descriptor() : err.descriptor(), STDERR_FILENO);
        for (const auto& [name, value] : circumstances.environment)
            ::setenv(name.c_str(), value.c_str(), 1);
        limit(RLIMIT_CPU, circumstances.secondsLimit);
        if (circumstances.addressLimit)
            limit(RLIMIT_AS, *circumstances.addressLimit);
        if (circumstances.fileSizeLimit)
            limit(RLIMIT_FSIZE, *circumstances.fileSizeLimit);
        if (::chdir(fPath.c_str()) != 0 || (circumstances.boundByModes && !obeyFileModes()))
            ::_exit(126);
        ::execv(argv[0], argv.data());
        ::_exit(127);
    }

    Outcome outcome;
    int status = 0;
    rusage usage = {};
    if (child < 0 || ::wait4(child, &status, 0, &usage) != child)
        return outcome;
    outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    outcome.out = out.text();
    outcome.err = terminal ? terminal->text() : err.text();
    outcome.peakKilobytes = static_cast<std::size_t>(usage.ru_maxrss);
    return outcome;
}
