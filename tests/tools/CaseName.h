#pragma once
#include <gtest/gtest.h>

#include <cctype>
#include <string>
#include <string_view>

/// Names the cases of a table for ctest: what a row is about, as one word.
struct CaseName
{
    template <class Row>
    std::string operator()(const testing::TestParamInfo<Row>& test) const
    {
        std::string name;
        bool startsWord = true;
        for (const char c : std::string_view(test.param.about))
        {
            const auto byte = static_cast<unsigned char>(c);
            if (std::isalnum(byte) != 0)
                name += static_cast<char>(startsWord ? std::toupper(byte) : c);
            startsWord = std::isalnum(byte) == 0;
        }
        return name;
    }
};
