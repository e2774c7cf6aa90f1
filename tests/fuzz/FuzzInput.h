#pragma once
#include <krender/shading/ShadingParser.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

/// The entry point that libFuzzer calls.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

inline krString::CString textOf(const std::uint8_t* data, std::size_t size)
{
    return krString::CString(std::string_view(reinterpret_cast<const char*>(data), size));
}

/// What must hold for every input; the fuzzer reports an abort with the input.
inline void require(bool condition, const char* what)
{
    if (condition)
        return;
    std::fprintf(stderr, "failed: %s\n", what);
    std::abort();
}
