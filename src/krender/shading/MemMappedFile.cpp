#include <krender/shading/MemMappedFile.h>

#include <krender/platform/String.h>

#include <array>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>

bool MemMappedFile::open(const krString::CString& path)
{
    struct Closer
    {
        void operator()(std::FILE* file) const noexcept { std::fclose(file); }
    };
    const std::unique_ptr<std::FILE, Closer> file(std::fopen(path.asChar(), "r"));
    if (!file)
        return false;

    const std::size_t before = fBytes.size();
    std::array<char, 1 << 16> chunk;
    for (std::size_t got; (got = std::fread(chunk.data(), 1, chunk.size(), file.get())) > 0;)
        fBytes.append(chunk.data(), got);
    if (std::ferror(file.get()))
    {
        fBytes.resize(before);
        return false;
    }
    fBytes += '\xff';
    return true;
}

void MemMappedFile::openString(const krString::CString& text) { fBytes += text.view(); }
