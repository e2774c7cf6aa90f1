#include "ReaderLimits.h"

#include <sys/prctl.h>
#include <sys/resource.h>

#include <algorithm>
#include <csignal>

namespace
{

// Sanitizers reserve more addresses than there is memory.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool kBoundsMemory = false;
#elif defined(__has_feature)
constexpr bool kBoundsMemory = !__has_feature(address_sanitizer);
#else
constexpr bool kBoundsMemory = true;
#endif

// An OBJ file of 105 MB with a million triangles takes half a second and five times its bytes.
constexpr rlim_t kBaseSeconds = 3;
constexpr rlim_t kMostSeconds = 60;
constexpr rlim_t kBytesPerSecond = rlim_t{4} << 20;
constexpr rlim_t kBaseBytes = rlim_t{512} << 20;
constexpr rlim_t kMostBytes = rlim_t{4} << 30;
constexpr rlim_t kBytesPerByte = 40;

rlim_t gFileBytes = 0; ///< of all files so far

/// Sets a limit, or as much of it as this process may have.
/// @param hard  how far the soft one may be raised later; at least as much
void setLimit(__rlimit_resource resource, rlim_t soft, rlim_t hard)
{
    rlimit limit{};
    ::getrlimit(resource, &limit);
    limit.rlim_max = std::min(limit.rlim_max, hard);
    limit.rlim_cur = std::min(limit.rlim_max, soft);
    ::setrlimit(resource, &limit);
}

void boundByFiles()
{
    setLimit(RLIMIT_CPU, std::min(kBaseSeconds + gFileBytes / kBytesPerSecond, kMostSeconds), kMostSeconds);
    if (kBoundsMemory)
        setLimit(RLIMIT_AS, std::min(kBaseBytes + gFileBytes * kBytesPerByte, kMostBytes), kMostBytes);
}

} // namespace

void limitReader()
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    setLimit(RLIMIT_CORE, 0, 0);
    setLimit(RLIMIT_FSIZE, 0, 0);
    boundByFiles();
}

void allowReading(std::size_t fileBytes)
{
    gFileBytes += fileBytes;
    boundByFiles();
}
