#include <krender/core/Exception.h>

#include <krender/platform/String.h>

#include <utility>

Exception::Exception(ExceptionType exceptionType, krString::CString exceptionMessage)
    : type(exceptionType), message(std::move(exceptionMessage))
{
}

void verifyAlways(bool condition, krString::CString message)
{
    if (!condition)
        throw Exception(kVerificationFailed, std::move(message));
}
