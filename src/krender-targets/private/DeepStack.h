#pragma once
#include <functional>

namespace krTargets
{

/// Does some work on a stack of its own, which is large: glslang and SPIRV-Cross call themselves for each level and each
/// term of an expression, and a host's thread may have little room. What the work throws comes out.
void onDeepStack(const std::function<void()>& work);

} // namespace krTargets
