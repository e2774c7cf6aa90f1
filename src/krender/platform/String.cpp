#include <krender/platform/String.h>

#include <utility>

namespace krString
{

CString plus(const CString& left, const CString& right)
{
    std::string text;
    text.reserve(left.view().size() + right.view().size());
    text.append(left.view()).append(right.view());
    return CString(std::move(text));
}

CString& plusEqual(CString& left, const CString& right)
{
    left.fText.append(right.fText);
    return left;
}

} // namespace krString
