#include <common/StagedFile.h>

#include <common/Source.h>
#include <common/StandardOutput.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>

namespace krTools
{

namespace
{

[[noreturn]] void fail(const std::string& path, int error)
{
    throw FileError("cannot write '" + path + "': " + std::strerror(error));
}

/// The folder that a path's last part stands in, with a slash at its end; empty for the working folder.
std::string folderOf(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "" : path.substr(0, slash + 1);
}

/// A name beside the target that nothing has, as far as this process knows.
std::string passingName(const std::string& target)
{
    static unsigned made = 0;
    std::string name = folderOf(target);
    return name.append(".krender-").append(std::to_string(::getpid())).append("-").append(std::to_string(made++));
}

std::string pathOf(int descriptor) { return "/proc/self/fd/" + std::to_string(descriptor); }

} // namespace

std::string followLinks(const std::string& path)
{
    constexpr int kMostLinks = 40;
    std::string target = path;
    for (int i = 0; i < kMostLinks; ++i)
    {
        std::array<char, PATH_MAX> text;
        const ssize_t length = ::readlink(target.c_str(), text.data(), text.size());
        if (length < 0)
            return target;
        const std::string next(text.data(), static_cast<std::size_t>(length));
        target = next.starts_with('/') ? next : folderOf(target).append(next);
    }
    return path;
}

StagedFile::StagedFile(const std::string& path, std::string_view text, bool mayStayOpen)
    : fPath(path), fTarget(followLinks(path))
{
    struct stat status = {};
    const bool replaces = ::stat(fTarget.c_str(), &status) == 0;
    if (!replaces && errno != ENOENT)
        fail(fPath, errno);
    if (replaces && S_ISDIR(status.st_mode))
        fail(fPath, EISDIR);
    constexpr mode_t kNewMode = 0666;
    if (mayStayOpen)
        openUnnamed(kNewMode);
    if (fDescriptor.get() < 0)
        openPassing(kNewMode);
    if (replaces && ::fchmod(fDescriptor.get(), status.st_mode & 07777) != 0)
        fail(fPath, errno);
    write(text);
}

void StagedFile::openUnnamed(unsigned mode)
{
    const std::string folder = folderOf(fTarget);
    fDescriptor.reset(::open(folder.empty() ? "." : folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, mode));
    if (fDescriptor.get() >= 0 && ::access(pathOf(fDescriptor.get()).c_str(), F_OK) != 0)
        fDescriptor.reset(-1);
}

void StagedFile::openPassing(unsigned mode)
{
    for (int error = EEXIST; fDescriptor.get() < 0; error = errno)
    {
        if (error != EEXIST)
            fail(fPath, error);
        const SignalsHeld held;
        fPassing = std::make_unique<PassingName>(passingName(fTarget), ::unlink);
        fDescriptor.reset(::open(fPassing->path().c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, mode));
        if (fDescriptor.get() < 0)
            fPassing->keep(); // it is not ours
    }
}

void StagedFile::write(std::string_view text)
{
    int error = writeAll(fDescriptor.get(), text);
    if (fPassing && error == 0)
        error = forceToDisk(fDescriptor.get());
    if (fPassing && fDescriptor.close() != 0 && error == 0)
        error = errno;
    if (error != 0)
        fail(fPath, error);
}

void StagedFile::settle() const
{
    if (fPassing)
        return;
    if (const int error = forceToDisk(fDescriptor.get()); error != 0)
        fail(fPath, error);
}

void StagedFile::publish()
{
    const SignalsHeld held;
    if (!fPassing)
    {
        if (::linkat(AT_FDCWD, pathOf(fDescriptor.get()).c_str(), AT_FDCWD, fTarget.c_str(), AT_SYMLINK_FOLLOW) == 0)
            return;
        if (errno != EEXIST)
            fail(fPath, errno);
        linkPassing();
    }
    if (std::rename(fPassing->path().c_str(), fTarget.c_str()) != 0)
        fail(fPath, errno);
    fPassing->keep();
}

/// Only a file with a name can take the place of another.
void StagedFile::linkPassing()
{
    for (int error = EEXIST; error != 0;)
    {
        if (error != EEXIST)
            fail(fPath, error);
        fPassing = std::make_unique<PassingName>(passingName(fTarget), ::unlink);
        error = ::linkat(AT_FDCWD, pathOf(fDescriptor.get()).c_str(), AT_FDCWD, fPassing->path().c_str(),
                         AT_SYMLINK_FOLLOW) == 0
                    ? 0
                    : errno;
        if (error != 0)
            fPassing->keep();
    }
}

int forceToDisk(int descriptor) noexcept
{
    // Pipes and devices have nothing to be forced.
    return ::fsync(descriptor) == 0 || errno == EINVAL || errno == EROFS || errno == ENOTSUP ? 0 : errno;
}

} // namespace krTools
