#pragma once
#include <krender/platform/String.h>

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

namespace krTools
{

/// A file that cannot be read or written; the text names it and says why.
class FileError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// The most bytes of a source that is read whole.
inline constexpr std::size_t kMaxSourceSize = std::size_t{64} << 20;

/// How messages call standard input.
inline constexpr const char* kStandardInputName = "<stdin>";

/// Reads a file, "-" being standard input, and drops a byte-order mark at its beginning. Throws a FileError when it is a
/// directory, unreadable, or has more bytes than the limit, which is a whole number of megabytes.
[[nodiscard]] std::string readText(const std::string& path, std::size_t limit);

/// A text that was read whole, and the places in it.
class Source
{
public:
    /// Where a byte stands; line and column (in bytes) count from 1.
    struct Place
    {
        std::size_t line;
        std::size_t column;
        std::string_view text; ///< the line, without its end
    };

    /// Reads a file as readText does; it has at most kMaxSourceSize bytes.
    explicit Source(const std::string& path);
    /// Takes a text that is in memory already.
    Source(std::string name, std::string text);

    /// How messages call it.
    [[nodiscard]] const std::string& name() const noexcept { return fName; }
    [[nodiscard]] std::string_view text() const noexcept { return contents().view().substr(0, fSize); }
    /// The bytes with the one that the library puts behind a file's last, so that a parser that is given this text reads
    /// it as it reads a file.
    [[nodiscard]] const krString::CString& contents() const noexcept { return fContents; }
    /// The number of bytes of the text.
    [[nodiscard]] std::size_t size() const noexcept { return fSize; }

    /// Where a line begins, counted from 1; the end for one past the last.
    /// Like place(), cheap in rising order.
    [[nodiscard]] std::size_t lineBegin(std::size_t line) const noexcept;
    /// The place of a byte, or of the end. Asking in rising order costs one walk through the text in all.
    [[nodiscard]] Place place(std::size_t position) const;

private:
    std::string fName;
    krString::CString fContents;
    std::size_t fSize = 0;
    void toFirstLine() const noexcept;
    void toNextLine() const noexcept;

    // The last line asked for; none yet when its number is 0.
    mutable std::size_t fLine = 0;
    mutable std::size_t fLineBegin = 0;
    mutable std::size_t fLineEnd = std::string_view::npos;
};

} // namespace krTools
