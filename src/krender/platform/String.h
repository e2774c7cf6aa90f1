#pragma once
#include <krender/Export.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

/// The two string types of the library's interfaces.
namespace krString
{

/// A string of bytes, zero bytes included. asChar() ends in one zero byte more.
class KRENDER_EXPORT CString
{
public:
    CString() noexcept = default;
    /// Copies a zero-terminated text; null gives an empty string.
    CString(const char* text) : fText(text ? text : "") {}
    explicit CString(char c) : fText(1, c) {}
    /// Copies the bytes of the view, zero bytes included.
    explicit CString(std::string_view bytes) : fText(bytes) {}
    /// Adopts the storage of the string.
    explicit CString(std::string&& text) noexcept : fText(std::move(text)) {}

    /// Replaces the text with the bytes of the view, zero bytes included; the storage is reused.
    void assign(std::string_view bytes) { fText.assign(bytes); }

    /// The text, zero-terminated; valid until the string changes.
    [[nodiscard]] const char* asChar() const noexcept { return fText.c_str(); }
    /// The number of bytes.
    [[nodiscard]] unsigned length() const noexcept { return static_cast<unsigned>(fText.size()); }
    /// The byte at an index up to and including length(), where it is 0.
    [[nodiscard]] char operator[](unsigned index) const noexcept { return fText.c_str()[index]; }
    /// The bytes without a copy; valid until the string changes.
    [[nodiscard]] std::string_view view() const noexcept { return fText; }

private:
    friend KRENDER_EXPORT CString& plusEqual(CString& left, const CString& right);

    std::string fText;
};

/// A text in the user's language, which the library stores for its host and never reads.
class KRENDER_EXPORT IString
{
public:
    IString() noexcept = default;
    /// Copies a zero-terminated text; null gives an empty string.
    explicit IString(const char* text) : fText(text ? text : "") {}

    /// The text, zero-terminated; valid until the string changes.
    [[nodiscard]] const char* asChar() const noexcept { return fText.c_str(); }

private:
    std::string fText;
};

/// The concatenation of two texts.
[[nodiscard]] KRENDER_EXPORT CString plus(const CString& left, const CString& right);

/// Appends `right` to `left` and returns `left`.
KRENDER_EXPORT CString& plusEqual(CString& left, const CString& right);

[[nodiscard]] inline bool equal(const CString& left, const CString& right) noexcept
{
    return left.view() == right.view();
}

/// Compares with a zero-terminated text; null equals the empty string.
[[nodiscard]] inline bool equal(const CString& left, const char* right) noexcept
{
    return left.view() == (right ? std::string_view(right) : std::string_view());
}

[[nodiscard]] inline bool notEqual(const CString& left, const CString& right) noexcept { return !equal(left, right); }
[[nodiscard]] inline bool notEqual(const CString& left, const char* right) noexcept { return !equal(left, right); }

/// Orders by unsigned bytes, whatever the locale; a prefix comes before longer strings.
[[nodiscard]] inline bool less(const CString& left, const CString& right) noexcept
{
    return left.view() < right.view();
}

} // namespace krString
