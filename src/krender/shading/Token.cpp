#include <krender/shading/Token.h>

#include <krender/platform/String.h>

#include <string>
#include <utility>

krString::CString toString(const std::vector<krShadingDag::Token>& tokens)
{
    std::string text;
    for (const krShadingDag::Token& token : tokens)
        text += token.text.view();
    return krString::CString(std::move(text));
}
