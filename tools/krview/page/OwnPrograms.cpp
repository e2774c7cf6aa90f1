#include "OwnPrograms.h"

#include <nlohmann/json.hpp>

#include <string>

using nlohmann::ordered_json;

namespace
{

// What all programs have at the beginning of their block.
constexpr const char* kFrameBlock = R"(#version 300 es
layout(std140) uniform kr_Uniforms
{
    mat4 kr_ModelViewProjectionMatrix;
    mat4 objToWorldMatrix;
    mat4 objToWorldMatrix_invtrans;
    vec4 gEyePos;
} kr;
)";
constexpr int kFrameBlockBytes = 208;

constexpr const char* kFlatVertex = R"(layout(location = 0) in vec3 place;
layout(location = 1) in vec3 color;
out vec3 shade;
void main()
{
    shade = color;
)";
constexpr const char* kOnScreen = "    gl_Position = vec4(place, 1);\n}\n";
constexpr const char* kInScene = "    gl_Position = kr.kr_ModelViewProjectionMatrix * vec4(place, 1);\n}\n";

constexpr const char* kFragment = R"(#version 300 es
precision highp float;
vec3 coded(vec3 c) { return mix(12.92 * c, 1.055 * pow(c, vec3(1.0 / 2.4)) - 0.055, step(0.0031308, c)); }
vec3 decoded(vec3 c) { return mix(c / 12.92, pow((c + 0.055) / 1.055, vec3(2.4)), step(0.04045, c)); }
vec3 kept(vec3 c) { return c; }
out vec4 result;
)";

// Always behind everything else.
constexpr const char* kSkyVertex = R"(layout(location = 0) in vec3 direction;
out vec3 towards;
void main()
{
    towards = direction;
    gl_Position = (kr.kr_ModelViewProjectionMatrix * vec4(kr.gEyePos.xyz + direction, 1)).xyww;
}
)";

constexpr const char* kShowingVertex = R"(#version 300 es
void main() { gl_Position = vec4(vec2(gl_VertexID & 1, gl_VertexID >> 1) * 4.0 - 1.0, 0, 1); }
)";

ordered_json programOf(const std::string& vertex, const std::string& fragment, const ordered_json& interface)
{
    return {{"vertex", vertex}, {"fragment", kFragment + fragment}, {"interface", interface}};
}

ordered_json frameInterface(const ordered_json& uniforms)
{
    const auto matrix = [](const char* name, int offset) {
        return ordered_json{{"programName", name}, {"type", "matrix4"}, {"offset", offset}, {"matrixStride", 16}};
    };
    return {{"uniforms", uniforms},
            {"block", {{"name", "kr_Uniforms"}, {"size", kFrameBlockBytes}}},
            {"frameUniforms",
             {matrix("kr_ModelViewProjectionMatrix", 0),
              {{"programName", "gEyePos"}, {"type", "float4"}, {"offset", 192}, {"matrixStride", nullptr}}}}};
}

} // namespace

ordered_json flatProgram(bool isOnScreen, bool decodes)
{
    return programOf(std::string(kFrameBlock) + kFlatVertex + (isOnScreen ? kOnScreen : kInScene),
                     std::string("in vec3 shade;\nvoid main() { result = vec4(") + (decodes ? "decoded" : "kept") +
                         "(shade), 1); }\n",
                     frameInterface(ordered_json::array()));
}

ordered_json skyProgram(bool codes)
{
    return programOf(std::string(kFrameBlock) + kSkyVertex,
                     std::string("in vec3 towards;\nuniform samplerCube sky;\nvoid main() { result = vec4(") +
                         (codes ? "coded" : "kept") + "(texture(sky, towards).rgb), 1); }\n",
                     frameInterface(ordered_json::array({{{"programName", "sky"}, {"type", "samplerCube"}}})));
}

ordered_json showingProgram(bool codes)
{
    return programOf(kShowingVertex,
                     std::string("uniform highp sampler2D frame;\nvoid main() { result = vec4(") +
                         (codes ? "coded" : "kept") + "(texelFetch(frame, ivec2(gl_FragCoord.xy), 0).rgb), 1); }\n",
                     {{"uniforms", ordered_json::array()}, {"block", nullptr}});
}
