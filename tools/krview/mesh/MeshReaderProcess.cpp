#include "MeshReaderProcess.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <system_error>
#include <utility>

namespace
{

void check(int error)
{
    if (error != 0)
        throw std::system_error(error, std::generic_category(), "krview cannot start its reader of meshes");
}

/// What is done to the descriptors of a process before its program starts.
class FileActions
{
public:
    FileActions() { check(::posix_spawn_file_actions_init(&fActions)); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;
    ~FileActions() { ::posix_spawn_file_actions_destroy(&fActions); }

    posix_spawn_file_actions_t* operator&() noexcept { return &fActions; }

private:
    posix_spawn_file_actions_t fActions{};
};

} // namespace

MeshReaderProcess::MeshReaderProcess(const std::string& path)
{
    std::array<int, 2> ends{};
    check(::pipe2(ends.data(), O_CLOEXEC) == 0 ? 0 : errno);
    fOutput.reset(ends[0]);
    const krTools::Descriptor writingEnd(ends[1]);
    FileActions actions;
    // It has nothing open but its output, and what libraries print in it is seen by nobody.
    check(::posix_spawn_file_actions_adddup2(&actions, writingEnd.get(), kMeshReaderOutput));
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        check(::posix_spawn_file_actions_addopen(&actions, standard, "/dev/null", O_RDWR, 0));
    check(::posix_spawn_file_actions_addclosefrom_np(&actions, kMeshReaderOutput + 1));
    std::string program = "krview";
    std::string argument = kMeshReaderArgument;
    std::string file = path;
    const std::array<char*, 4> arguments{program.data(), argument.data(), file.data(), nullptr};
    check(::posix_spawn(&fId, "/proc/self/exe", &actions, nullptr, arguments.data(), environ));
}

MeshReaderProcess::~MeshReaderProcess()
{
    if (fId < 0)
        return;
    ::kill(fId, SIGKILL);
    (void)waitForEnd();
}

std::string MeshReaderProcess::waitForEnd()
{
    int status = 0;
    while (::waitpid(fId, &status, 0) < 0 && errno == EINTR)
        ;
    fId = -1;
    if (!WIFSIGNALED(status))
        return "its reader has ended without an answer";
    if (WTERMSIG(status) == SIGXCPU)
        return "it takes far more time than a file of its size should";
    if (WTERMSIG(status) == SIGKILL)
        return "its reader was ended from outside";
    return "its reader has crashed (" + std::string(::strsignal(WTERMSIG(status))) + "), so the file is broken";
}
