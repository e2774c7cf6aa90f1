// Any bytes as full KRSL. A record separator (0x1e) begins a file that can be included: #include "1" and so on.
#include "FrontendFuzz.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::vector<std::string> parts(1);
    for (std::size_t i = 0; i < size; ++i)
        if (data[i] == 0x1e && parts.size() < 8)
            parts.emplace_back();
        else
            parts.back() += static_cast<char>(data[i]);
    frontendFuzz::readAndCompile(std::move(parts));
    return 0;
}
