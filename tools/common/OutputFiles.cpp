#include <common/OutputFiles.h>

#include <common/Source.h>
#include <common/StandardOutput.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace krTools
{

namespace
{

[[noreturn]] void fail(const std::string& path, int error)
{
    throw FileError("cannot write '" + path + "': " + std::strerror(error));
}

/// Writes, forces to the disk and closes.
/// @return  0, or the first error number
int writeAndClose(int descriptor, std::string_view text)
{
    int error = writeAll(descriptor, text);
    // Pipes and devices have nothing to be forced.
    if (error == 0 && ::fsync(descriptor) != 0 && errno != EINVAL && errno != EROFS && errno != ENOTSUP)
        error = errno;
    if (::close(descriptor) != 0 && error == 0)
        error = errno;
    return error;
}

/// A file under a passing name, which goes away unless it gets its own.
class StagedFile
{
public:
    StagedFile(const std::string& path, std::string_view text) : fPath(path), fTarget(path)
    {
        // The file that a link leads to is replaced, and the link stays.
        const std::unique_ptr<char, decltype(&std::free)> resolved(::realpath(path.c_str(), nullptr), &std::free);
        if (resolved)
            fTarget = resolved.get();
        const std::size_t slash = fTarget.rfind('/');
        fStaged = (slash == std::string::npos ? "" : fTarget.substr(0, slash + 1)) + ".krender-XXXXXX";

        struct stat status = {};
        const bool exists = ::stat(fTarget.c_str(), &status) == 0;
        if (exists && S_ISDIR(status.st_mode))
            fail(fPath, EISDIR);
        const int descriptor = ::mkostemp(fStaged.data(), O_CLOEXEC);
        if (descriptor < 0)
            fail(fPath, errno);
        const mode_t mask = ::umask(0);
        ::umask(mask);
        int error = ::fchmod(descriptor, exists ? status.st_mode & 07777 : 0666 & ~mask) == 0 ? 0 : errno;
        const int writeError = writeAndClose(descriptor, text);
        error = error != 0 ? error : writeError;
        if (error != 0)
        {
            ::unlink(fStaged.c_str());
            fail(fPath, error);
        }
    }
    StagedFile(const StagedFile&) = delete;
    StagedFile& operator=(const StagedFile&) = delete;
    ~StagedFile()
    {
        if (!fStaged.empty())
            ::unlink(fStaged.c_str());
    }

    void publish()
    {
        if (std::rename(fStaged.c_str(), fTarget.c_str()) != 0)
            fail(fPath, errno);
        fStaged.clear();
    }

private:
    std::string fPath; ///< as the user wrote it
    std::string fTarget;
    std::string fStaged;
};

/// Whether something stands at the path that must be written into and cannot be replaced: a device or a pipe.
bool isStream(const std::string& path)
{
    struct stat status = {};
    return ::stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode);
}

void writeStream(const std::string& path, std::string_view text)
{
    const int descriptor = ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
    if (descriptor < 0)
        fail(path, errno);
    if (const int error = writeAndClose(descriptor, text); error != 0)
        fail(path, error);
}

/// Folders that are made where they are missing. At the end those that are still empty are removed again.
class NewFolders
{
public:
    NewFolders() = default;
    NewFolders(const NewFolders&) = delete;
    NewFolders& operator=(const NewFolders&) = delete;
    ~NewFolders()
    {
        for (; !fMade.empty(); fMade.pop_back())
            ::rmdir(fMade.back().c_str());
    }

    /// Makes the folders that lead to a file.
    void makeFor(const std::string& path)
    {
        for (std::size_t slash = path.find('/', 1); slash != std::string::npos; slash = path.find('/', slash + 1))
        {
            std::string folder = path.substr(0, slash);
            if (::mkdir(folder.c_str(), 0777) == 0)
                fMade.push_back(std::move(folder));
            else if (errno != EEXIST)
                fail(path, errno);
        }
    }

private:
    std::vector<std::string> fMade; ///< outer ones first
};

} // namespace

void OutputFiles::publish(MissingFolders missing) const
{
    NewFolders folders;
    if (missing == MissingFolders::Make)
        for (const auto& [path, text] : fFiles)
            folders.makeFor(path);

    std::vector<std::unique_ptr<StagedFile>> staged;
    for (const auto& [path, text] : fFiles)
        if (path != "-" && !isStream(path))
            staged.push_back(std::make_unique<StagedFile>(path, text));

    StandardOutput output;
    for (const auto& [path, text] : fFiles)
        if (path == "-")
            output.write(text);
        else if (isStream(path))
            writeStream(path, text);
    output.finish();

    for (const auto& file : staged)
        file->publish();
}

} // namespace krTools
