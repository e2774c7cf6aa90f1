#pragma once
#include <krender/core/Ref.h>
#include <krender/pixels/PixelArray2D.h>

#include <epoxy/gl.h>

/// A frame drawn off the screen: while it lives, drawing goes into it and not into the window. So a picture has the size
/// that was asked for, whatever a window manager makes of the window and whatever covers it.
///
/// Drivers without framebuffer objects draw into the window's back buffer after all.
class OffscreenFrame
{
public:
    /// Takes as many samples a pixel as the window has, which is current. Throws a DisplayError.
    /// @param width, height  pixels, at least 1
    OffscreenFrame(unsigned width, unsigned height);
    OffscreenFrame(const OffscreenFrame&) = delete;
    OffscreenFrame& operator=(const OffscreenFrame&) = delete;
    /// Leads drawing back to the window.
    ~OffscreenFrame();

    /// What was drawn, in pictureFormat().
    [[nodiscard]] Ref<PixelArray2D> read() const;

private:
    enum Attachment
    {
        kColours,
        kDepths,
        kResolvedColours,
        kAttachments,
    };

    void release() noexcept;
    void attach(Attachment which, GLenum point, GLenum format, GLsizei samples);

    GLsizei fWidth;
    GLsizei fHeight;
    GLuint fDrawn = 0;    ///< the framebuffer object that is drawn into; 0 for the window
    GLuint fResolved = 0; ///< the same with one sample a pixel
    GLuint fBuffers[kAttachments] = {};
};
