#include <common/Source.h>

#include <common/Descriptor.h>

#include <krender/shading/MemMappedFile.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace krTools
{

namespace
{

/// Some editors begin UTF-8 files with it; it is no part of the text.
constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";

[[noreturn]] void fail(const std::string& name, const std::string& reason)
{
    throw FileError("cannot read " + name + ": " + reason);
}

} // namespace

std::string readText(const std::string& path, std::size_t limit)
{
    const std::string name = path == "-" ? "standard input" : "'" + path + "'";
    const Descriptor file(path == "-" ? STDIN_FILENO : ::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    struct stat status = {};
    if (file.get() < 0 || ::fstat(file.get(), &status) != 0)
        fail(name, std::strerror(errno));
    if (S_ISDIR(status.st_mode))
        fail(name, std::strerror(EISDIR));
    const bool sizeKnown = S_ISREG(status.st_mode);
    const std::string tooLarge = "it has more than " + std::to_string(limit >> 20) + " MB";
    if (sizeKnown && static_cast<std::size_t>(status.st_size) > limit)
        fail(name, tooLarge);

    // Room for one more byte, so that a read finds the end.
    std::string bytes(sizeKnown ? static_cast<std::size_t>(status.st_size) + 1 : 1 << 16, '\0');
    for (std::size_t filled = 0;;)
    {
        const ssize_t count = ::read(file.get(), bytes.data() + filled, bytes.size() - filled);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            fail(name, std::strerror(errno));
        filled += static_cast<std::size_t>(count);
        if (filled > limit)
            fail(name, tooLarge);
        if (count == 0)
        {
            bytes.resize(filled);
            if (bytes.starts_with(kByteOrderMark))
                bytes.erase(0, kByteOrderMark.size());
            return bytes;
        }
        if (filled == bytes.size())
            bytes.resize(filled * 2);
    }
}

Source::Source(const std::string& path)
    : Source(path == "-" ? kStandardInputName : path, readText(path, kMaxSourceSize))
{
}

Source::Source(std::string name, std::string text) : fName(std::move(name)), fSize(text.size())
{
    text += MemMappedFile::kClosingByte;
    fContents = krString::CString(std::move(text));
}

void Source::toFirstLine() const noexcept
{
    fLine = 0;
    fLineEnd = std::string_view::npos; // one before the first byte
    toNextLine();
}

void Source::toNextLine() const noexcept
{
    ++fLine;
    fLineBegin = fLineEnd + 1;
    fLineEnd = std::min(text().find('\n', fLineBegin), fSize);
}

std::size_t Source::lineBegin(std::size_t line) const noexcept
{
    if (fLine == 0 || line < fLine)
        toFirstLine();
    while (fLine < line && fLineEnd < fSize)
        toNextLine();
    return fLine < line ? fSize : fLineBegin;
}

Source::Place Source::place(std::size_t position) const
{
    const std::string_view bytes = text();
    position = std::min(position, bytes.size());
    if (fLine == 0 || position < fLineBegin)
        toFirstLine();
    while (fLineEnd < position)
        toNextLine();
    std::string_view line = bytes.substr(fLineBegin, fLineEnd - fLineBegin);
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    return {fLine, position - fLineBegin + 1, line};
}

} // namespace krTools
