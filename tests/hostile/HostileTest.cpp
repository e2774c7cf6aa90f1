// Whatever the input, the answer is a message and a status, in little time and memory.
#include "Attacks.h"

#include <gtest/gtest.h>

class Attacks : public testing::TestWithParam<Attack>
{
};

TEST_P(Attacks, GetAnAnswer)
{
    const Attack& attack = GetParam();
    const Workplace place;
    attack.prepare(place);
    const bool isKrview = attack.arguments.front() == "krview";
    const std::vector<std::string> arguments(attack.arguments.begin() + (isKrview ? 1 : 0), attack.arguments.end());
    // The limit of the address space only ends what would take the machine along; what counts is the memory used.
    Circumstances limits{.secondsLimit = attack.seconds * (kIsSanitized ? 10 : 1)};
    if (!kIsSanitized)
        limits.addressLimit = std::size_t{6} << 30;
    const Outcome outcome = place.run(isKrview ? KRVIEW_PROGRAM : KRSLC_PROGRAM, arguments, limits);
    EXPECT_EQ(outcome.status, attack.status);
    EXPECT_NE(outcome.err.find(attack.message), std::string::npos) << outcome.err.substr(0, 1000);
    EXPECT_LT(outcome.err.size(), std::size_t{1} << 20);
    EXPECT_EQ(outcome.err.find('\033'), std::string::npos);
    if (!kIsSanitized)
    {
        EXPECT_LT(outcome.peakKilobytes, std::size_t{attack.megabytes} << 10);
    }
}

constexpr auto kNameOf = [](const auto& given) { return std::string(given.param.name); };
INSTANTIATE_TEST_SUITE_P(Krslc, Attacks, testing::ValuesIn(krslcAttacks()), kNameOf);
INSTANTIATE_TEST_SUITE_P(Krview, Attacks, testing::ValuesIn(krviewAttacks()), kNameOf);
#ifdef KRVIEW_HAS_ASSIMP
INSTANTIATE_TEST_SUITE_P(Meshes, Attacks, testing::ValuesIn(meshAttacks()), kNameOf);
#endif
