#include "krender/frontend/private/BlockLayout.h"

#include "krender/frontend/private/Type.h"
#include <krender/frontend/Interface.h>
#include <krender/shadergen/VulkanGlslCompiler.h>
#include <krender/shading/DataType.h>

#include <string>

namespace krFrontend
{

int BlockLayout::place(const Type& type) noexcept
{
    constexpr int kNumber = 4; // bytes
    // A vector begins at a multiple of its size, three components at one of four; a matrix is a row of columns.
    const int unit = type.isMatrix() ? kRow : kNumber * (type.size == 3 ? 4 : type.size);
    const int begin = roundedUp(fEnd, unit);
    fEnd = begin + (type.isMatrix() ? kRow : kNumber) * type.size;
    return begin;
}

BlockLayout frameLayout() noexcept
{
    BlockLayout layout;
    for (const FrameValue& value : kFrameUniforms)
        (void)layout.place(typeOf(value.type));
    return layout;
}

void layOut(ProgramInterface& interface)
{
    UniformBlockInterface& block = interface.block;
    block.name = kUniformBlock;
    BlockLayout layout;
    for (const FrameValue& value : kFrameUniforms)
        block.frameUniforms.push_back({std::string(value.name), value.type, layout.place(typeOf(value.type)),
                                       BlockLayout::matrixStride(typeOf(value.type))});
    int binding = 0;
    for (UniformInterface& uniform : interface.uniforms)
    {
        if (isSampler(uniform.type))
        {
            uniform.binding = ++binding;
            continue;
        }
        uniform.offset = layout.place(typeOf(uniform.type));
        uniform.matrixStride = BlockLayout::matrixStride(typeOf(uniform.type));
    }
    block.size = layout.size();
    int location = 0;
    for (const FrameValue& value : kFrameInputs)
        block.frameInputs.push_back({std::string(value.name), value.type, location++});
    for (VertexInputInterface& input : interface.vertexInputs)
        input.location = location++;
}

} // namespace krFrontend
