#pragma once
#include <krender/platform/String.h>

#include <cstdint>

/// What kind of failure an Exception reports.
enum ExceptionType : std::int32_t
{
    kVerificationFailed = 0, ///< a failed verifyAlways, or a typed constant given an impossible component count
    kSourceEnded = 1,        ///< the tokenizer ran off the end of its source
};

/// The one exception type of the library, thrown by value.
class KRENDER_EXPORT Exception
{
public:
    Exception(ExceptionType exceptionType, krString::CString exceptionMessage);

    ExceptionType type;
    krString::CString message;
};

/// Returns at once when the condition holds; otherwise throws an Exception of type kVerificationFailed that carries the
/// message. Nothing is printed.
KRENDER_EXPORT void verifyAlways(bool condition, krString::CString message);
