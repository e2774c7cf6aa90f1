#include "Picture.h"
#include "PictureReaders.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace
{

constexpr std::size_t kMostPixels = std::size_t{32} << 20; // which are 512 MB

/// Reads a file from its beginning.
class Bytes
{
public:
    explicit Bytes(std::string_view bytes) : fBytes(bytes) {}

    [[nodiscard]] std::size_t left() const noexcept { return fBytes.size(); }

    std::string_view take(std::size_t count)
    {
        if (count > fBytes.size())
            throw PictureError("it ends in the midst of the picture");
        const std::string_view taken = fBytes.substr(0, count);
        fBytes.remove_prefix(count);
        return taken;
    }

    /// Takes a line and its end, which it returns without.
    std::string_view takeLine()
    {
        const std::size_t end = fBytes.find('\n');
        if (end == std::string_view::npos)
            throw PictureError("its header has no end");
        std::string_view line = take(end + 1);
        line.remove_suffix(1);
        if (line.ends_with('\r'))
            line.remove_suffix(1);
        return line;
    }

    [[nodiscard]] std::string_view ahead(std::size_t count) const noexcept { return fBytes.substr(0, count); }

private:
    std::string_view fBytes;
};

struct Layout
{
    std::size_t width = 0;
    std::size_t height = 0;
    bool isUpward = false; ///< whether the lowest row comes first
};

/// Takes a word and the blanks behind it.
std::string_view takeWord(std::string_view& line)
{
    const std::size_t end = std::min(line.find(' '), line.size());
    const std::string_view word = line.substr(0, end);
    line.remove_prefix(std::min(line.find_first_not_of(' ', end), line.size()));
    return word;
}

Layout layoutOf(std::string_view line)
{
    Layout layout;
    const std::string_view down = takeWord(line);
    const std::string_view height = takeWord(line);
    const std::string_view across = takeWord(line);
    const std::string_view width = takeWord(line);
    layout.isUpward = down == "+Y";
    if ((down != "-Y" && down != "+Y") || across != "+X" || !line.empty())
        throw PictureError("its pixels stand in an unusual order; \"-Y HEIGHT +X WIDTH\" is read");
    for (const auto& [text, number] : {std::pair{height, &layout.height}, std::pair{width, &layout.width}})
    {
        const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), *number);
        if (failure != std::errc() || end != text.data() + text.size())
            throw PictureError("its header gives no size");
    }
    checkSize(layout.width, layout.height);
    if (layout.width * layout.height > kMostPixels)
        throw PictureError("it has more pixels than 8192 times 4096");
    return layout;
}

/// Takes the header.
Layout takeHeader(Bytes& bytes)
{
    bytes.takeLine(); // the signature
    for (std::string_view line = bytes.takeLine(); !line.empty(); line = bytes.takeLine())
        if (line.starts_with("FORMAT=") && line != "FORMAT=32-bit_rle_rgbe")
            throw PictureError("its pixels are of another format than 32-bit_rle_rgbe");
    return layoutOf(bytes.takeLine());
}

/// Three mantissas and the exponent that they share.
using Rgbe = std::array<std::uint8_t, 4>;

/// Whether a row comes in runs, component by component. Its first four bytes then hold its width.
bool isInRuns(const Bytes& bytes, std::size_t width)
{
    const std::string_view head = bytes.ahead(4);
    return width >= 8 && width < 0x8000 && head.size() == 4 && head[0] == 2 && head[1] == 2 && (head[2] & 0x80) == 0;
}

void takeRuns(Bytes& bytes, std::vector<Rgbe>& row)
{
    const std::string_view head = bytes.take(4);
    if ((static_cast<std::size_t>(head[2]) << 8 | static_cast<unsigned char>(head[3])) != row.size())
        throw PictureError("a row of it has another width");
    for (std::size_t component = 0; component < 4; ++component)
        for (std::size_t x = 0; x < row.size();)
        {
            constexpr unsigned kRun = 128; // more than this: the next byte is repeated
            const auto count = static_cast<unsigned char>(bytes.take(1)[0]);
            const std::size_t length = count > kRun ? count - kRun : count;
            if (length == 0 || length > row.size() - x)
                throw PictureError("a run of it does not fit into its row");
            const std::string_view values = bytes.take(count > kRun ? 1 : length);
            for (std::size_t i = 0; i < length; ++i, ++x)
                row[x][component] = static_cast<std::uint8_t>(values[count > kRun ? 0 : i]);
        }
}

/// Takes a row of whole pixels. A pixel of three ones repeats the one ahead; several of them in a row are the digits of
/// how often, the lowest first.
void takePixels(Bytes& bytes, std::vector<Rgbe>& row)
{
    unsigned shift = 0;
    for (std::size_t x = 0; x < row.size();)
    {
        const std::string_view taken = bytes.take(4);
        Rgbe pixel;
        std::copy(taken.begin(), taken.end(), pixel.begin());
        if (pixel[0] != 1 || pixel[1] != 1 || pixel[2] != 1)
        {
            row[x++] = pixel;
            shift = 0;
            continue;
        }
        const std::size_t length = std::size_t{pixel[3]} << shift;
        if (x == 0 || shift > 16 || length > row.size() - x)
            throw PictureError("a run of it does not fit into its row");
        std::fill_n(row.begin() + static_cast<std::ptrdiff_t>(x), length, row[x - 1]);
        x += length;
        shift += 8;
    }
}

/// The factors of the mantissas by exponent. A finite sum of many pixels is worth more than light beyond a billion.
std::array<float, 256> factors()
{
    constexpr int kBias = 128 + 8;
    constexpr float kMost = 1e9f / 255;
    std::array<float, 256> result{}; // exponent 0 stands for black
    for (int i = 1; i < 256; ++i)
        result[static_cast<std::size_t>(i)] = std::min(std::ldexp(1.0f, i - kBias), kMost);
    return result;
}

} // namespace

Ref<PixelArray2D> decodeHdr(std::string_view file)
{
    static const std::array<float, 256> kFactors = factors();
    Bytes bytes(file);
    const Layout layout = takeHeader(bytes);
    // The longest run of a component has 127 pixels and takes two bytes.
    const std::size_t leastRow = isInRuns(bytes, layout.width) ? 4 + 8 * ((layout.width + 126) / 127) : 4;
    if (layout.height * leastRow > bytes.left())
        throw PictureError("it has fewer bytes than its pixels need");
    Ref<PixelArray2D> picture =
        newLightPicture(static_cast<unsigned>(layout.width), static_cast<unsigned>(layout.height));
    std::vector<Rgbe> row(layout.width);
    for (std::size_t y = 0; y < layout.height; ++y)
    {
        if (isInRuns(bytes, layout.width))
            takeRuns(bytes, row);
        else
            takePixels(bytes, row);
        float* pixel =
            static_cast<float*>(picture->data()) + 4 * layout.width * (layout.isUpward ? y : layout.height - 1 - y);
        for (const Rgbe& coded : row)
        {
            const float factor = kFactors[coded[3]];
            for (std::size_t i = 0; i < 3; ++i)
                *pixel++ = factor * static_cast<float>(coded[i]);
            *pixel++ = 1;
        }
    }
    return picture;
}
