#pragma once
#include <krender/Export.h>
#include <krender/platform/String.h>

#include <cstdint>

/// What kind of failure an Exception reports.
enum ExceptionType : std::int32_t
{
    kVerificationFailed = 0, ///< a failed verifyAlways, or a typed constant given an impossible component count
    kSourceEnded = 1,        ///< the tokenizer ran off the end of its source
};

/// The one exception type of the library, thrown by value. It derives from nothing, so it is caught by this type.
class KRENDER_EXPORT Exception
{
public:
    Exception(ExceptionType exceptionType, krString::CString exceptionMessage);

    ExceptionType type;
    krString::CString message;
};

/// Throws an Exception of type kVerificationFailed with the message unless the condition holds. Nothing is printed.
KRENDER_EXPORT void verifyAlways(bool condition, krString::CString message);
