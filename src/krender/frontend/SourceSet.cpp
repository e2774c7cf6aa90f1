#include <krender/frontend/SourceSet.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include <sys/stat.h>

namespace krFrontend
{

SourceFile::SourceFile(std::string name, std::string text, Offset begin)
    : fName(std::move(name)), fText(std::move(text)), fBegin(begin)
{
}

void SourceFile::indexLines() const
{
    if (!fLineStarts.empty())
        return;
    fLineStarts.push_back(0);
    for (std::size_t at = fText.find('\n'); at != std::string::npos; at = fText.find('\n', at + 1))
        fLineStarts.push_back(static_cast<Offset>(at + 1));
}

SourceLocation SourceFile::location(Offset offset) const
{
    indexLines();
    const Offset within = offset - fBegin;
    const auto next = std::upper_bound(fLineStarts.begin(), fLineStarts.end(), within);
    return {fName, static_cast<unsigned>(next - fLineStarts.begin()), within - *(next - 1) + 1};
}

std::string_view SourceFile::line(unsigned number) const
{
    indexLines();
    if (number == 0 || number > fLineStarts.size())
        return {};
    const std::string_view rest = std::string_view(fText).substr(fLineStarts[number - 1]);
    const std::string_view line = rest.substr(0, rest.find('\n'));
    return line.ends_with('\r') ? line.substr(0, line.size() - 1) : line;
}

const SourceFile& SourceSet::add(std::string name, std::string text)
{
    // One byte stands between two files, so that the end of one is not the beginning of the next.
    const Offset begin = fFiles.empty() ? 0 : fFiles.back()->end() + 1;
    fSize += static_cast<Offset>(text.size());
    return *fFiles.emplace_back(std::make_unique<SourceFile>(std::move(name), std::move(text), begin));
}

const SourceFile& SourceSet::fileAt(Offset offset) const noexcept
{
    const auto after = std::upper_bound(fFiles.begin() + 1, fFiles.end(), offset,
                                        [](Offset o, const auto& file) { return o < file->begin(); });
    return **(after - 1);
}

std::string_view SourceSet::text(SourceRange range) const noexcept
{
    const SourceFile& file = fileAt(range.begin);
    return file.text().substr(range.begin - file.begin(), range.end - range.begin);
}

SourceReader::~SourceReader() = default;

std::string SourceReader::read(const std::string& path, std::size_t limit, std::string& text)
{
    struct Close
    {
        void operator()(std::FILE* file) const noexcept { std::fclose(file); }
    };
    text.clear();
    const std::unique_ptr<std::FILE, Close> file(std::fopen(path.c_str(), "rb"));
    if (!file)
        return std::strerror(errno);
    std::array<char, 65536> block;
    while (const std::size_t got = std::fread(block.data(), 1, block.size(), file.get()))
    {
        if (got > limit - text.size())
            return "the sources of a run have more than " + std::to_string(limit >> 20) + " MB";
        text.append(block.data(), got);
    }
    return std::ferror(file.get()) ? std::strerror(errno) : "";
}

bool SourceReader::exists(const std::string& path)
{
    struct stat status;
    return stat(path.c_str(), &status) == 0 && !S_ISDIR(status.st_mode);
}

} // namespace krFrontend
