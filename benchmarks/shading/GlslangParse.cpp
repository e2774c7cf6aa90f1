#include "Peers.h"

#include <glslang/Public/ResourceLimits.h>
#include <glslang/Public/ShaderLang.h>

#include <array>

bool parseWithGlslang(const std::string& source)
{
    static const bool initialised = glslang::InitializeProcess();
    glslang::TShader shader(EShLangFragment);
    const std::array<const char*, 3> texts{"#version 120\n", source.c_str(),
                                           "void main() { gl_FragColor = vec4(0.0); }\n"};
    shader.setStrings(texts.data(), texts.size());
    return initialised && shader.parse(GetDefaultResources(), 120, false, EShMsgDefault);
}
