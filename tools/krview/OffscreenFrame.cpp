#include "OffscreenFrame.h"

#include "DisplayError.h"
#include "GlFeatures.h"
#include "Picture.h"

#include <string>

OffscreenFrame::OffscreenFrame(unsigned width, unsigned height)
    : fWidth(static_cast<GLsizei>(width)), fHeight(static_cast<GLsizei>(height))
{
    if (!hasFramebufferObjects())
        return;
    GLint samples = 0;
    glGetIntegerv(GL_SAMPLES, &samples);
    glGenRenderbuffers(kAttachments, fBuffers);
    glGenFramebuffers(1, &fResolved);
    glBindFramebuffer(GL_FRAMEBUFFER, fResolved);
    attach(kResolvedColours, GL_COLOR_ATTACHMENT0, GL_RGBA8, 0);
    glGenFramebuffers(1, &fDrawn);
    glBindFramebuffer(GL_FRAMEBUFFER, fDrawn);
    attach(kColours, GL_COLOR_ATTACHMENT0, GL_RGBA8, samples);
    attach(kDepths, GL_DEPTH_ATTACHMENT, GL_DEPTH_COMPONENT24, samples);
    if (glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE)
        return;
    release();
    throw DisplayError("the driver cannot draw a picture of " + std::to_string(width) + " by " +
                       std::to_string(height) + " pixels");
}

OffscreenFrame::~OffscreenFrame()
{
    if (fDrawn != 0)
        release();
}

void OffscreenFrame::release() noexcept
{
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glDeleteFramebuffers(1, &fDrawn);
    glDeleteFramebuffers(1, &fResolved);
    glDeleteRenderbuffers(kAttachments, fBuffers);
}

void OffscreenFrame::attach(Attachment which, GLenum point, GLenum format, GLsizei samples)
{
    glBindRenderbuffer(GL_RENDERBUFFER, fBuffers[which]);
    glRenderbufferStorageMultisample(GL_RENDERBUFFER, samples, format, fWidth, fHeight);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, point, GL_RENDERBUFFER, fBuffers[which]);
}

Ref<PixelArray2D> OffscreenFrame::read() const
{
    if (fDrawn != 0)
    {
        glBindFramebuffer(GL_DRAW_FRAMEBUFFER, fResolved);
        glBlitFramebuffer(0, 0, fWidth, fHeight, 0, 0, fWidth, fHeight, GL_COLOR_BUFFER_BIT, GL_NEAREST);
        glBindFramebuffer(GL_READ_FRAMEBUFFER, fResolved);
    }
    Ref<PixelArray2D> picture = newPicture(static_cast<unsigned>(fWidth), static_cast<unsigned>(fHeight));
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, fWidth, fHeight, GL_RGBA, GL_UNSIGNED_BYTE, picture->data());
    if (fDrawn != 0)
        glBindFramebuffer(GL_FRAMEBUFFER, fDrawn);
    return picture;
}
