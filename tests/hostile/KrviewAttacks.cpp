#include "Attacks.h"

#include <array>

namespace
{

/// Appends a number of four bytes, the highest first.
void append(std::string& bytes, std::size_t number)
{
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes += static_cast<char>(number >> shift & 0xff);
}

/// A chunk of a PNG file; nobody gets as far as its checksum.
std::string chunk(std::size_t length, const std::string& name, const std::string& data)
{
    std::string bytes;
    append(bytes, length);
    bytes += name + data;
    append(bytes, 0);
    return bytes;
}

/// A scene whose material shows a picture.
void writePicture(const Workplace& place, const std::string& bytes)
{
    place.write("p.png", bytes);
    place.write("m.krs", "material m(uniform sampler2D t, out float4 outRGBA)\n"
                         "{ outRGBA = texture2D(t, float2(0.5, 0.5)); }\n");
    place.write("s.json", R"({"material": "m.krs", "inputs": {"t": "p.png"}})");
}

/// Likewise of a PNG file of 8-bit RGBA.
void writePng(const Workplace& place, std::size_t width, std::size_t height, const std::string& chunks)
{
    std::string header;
    append(header, width);
    append(header, height);
    header += std::string("\x08\x06\0\0\0", 5);
    writePicture(place, "\x89PNG\r\n\x1a\n" + chunk(header.size(), "IHDR", header) + chunks + chunk(0, "IEND", ""));
}

/// The begin of a grey JPEG file.
/// @param side  pixels; four hexadecimal digits as two bytes
std::string jpeg(const std::string& side, const std::string& scans)
{
    return "\xff\xd8\xff\xc2" + std::string("\0\x0b\x08", 3) + side + side + std::string("\x01\x01\x11\0", 4) + scans;
}

/// One pass over the pixels, without any of them.
const std::string kScan("\xff\xda\0\x08\x01\x01\0\0\0\0", 10);

std::string hdr(const char* size, const std::string& rows)
{
    return std::string("#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n") + size + "\n" + rows;
}

/// A scene of the material with further members.
void writeScene(const Workplace& place, const std::string& members)
{
    writeMaterial(place, "");
    place.write("s.json", "{\"material\": \"m.krs\",\n" + members + "}");
}

void writeLights(const Workplace& place)
{
    std::string lights = pieces(400, R"({"key": "k@x", "function": "pointLight"},)");
    lights.pop_back();
    writeScene(place, std::string("\"lights\": [") + lights + "]");
    writeMaterial(place, "illuminance { outRGBA.rgb += gLightDiffuseColor; }\n");
}

const std::vector<std::string> kScene{"krview", "s.json", "--frames", "1"};
const std::vector<std::string> kPlain{"krview", "--plain", "--material", "m.krs", "--frames", "1"};

} // namespace

