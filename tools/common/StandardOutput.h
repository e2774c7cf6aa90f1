#pragma once
#include <string>
#include <string_view>

namespace krTools
{

/// Standard output, written in large pieces. Throws a FileError when it cannot be written.
class StandardOutput
{
public:
    void write(std::string_view text);
    /// Writes what is still held. Nothing does it by itself, so that no failure goes unseen.
    void finish();

private:
    std::string fHeld;
};

/// Writes a text to standard output. Throws a FileError when it cannot be written.
void printText(std::string_view text);

/// Writes all bytes to a descriptor.
/// @return  0, or the error number
[[nodiscard]] int writeAll(int descriptor, std::string_view bytes) noexcept;

} // namespace krTools
