#pragma once
#include <krender/platform/String.h>

#include <krender/Export.h>

#include <cstddef>
#include <string>

/// The bytes of a source. Despite the name nothing is mapped: files and strings are copied, each behind the last one.
class KRENDER_EXPORT MemMappedFile
{
public:
    /// Appends a file's bytes and one more, 0xFF. Deliberate: that byte is no white space, so a file that ends in white
    /// space ends in an unknown token instead of an exception of the tokenizer.
    /// @return  false when the file cannot be opened or read; the bytes then stay as they were
    [[nodiscard]] bool open(const krString::CString& path);
    /// Appends the text's bytes, and nothing else.
    void openString(const krString::CString& text);

    /// The first byte, not terminated by a zero; null when there are none.
    [[nodiscard]] const char* c_str() const noexcept { return fBytes.empty() ? nullptr : fBytes.data(); }
    [[nodiscard]] std::size_t size() const noexcept { return fBytes.size(); }

private:
    std::string fBytes;
};
