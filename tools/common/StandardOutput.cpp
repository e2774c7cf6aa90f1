#include <common/StandardOutput.h>

#include <common/Source.h>

#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace krTools
{

int writeAll(int descriptor, std::string_view bytes) noexcept
{
    while (!bytes.empty())
    {
        const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
        if (count > 0)
            bytes.remove_prefix(static_cast<std::size_t>(count));
        else if (errno != EINTR)
            return errno;
    }
    return 0;
}

void printText(std::string_view text)
{
    StandardOutput output;
    output.write(text);
    output.finish();
}

void StandardOutput::write(std::string_view text)
{
    constexpr std::size_t kPiece = 1 << 20;
    fHeld += text;
    if (fHeld.size() >= kPiece)
        finish();
}

void StandardOutput::finish()
{
    const int error = writeAll(STDOUT_FILENO, fHeld);
    fHeld.clear();
    if (error != 0)
        throw FileError(std::string("cannot write standard output: ") + std::strerror(error));
}

} // namespace krTools
