#include "CaseName.h"
#include "Program.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

namespace
{

constexpr std::size_t kMegabyte = 1 << 20;

std::string repeated(std::string_view piece, std::size_t bytes)
{
    std::string text;
    text.reserve(bytes + piece.size());
    while (text.size() < bytes)
        text += piece;
    return text;
}

struct Hostile
{
    const char* about;
    std::string source;
    int status;
    const char* message; ///< the first line holds it
};

} // namespace

class HostileSources : public testing::TestWithParam<Hostile>
{
};

// None of these may crash, hang or flood the screen; the run is ended when it takes too long.
TEST_P(HostileSources, GetAnAnswer)
{
    const Workplace place;
    place.write("x.krs", GetParam().source);
    const Outcome outcome = place.krslc({"check", "x.krs"});
    EXPECT_EQ(outcome.status, GetParam().status);
    EXPECT_NE(outcome.err.substr(0, outcome.err.find('\n')).find(GetParam().message), std::string::npos)
        << outcome.err.substr(0, 1000);
    EXPECT_LT(outcome.err.size(), kMegabyte);
    for (const char* command : {"tokens", "specs"})
        EXPECT_LT(place.krslc({command, "x.krs"}, {.standardOutput = "/dev/null"}).status, 2) << command;
}

INSTANTIATE_TEST_SUITE_P(
    All, HostileSources,
    testing::Values(
        Hostile{"a name of a megabyte", "float " + std::string(kMegabyte, 'n') + "(float a);\n", 0, ""},
        Hostile{"a type of a megabyte", std::string(kMegabyte, 'n') + " f(float a);\n", 1,
                "x.krs:1:1: error: Unrecognized"},
        Hostile{"zero bytes", std::string(kMegabyte, '\0'), 1, "1:1: error: no \";\" or \"{\" ends this header"},
        Hostile{"all bytes",
                []
                {
                    std::string text;
                    for (unsigned i = 0; i < kMegabyte; ++i)
                        text += static_cast<char>(i * 7 + i / 251);
                    return text;
                }(),
                1, "1:1: error: Unrecognized return data type or shader type: \\x00"},
        Hostile{"half a million empty statements", "float f(float a) {" + std::string(kMegabyte / 2, ';') + "}\n", 1,
                "1:19: error: empty statement"},
        Hostile{"blocks within blocks", "float f(float a) {" + std::string(kMegabyte, '{'), 1,
                "1:5018: error: statements are nested more than 5000 deep"},
        Hostile{"ifs within ifs", "float f(float a) {" + repeated("if(a)", kMegabyte), 1, "nested more than 5000 deep"},
        Hostile{"the deepest blocks", "float f(float a) " + repeated("{", 5000) + "x = a;" + repeated("}", 5000) + "\n",
                0, ""},
        Hostile{"loops within loops", "float f(float a) {" + repeated("for(", kMegabyte) + ";}\n", 0, ""},
        Hostile{"arguments without end", "float f(" + repeated("float a,", kMegabyte) + ");\n", 1, "ends this header"},
        Hostile{"carried comments", repeated("// a // b\n", kMegabyte), 1, "1:1: error: this comment does not end"},
        Hostile{"quotes", "float f(float a) {" + std::string(kMegabyte, '"'), 1, "1:19: error: the source ends"},
        Hostile{"elses", "float f(float a) {" + repeated("else ", 10000) + "x = 1; }\n", 0, "else-without-if"},
        Hostile{"carriage returns", "float f(float a)\r\n{\r\n\tx = 1;\r\n}\r\n", 0, ""}),
    CaseName());

TEST(LargeSources, AreReadInBoundedMemory)
{
    const Workplace place;
    const auto peakOf = [&place](std::size_t megabytes)
    {
        place.write(
            "x.krs",
            repeated("float3 f(uniform float3 a, vertex float2 b)\n{\n    float x = a.x * 2.0 + b.y;\n    if (x > "
                     "1.0) { c = x; } else c = 0.5;\n    illuminance { c += dot(a, b) * 0.25; }\n}\n",
                     megabytes * kMegabyte));
        // A build with the address sanitizer would keep what has been freed.
        const Outcome outcome =
            place.krslc({"check", "x.krs"}, {.environment = {{"ASAN_OPTIONS", "quarantine_size_mb=1"}}});
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        return outcome.peakKilobytes;
    };
    const std::size_t small = peakOf(2);
    const std::size_t large = peakOf(12);
    EXPECT_LT(large - small, std::size_t{5} * 10 * 1024); // five bytes a byte of source
}

TEST(LargeSources, OfTwoGigabytesAreRefusedUnread)
{
    const Workplace place;
    place.write("x.krs", "float f(float a);\n");
    std::filesystem::resize_file(place.path() / "x.krs", std::uintmax_t{2} << 30); // without taking room on the disk
    for (const char* command : {"check", "tokens", "specs"})
    {
        const Outcome outcome = place.krslc({command, "x.krs"});
        EXPECT_EQ(outcome.status, 2) << command;
        EXPECT_EQ(outcome.err, "krslc: error: cannot read 'x.krs': it is not smaller than 2 GiB\n");
    }
}

TEST(Sources, ThatCannotBeOpenedGetTheReason)
{
    const Workplace place;
    place.write("x.krs", "float f(float a);\n");
    ::chmod((place.path() / "x.krs").c_str(), 0);
    const Outcome outcome = place.krslc({"check", "x.krs"}, {.boundByModes = true});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.err, "krslc: error: cannot read 'x.krs': Permission denied\n");
}