std::vector<Attack> krviewAttacks()
{
    return {
        {"NameOfAMegabyte",
         [](const Workplace& p) { writeMaterial(p, std::string(1 << 20, 'q') + ";\n"); },
         {"krview", "--material", "m.krs"},
         1,
         "a name has more than 1024 bytes"},
        {"LongNamePlain", [](const Workplace& p) { writeMaterial(p, std::string(1000000, 'q') + ";\n"); }, kPlain, 1,
         "<fragment program>:43:1: error: the driver rejects it: `qqq"},
        {"EndlessExpressionPlain",
         [](const Workplace& p) { writeMaterial(p, std::string("outRGBA.r = u") + pieces(200000, " + u") + ";\n"); },
         kPlain, 1, "an expression of more than 10000 operators"},
        {"LongestExpressionPlain",
         [](const Workplace& p) { writeMaterial(p, std::string("outRGBA.r = u") + pieces(9990, " + u") + ";\n"); },
         kPlain, 0, ""},
        {"FarLinePlain", [](const Workplace& p) { writeMaterial(p, "#line 2147483000\noutRGBA.r = u;\n"); }, kPlain, 1,
         "error: a line of the preprocessor"},
        {"UnknownNamesPlain", [](const Workplace& p) { writeMaterial(p, pieces(5000, "outRGBA.r += q@;\n")); }, kPlain,
         1, "4900 more messages of the driver are not shown"},
        {"ManyLights", writeLights, {"krview", "s.json", "--frames", "1", "--size", "32x32"}, 0, "", 400, 60},
        // Scenes
        {"SceneWithoutEnd", [](const Workplace&) {}, {"krview", "/dev/zero"}, 2, "it has more than 1 MB"},
        {"DeepScene", [](const Workplace& p) { p.write("s.json", std::string(1000000, '[')); }, kScene, 1,
         "s.json:1:65: error: lists and objects stand more than 64 deep"},
        {"DenseScene",
         [](const Workplace& p) { writeScene(p, std::string("\"inputs\": {\"u\": [") + pieces(500000, "1,") + "1]}"); },
         kScene, 1, "s.json:2:17: error: inputs.u: \"u\" is of type float and wants a number", 300},
        {"NumberOfManyDigits",
         [](const Workplace& p) { writeScene(p, std::string("\"grid\": ") + std::string(300, '9')); }, kScene, 1,
         "s.json:2:9: error: "},
        {"NumberPastEveryType", [](const Workplace& p) { writeScene(p, "\"grid\": 18446744073709551616"); }, kScene, 1,
         "s.json:2:9: error: grid: a whole number is wanted here, and not 1.8446744073709552e+19"},
        {"BrokenText", [](const Workplace& p) { writeScene(p, "\"shape\": \"\xff\""); }, kScene, 1,
         "s.json:2:11: error: "},
        {"MemberTwice", [](const Workplace& p) { writeScene(p, "\"grid\": 1,\n \"grid\": 2"); }, kScene, 1,
         "s.json:3:2: error: grid: this is given twice"},
        {"HugeWindow", [](const Workplace& p) { writeScene(p, "\"size\": [8193, 8]"); }, kScene, 1,
         "s.json:2:10: error: size[0]: a number from 8.0 to 8192.0"},
        {"WindowOfManyPixels", [](const Workplace& p) { writeScene(p, "\"size\": [8192, 8192], \"samples\": 64"); },
         kScene, 0, ""},
        // Outputs
        {"EndlessTurn",
         [](const Workplace& p) { writeScene(p, "\"grid\": 1"); },
         {"krview", "s.json", "--turntable", "4294967296", "t"},
         2,
         "--turntable 4294967296: a number of pictures is wanted, from 1 to 100000"},
        {"TurnIntoAFile",
         [](const Workplace& p) { writeScene(p, "\"grid\": 1"); },
         {"krview", "s.json", "--turntable", "2", "m.krs"},
         2,
         "cannot make the folder 'm.krs': "},
        {"TurnWhereNobodyWrites",
         [](const Workplace& p) { writeScene(p, "\"grid\": 1"); },
         {"krview", "s.json", "--turntable", "2", "/proc/turn"},
         2,
         "cannot make the folder '/proc/turn': "},
        {"ComparedWithABrokenPicture",
         [](const Workplace& p) { writePng(p, 8192, 8192, chunk(1, "IDAT", "x")); },
         {"krview", "--compare", "p.png"},
         2,
         "it has fewer bytes than its pixels need"},
        {"ComparedWithWhatNeverEnds", [](const Workplace&) {}, {"krview", "--compare", "/dev/zero"}, 2, "/dev/zero"},
        // Pictures
        {"PngOfManyPixels", [](const Workplace& p) { writePng(p, 16384, 16384, ""); }, kScene, 2,
         "more in all than 8192 times 8192"},
        {"PngWithoutItsPixels", [](const Workplace& p) { writePng(p, 8192, 8192, chunk(1, "IDAT", "x")); }, kScene, 2,
         "it has fewer bytes than its pixels need"},
        {"LongChunk", [](const Workplace& p) { writePng(p, 16, 16, chunk(0x7ffffff0, "zTXt", "x")); }, kScene, 2,
         "a part of it is said to be longer than the file"},
        {"LongPixels", [](const Workplace& p) { writePng(p, 16, 16, chunk(0xffffffff, "IDAT", "x")); }, kScene, 2,
         "a part of it is said to be longer than the file"},
        {"PngCutOff", [](const Workplace& p) { writePicture(p, "\x89PNG"); }, kScene, 2, "cannot read 'p.png': "},
        {"JpegOfManyPixels", [](const Workplace& p) { writePicture(p, jpeg("\xff\xdc", kScan + "\xff\xd9")); }, kScene,
         2, "more in all than 8192 times 8192"},
        {"JpegWithoutItsPixels",
         [](const Workplace& p) { writePicture(p, jpeg(std::string("\x20\0", 2), kScan + "\xff\xd9")); }, kScene, 2,
         "it has fewer bytes than its pixels need"},
        {"JpegCutOff", [](const Workplace& p) { writePicture(p, jpeg(std::string("\0\x10", 2), kScan + "xx")); },
         kScene, 2, "it ends in the midst of the picture"},
        {"JpegOfTablesAlone", [](const Workplace& p) { writePicture(p, "\xff\xd8\xff\xd9"); }, kScene, 2,
         "it has no pixels"},
        {"JpegOfManyPasses",
         [](const Workplace& p) { writePicture(p, jpeg(std::string("\0\x10", 2), pieces(65, kScan) + "\xff\xd9")); },
         kScene, 2, "it comes in more than 64 passes"},
        {"JpegOfNoTables",
         [](const Workplace& p) { writePicture(p, jpeg(std::string("\0\x10", 2), kScan + "xxxx\xff\xd9")); }, kScene, 2,
         "cannot read 'p.png': "},
        {"HdrOfManyPixels", [](const Workplace& p) { writePicture(p, hdr("-Y 8192 +X 4097", "")); }, kScene, 2,
         "it has more pixels than 8192 times 4096"},
        {"HdrOfPixelsBeyondNumbers",
         [](const Workplace& p) { writePicture(p, hdr("-Y 18446744073709551617 +X 1", "xxxx")); }, kScene, 2,
         "its header gives no size"},
        {"HdrWithoutItsPixels",
         [](const Workplace& p) { writePicture(p, hdr("-Y 4096 +X 8192", std::string("\2\2\x20\0", 4))); }, kScene, 2,
         "it has fewer bytes than its pixels need"},
        {"HdrCutOff",
         [](const Workplace& p)
         { writePicture(p, hdr("-Y 2 +X 8", std::string("\2\2\0\x08", 4) + std::string(20, 8))); },
         kScene, 2, "it ends in the midst of the picture"},
        {"HdrRunPastItsRow",
         [](const Workplace& p)
         { writePicture(p, hdr("-Y 1 +X 8", std::string("\2\2\0\x08", 4) + std::string(20, '\x89'))); },
         kScene, 2, "a run of it does not fit into its row"},
        {"HdrRunOfNothing",
         [](const Workplace& p)
         { writePicture(p, hdr("-Y 1 +X 8", std::string("\2\2\0\x08", 4) + std::string(20, 0))); },
         kScene, 2, "a run of it does not fit into its row"},
        {"HdrRunAheadOfPixels", [](const Workplace& p) { writePicture(p, hdr("-Y 1 +X 4", "\1\1\1\1")); }, kScene, 2,
         "a run of it does not fit into its row"},
        {"HdrHeaderWithoutEnd", [](const Workplace& p) { writePicture(p, "#?RADIANCE\n" + std::string(1 << 20, 'x')); },
         kScene, 2, "its header has no end"},
        {"PictureOfAnotherKind", [](const Workplace& p) { writePicture(p, "GIF89a"); }, kScene, 2,
         "it is neither PNG nor JPEG nor Radiance HDR"},
        {"EndlessPicture",
         [](const Workplace& p) { writePicture(p, ""); },
         {"krview", "s.json", "--set", "t=/dev/zero"},
         1,
         "there is no picture '/dev/zero'"},
    };
}
