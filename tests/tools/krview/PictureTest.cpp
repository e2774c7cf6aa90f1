#include "Image.h"
#include "Krview.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace
{

std::vector<std::string> namesIn(const std::string& directory, const std::string& extension)
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(directory))
        if (entry.path().extension() == extension)
            names.push_back(entry.path().stem().string());
    std::sort(names.begin(), names.end());
    return names;
}

std::string testName(const testing::TestParamInfo<std::string>& info)
{
    std::string name = info.param;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

/// Neither black nor blown out, and with something on it.
void expectGoodToLookAt(const Image& image)
{
    ASSERT_GT(image.width, 0U) << "no picture was made";
    const std::vector<double> brightness = image.brightness();
    const Spread spread = spreadOf(brightness);
    EXPECT_GT(spread.mean, 20);
    EXPECT_LT(spread.mean, 210);
    EXPECT_GT(spread.deviation, 12) << "it is flat";
    std::size_t speckles = 0; // pixels much darker than those beside them
    for (std::size_t i = 1; i + 1 < brightness.size(); ++i)
        speckles += brightness[i] < std::min(brightness[i - 1], brightness[i + 1]) - 40 ? 1 : 0;
    EXPECT_LT(speckles, brightness.size() / 250) << "NaN leaves black pixels";
}

class Scenes : public testing::TestWithParam<std::string>
{
};

TEST_P(Scenes, LookAsInTheirPictures)
{
    const Workplace place;
    const Outcome outcome = krview(place, KRENDER_SHARE "/scenes/" + GetParam() + ".json --screenshot picture.png");
    ASSERT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    const Image image = readImage(place.path() / "picture.png");
    const Image expected = readImage(KRENDER_PICTURES "/" + GetParam() + ".png");
    ASSERT_EQ(image.width, expected.width) << "the target update-pictures draws missing pictures";
    ASSERT_EQ(image.height, expected.height);
    // Another version of the driver changes the rounding and the smoothing of edges, which touches few pixels; a turned,
    // mirrored or differently lit object touches many.
    std::vector<double> differences;
    std::size_t far = 0;
    for (std::size_t i = 0; i < image.bytes.size(); ++i)
    {
        differences.push_back(std::abs(image.bytes[i] - expected.bytes[i]));
        far += differences.back() > 48 ? 1 : 0;
    }
    EXPECT_LT(spreadOf(differences).mean, 1.5);
    EXPECT_LT(static_cast<double>(far) / static_cast<double>(differences.size()), 0.015);
}

INSTANTIATE_TEST_SUITE_P(Shipped, Scenes, testing::ValuesIn(namesIn(KRENDER_SHARE "/scenes", ".json")), testName);

class Materials : public testing::TestWithParam<std::string>
{
};

// A material that is shown without any values must get ones that show it.
TEST_P(Materials, LookGoodByThemselves)
{
    const Workplace place;
    const Outcome outcome = krview(place, "--material " KRENDER_SHARE "/materials/" + GetParam() +
                                              ".krs --size 120x90 --screenshot picture.png");
    ASSERT_EQ(outcome.status, 0) << outcome.err;
    expectGoodToLookAt(readImage(place.path() / "picture.png"));
}

INSTANTIATE_TEST_SUITE_P(Shipped, Materials, testing::ValuesIn(namesIn(KRENDER_SHARE "/materials", ".krs")), testName);

} // namespace
