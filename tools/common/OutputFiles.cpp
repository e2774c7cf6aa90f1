#include <common/OutputFiles.h>

#include <common/Descriptor.h>
#include <common/PassingName.h>
#include <common/Source.h>
#include <common/StagedFile.h>
#include <common/StandardOutput.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
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

/// Whether something stands at the path that must be written into and cannot be replaced: a device or a pipe.
bool isStream(const std::string& path)
{
    struct stat status = {};
    return ::stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode);
}

void writeStream(const std::string& path, std::string_view text)
{
    Descriptor stream(::open(path.c_str(), O_WRONLY | O_CLOEXEC));
    if (stream.get() < 0)
        fail(path, errno);
    int error = writeAll(stream.get(), text);
    if (error == 0)
        error = forceToDisk(stream.get());
    if (error != 0)
        fail(path, error);
    if (stream.close() != 0)
        fail(path, errno);
}

/// Folders that are made where they are missing. At the end those that are still empty are removed again, the inner ones
/// first.
class NewFolders
{
public:
    NewFolders() = default;
    NewFolders(const NewFolders&) = delete;
    NewFolders& operator=(const NewFolders&) = delete;
    ~NewFolders()
    {
        while (!fMade.empty())
            fMade.pop_back();
    }

    /// Makes the folders that lead to a file.
    void makeFor(const std::string& path)
    {
        for (std::size_t slash = path.find('/', 1); slash != std::string::npos; slash = path.find('/', slash + 1))
        {
            const SignalsHeld held;
            auto folder = std::make_unique<PassingName>(path.substr(0, slash), ::rmdir);
            fMade.reserve(fMade.size() + 1);
            if (::mkdir(folder->path().c_str(), 0777) == 0)
            {
                fMade.push_back(std::move(folder));
                continue;
            }
            const int error = errno;
            folder->keep();
            if (error != EEXIST)
                fail(path, error);
        }
    }

private:
    std::vector<std::unique_ptr<PassingName>> fMade;
};

} // namespace

void OutputFiles::publish(MissingFolders missing) const
{
    constexpr std::size_t kMostOpen = 800; // a process has 1024 descriptors as a rule

    NewFolders folders;
    if (missing == MissingFolders::Make)
        for (const auto& [path, text] : fFiles)
            folders.makeFor(path);

    std::vector<std::unique_ptr<StagedFile>> staged;
    for (const auto& [path, text] : fFiles)
        if (path != "-" && !isStream(path))
            staged.push_back(std::make_unique<StagedFile>(path, text, staged.size() < kMostOpen));
    for (const auto& file : staged)
        file->settle();

    StandardOutput output;
    for (const auto& [path, text] : fFiles)
        if (path == "-")
            output.write(text);
        else if (isStream(path))
            writeStream(path, text);
    output.finish();

    const SignalsHeld held;
    for (const auto& file : staged)
        file->publish();
}

} // namespace krTools
