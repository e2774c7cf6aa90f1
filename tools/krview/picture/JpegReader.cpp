#include "Picture.h"
#include "PictureReaders.h"

#include <turbojpeg.h>

#include <memory>
#include <string>

namespace
{

/// What the segments of a JPEG file tell.
struct Claims
{
    std::size_t scans = 0;
    std::size_t codedBytes = 0; ///< of all scans
    bool isWhole = false;       ///< whether the mark of the end was found
    bool isUsual = true;        ///< whether it is coded in a way that cameras and painting programs use
};

enum Marker : unsigned char
{
    kStandalone = 0x01,
    kFirstFrame = 0xc0,
    kLastUsualFrame = 0xc2, // baseline, extended, progressive
    kHuffmanTable = 0xc4,
    kReserved = 0xc8,
    kArithmeticTable = 0xcc,
    kLastFrame = 0xcf,
    kFirstRestart = 0xd0,
    kLastRestart = 0xd7,
    kStart = 0xd8,
    kEnd = 0xd9,
    kScan = 0xda,
    kFill = 0xff,
};

bool isRestart(unsigned char marker) { return marker >= kFirstRestart && marker <= kLastRestart; }

bool isUnusualFrame(unsigned char marker)
{
    return marker > kLastUsualFrame && marker <= kLastFrame && marker != kHuffmanTable && marker != kReserved &&
           marker != kArithmeticTable;
}

/// Walks over the segments up to the end of the picture.
Claims claimsOf(std::string_view bytes)
{
    Claims claims;
    const auto byteAt = [&](std::size_t at) { return static_cast<unsigned char>(bytes[at]); };
    std::size_t at = 0;
    while (true)
    {
        // Markers stand behind one or more bytes 0xff; decoders pass over what stands ahead of those.
        at = bytes.find(static_cast<char>(kFill), at);
        while (at < bytes.size() && byteAt(at) == kFill)
            ++at;
        if (at >= bytes.size())
            return claims;
        const unsigned char marker = byteAt(at++);
        if (marker == kEnd)
        {
            claims.isWhole = true;
            return claims;
        }
        if (marker <= kStandalone || marker == kStart || isRestart(marker))
            continue;
        if (bytes.size() - at < 2)
            return claims;
        if (isUnusualFrame(marker))
            claims.isUsual = false;
        at += static_cast<std::size_t>(byteAt(at)) << 8 | byteAt(at + 1);
        if (marker != kScan)
            continue;
        ++claims.scans;
        // In coded data a byte 0xff is followed by 0, or by the marker of a restart.
        const std::size_t begin = at;
        for (; at + 1 < bytes.size(); ++at)
        {
            at = bytes.find(static_cast<char>(kFill), at);
            if (at == std::string_view::npos || at + 1 >= bytes.size())
                return claims;
            const unsigned char next = byteAt(at + 1);
            if (next != 0 && next != kFill && !isRestart(next))
                break;
        }
        claims.codedBytes += at > begin ? at - begin : 0;
    }
}

void check(const Claims& claims, std::size_t width, std::size_t height)
{
    constexpr std::size_t kBlockSide = 8;  // pixels; a block takes a bit at least
    constexpr std::size_t kMostScans = 64; // each takes as long as the whole picture
    checkSize(width, height);
    if (!claims.isUsual)
        throw PictureError("it is a JPEG of a kind that few programs read");
    if (!claims.isWhole)
        throw PictureError("it ends in the midst of the picture");
    if (claims.scans > kMostScans)
        throw PictureError("it comes in more than " + std::to_string(kMostScans) + " passes");
    if (width / kBlockSide * (height / kBlockSide) / 8 > claims.codedBytes)
        throw PictureError("it has fewer bytes than its pixels need");
}

} // namespace

Ref<PixelArray2D> decodeJpeg(std::string_view bytes)
{
    const std::unique_ptr<void, int (*)(tjhandle)> decoder(tjInitDecompress(), tjDestroy);
    if (!decoder)
        throw PictureError(tjGetErrorStr2(nullptr));
    const auto* const data = reinterpret_cast<const unsigned char*>(bytes.data());
    int width = 0;
    int height = 0;
    int sampling = 0;
    int colours = 0;
    // A warning is about a picture that is there; other programs show it too.
    const auto isFailure = [&](int result) { return result != 0 && tjGetErrorCode(decoder.get()) != TJERR_WARNING; };
    if (isFailure(tjDecompressHeader3(decoder.get(), data, bytes.size(), &width, &height, &sampling, &colours)))
        throw PictureError(tjGetErrorStr2(decoder.get()));
    check(claimsOf(bytes), static_cast<std::size_t>(width), static_cast<std::size_t>(height));
    if (colours == TJCS_CMYK || colours == TJCS_YCCK)
        throw PictureError("its colours are those of a print (CMYK) and not red, green and blue");
    Ref<PixelArray2D> picture = newPicture(static_cast<unsigned>(width), static_cast<unsigned>(height));
    auto* const pixels = static_cast<unsigned char*>(picture->data());
    if (isFailure(tjDecompress2(decoder.get(), data, bytes.size(), pixels, width, 0, height, TJPF_RGBA,
                                TJFLAG_BOTTOMUP | TJFLAG_ACCURATEDCT)))
        throw PictureError(tjGetErrorStr2(decoder.get()));
    return picture;
}
