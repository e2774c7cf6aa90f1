#pragma once
#include <common/SourceReader.h>

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

/// Whether the parser comes to an end on a source: the programs' scan knows, and is tried along with it.
inline bool isSafe(const krTools::Source& source)
{
    krTools::Findings findings;
    return krTools::SourceReader(source, findings).scan();
}
