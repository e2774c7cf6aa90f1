#include "Frame.h"

#include "DisplayError.h"
#include "GlFeatures.h"

#include <krview/picture/Picture.h>

#include <common/PrintedMessage.h>

#include <algorithm>
#include <string>

namespace
{

/// Says once that pictures do not look as they should.
void noteMissingCode()
{
    static bool isNoted = false;
    if (!isNoted)
        krTools::printNote("krview", "the driver has no frame buffer that codes sRGB: what is lit is shown too dark");
    isNoted = true;
}

/// The samples that the driver takes for a number of them.
GLsizei fittedSamples(unsigned wanted)
{
    GLint most = 0;
    glGetIntegerv(GL_MAX_SAMPLES, &most);
    return wanted <= 1 ? 0 : static_cast<GLsizei>(std::min(wanted, static_cast<unsigned>(most)));
}

} // namespace

Frame::Frame(const Format& format, unsigned partSide)
    : fFormat(format),
      fWidth(static_cast<GLsizei>(std::min(format.width, partSide))),
      fHeight(static_cast<GLsizei>(std::min(format.height, partSide))),
      fEncodes(format.encodes && hasFramebufferObjects() && hasSrgbFrames())
{
    if (format.encodes && !fEncodes)
        noteMissingCode();
    if (!hasFramebufferObjects())
        return;
    const GLsizei samples = fittedSamples(format.samples);
    const GLenum colours = fEncodes ? GL_SRGB8_ALPHA8 : GL_RGBA8;
    glGenRenderbuffers(kBuffers, fBuffers);
    glGenFramebuffers(1, &fResolved);
    glBindFramebuffer(GL_FRAMEBUFFER, fResolved);
    attach(kResolvedBuffer, GL_COLOR_ATTACHMENT0, colours, 0);
    glGenFramebuffers(1, &fDrawn);
    glBindFramebuffer(GL_FRAMEBUFFER, fDrawn);
    attach(kColourBuffer, GL_COLOR_ATTACHMENT0, colours, samples);
    attach(kDepthBuffer, GL_DEPTH_ATTACHMENT, GL_DEPTH_COMPONENT24, samples);
    if (glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE)
        return;
    release();
    throw DisplayError("the driver cannot draw a picture of " + std::to_string(format.width) + " by " +
                       std::to_string(format.height) + " pixels");
}

Frame::~Frame() { release(); }

void Frame::release() noexcept
{
    if (fDrawn == 0)
        return;
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glDeleteFramebuffers(1, &fDrawn);
    glDeleteFramebuffers(1, &fResolved);
    glDeleteRenderbuffers(kBuffers, fBuffers);
}

void Frame::attach(Attachment which, GLenum point, GLenum format, GLsizei samples)
{
    glBindRenderbuffer(GL_RENDERBUFFER, fBuffers[which]);
    glRenderbufferStorageMultisample(GL_RENDERBUFFER, samples, format, fWidth, fHeight);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, point, GL_RENDERBUFFER, fBuffers[which]);
}

void Frame::bind() const
{
    if (fDrawn != 0)
        glBindFramebuffer(GL_FRAMEBUFFER, fDrawn);
    // The whole frame, of which the buffer holds the part: so the parts fit together.
    glViewport(-fLeft, -fBottom, static_cast<GLsizei>(fFormat.width), static_cast<GLsizei>(fFormat.height));
}

void Frame::writeLight(bool isLight) const
{
    if (fEncodes)
        (isLight ? glEnable : glDisable)(GL_FRAMEBUFFER_SRGB);
}

void Frame::resolve() const
{
    glBindFramebuffer(GL_READ_FRAMEBUFFER, fDrawn);
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, fResolved);
    // The samples are mixed as light.
    writeLight(true);
    glBlitFramebuffer(0, 0, fWidth, fHeight, 0, 0, fWidth, fHeight, GL_COLOR_BUFFER_BIT, GL_NEAREST);
    writeLight(false);
    glBindFramebuffer(GL_READ_FRAMEBUFFER, fResolved);
}

void Frame::show() const
{
    if (fDrawn == 0)
        return;
    resolve();
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, 0);
    glBlitFramebuffer(0, 0, fWidth, fHeight, 0, 0, fWidth, fHeight, GL_COLOR_BUFFER_BIT, GL_NEAREST);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
}

Ref<PixelArray2D> Frame::picture(const std::function<void()>& draw)
{
    const auto width = static_cast<GLsizei>(fFormat.width);
    const auto height = static_cast<GLsizei>(fFormat.height);
    Ref<PixelArray2D> picture = newPicture(fFormat.width, fFormat.height);
    for (fBottom = 0; fBottom < height; fBottom += fHeight)
        for (fLeft = 0; fLeft < width; fLeft += fWidth)
        {
            bind();
            draw();
            if (fDrawn != 0)
                resolve();
            glPixelStorei(GL_PACK_ALIGNMENT, 1);
            glPixelStorei(GL_PACK_ROW_LENGTH, width);
            glPixelStorei(GL_PACK_SKIP_PIXELS, fLeft);
            glPixelStorei(GL_PACK_SKIP_ROWS, fBottom);
            glReadPixels(0, 0, std::min(fWidth, width - fLeft), std::min(fHeight, height - fBottom), GL_RGBA,
                         GL_UNSIGNED_BYTE, picture->data());
        }
    fLeft = fBottom = 0;
    return picture;
}
