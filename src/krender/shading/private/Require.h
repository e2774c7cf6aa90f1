#pragma once
#include <krender/core/Exception.h>
#include <krender/platform/String.h>

namespace krShadingDag
{

/// verifyAlways for checks that are made all the time: the message is built only when it is needed.
inline void require(bool condition, const char* message)
{
    if (!condition) [[unlikely]]
        verifyAlways(false, message);
}

/// The same with a piece of the source appended to the message.
inline void require(bool condition, const char* message, const krString::CString& culprit)
{
    if (!condition) [[unlikely]]
        verifyAlways(false, krString::plus(message, culprit));
}

} // namespace krShadingDag
