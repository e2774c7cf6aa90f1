#pragma once
#include <krender/Export.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace krFrontend
{

/// A place in a set of sources: bytes are counted on through all of its files.
using Offset = std::uint32_t;

/// The bytes from begin to before end, of one file.
struct SourceRange
{
    Offset begin = 0;
    Offset end = 0;

    friend constexpr bool operator==(const SourceRange&, const SourceRange&) noexcept = default;
};

/// A place as people name it. Line and column count from 1, columns in bytes.
struct SourceLocation
{
    std::string_view file; ///< valid as long as the set of sources
    unsigned line = 1;
    unsigned column = 1;
};

/// One source file.
class KRENDER_EXPORT SourceFile
{
public:
    SourceFile(std::string name, std::string text, Offset begin);

    [[nodiscard]] const std::string& name() const noexcept { return fName; }
    [[nodiscard]] std::string_view text() const noexcept { return fText; }
    /// Where the file's first byte stands in the set.
    [[nodiscard]] Offset begin() const noexcept { return fBegin; }
    /// One past the file's last byte.
    [[nodiscard]] Offset end() const noexcept { return fBegin + static_cast<Offset>(fText.size()); }

    [[nodiscard]] SourceLocation location(Offset offset) const;
    /// A line without its line break, counted from 1; empty past the last one.
    [[nodiscard]] std::string_view line(unsigned number) const;

private:
    void indexLines() const;

    std::string fName;
    std::string fText;
    Offset fBegin;
    mutable std::vector<Offset> fLineStarts; // within the file; made when first asked for
};

/// The files that are read as one: a source and what it includes, in the order in which they were met.
class KRENDER_EXPORT SourceSet
{
public:
    /// @return  the file, which stays where it is
    const SourceFile& add(std::string name, std::string text);

    [[nodiscard]] std::size_t fileCount() const noexcept { return fFiles.size(); }
    [[nodiscard]] const SourceFile& file(std::size_t i) const noexcept { return *fFiles[i]; }
    /// The file that holds the byte, or ends at it; the set is not empty.
    [[nodiscard]] const SourceFile& fileAt(Offset offset) const noexcept;
    [[nodiscard]] SourceLocation location(Offset offset) const { return fileAt(offset).location(offset); }
    [[nodiscard]] std::string_view text(SourceRange range) const noexcept;
    /// The bytes of all files.
    [[nodiscard]] std::size_t size() const noexcept { return fSize; }

private:
    std::vector<std::unique_ptr<SourceFile>> fFiles;
    Offset fSize = 0;
};

/// Where sources come from. The default reads files; an editor answers with what it holds open.
class KRENDER_EXPORT SourceReader
{
public:
    virtual ~SourceReader();

    /// Reads one file.
    /// @param limit  the most bytes that may come back; a longer file is refused before it is read further
    /// @param text   overwritten
    /// @return  empty when the file was read; otherwise why it was not, for a message
    [[nodiscard]] virtual std::string read(const std::string& path, std::size_t limit, std::string& text);
    /// Whether there is such a file.
    [[nodiscard]] virtual bool exists(const std::string& path);
};

} // namespace krFrontend
