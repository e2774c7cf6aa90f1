#include "DepthMap.h"

#include "DisplayError.h"

#include <initializer_list>

DepthMap::DepthMap(unsigned size) : fSize(static_cast<GLsizei>(size))
{
    glGenTextures(1, &fTexture);
    bind();
    glTexImage2D(GL_TEXTURE_2D, 0, GL_DEPTH_COMPONENT24, fSize, fSize, 0, GL_DEPTH_COMPONENT, GL_UNSIGNED_INT, nullptr);
    for (const GLenum axis : std::initializer_list<GLenum>{GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T})
        glTexParameteri(GL_TEXTURE_2D, axis, GL_CLAMP_TO_EDGE);
    // The comparison is made for four pixels, and the share of those that are lit is the answer.
    for (const GLenum filter : std::initializer_list<GLenum>{GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER})
        glTexParameteri(GL_TEXTURE_2D, filter, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_COMPARE_MODE, GL_COMPARE_R_TO_TEXTURE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_COMPARE_FUNC, GL_LEQUAL);

    GLint before = 0;
    glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &before);
    glGenFramebuffers(1, &fFramebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, fFramebuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_TEXTURE_2D, fTexture, 0);
    glDrawBuffer(GL_NONE);
    glReadBuffer(GL_NONE);
    const bool isComplete = glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
    glBindFramebuffer(GL_FRAMEBUFFER, static_cast<GLuint>(before));
    if (isComplete)
        return;
    glDeleteFramebuffers(1, &fFramebuffer);
    glDeleteTextures(1, &fTexture);
    throw DisplayError("the driver cannot draw a depth map");
}

DepthMap::~DepthMap()
{
    glDeleteFramebuffers(1, &fFramebuffer);
    glDeleteTextures(1, &fTexture);
}

DepthMap::Drawing::Drawing(const DepthMap& map)
{
    glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &fFramebuffer);
    glGetIntegerv(GL_VIEWPORT, fViewport);
    glBindFramebuffer(GL_FRAMEBUFFER, map.fFramebuffer);
    glViewport(0, 0, map.fSize, map.fSize);
    glClear(GL_DEPTH_BUFFER_BIT);
}

DepthMap::Drawing::~Drawing()
{
    glBindFramebuffer(GL_FRAMEBUFFER, static_cast<GLuint>(fFramebuffer));
    glViewport(fViewport[0], fViewport[1], fViewport[2], fViewport[3]);
}
