#pragma once

/// What krview draws with.
enum class GraphicsApi
{
    Gl21, ///< OpenGL 2.1, or a later version that has all of it
    Gl33, ///< the core profile of OpenGL 3.3, or of a later version
};
