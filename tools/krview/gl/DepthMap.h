#pragma once
#include <epoxy/gl.h>

/// A square texture of depths that a light's view is drawn into and that shadow samplers compare with. Needs framebuffer
/// objects.
class DepthMap
{
public:
    /// Throws a DisplayError.
    /// @param size  pixels on each side
    explicit DepthMap(unsigned size);
    DepthMap(const DepthMap&) = delete;
    DepthMap& operator=(const DepthMap&) = delete;
    ~DepthMap();

    [[nodiscard]] unsigned size() const noexcept { return static_cast<unsigned>(fSize); }
    /// Binds the texture to the active unit.
    void bind() const { glBindTexture(GL_TEXTURE_2D, fTexture); }

    /// Leads drawing into a map, which it clears, while it lives.
    class Drawing
    {
    public:
        explicit Drawing(const DepthMap& map);
        Drawing(const Drawing&) = delete;
        Drawing& operator=(const Drawing&) = delete;
        ~Drawing();

    private:
        GLint fFramebuffer = 0; ///< what was drawn into before
        GLint fViewport[4] = {};
    };

private:
    GLsizei fSize;
    GLuint fTexture = 0;
    GLuint fFramebuffer = 0;
};
