#pragma once
#include <krender/core/Ref.h>
#include <krender/pixels/PixelArray2D.h>

#include <epoxy/gl.h>

#include <functional>
#include <limits>

/// What the scene is drawn into, before it is shown in a window or saved as a picture: a buffer with several samples a
/// pixel that codes light as sRGB. So windows and pictures look the same whatever buffers a window has, and a picture has
/// the size that was asked for, whatever covers the window. A large picture is drawn in parts.
///
/// Drivers without framebuffer objects draw into the context's own buffer.
class Frame
{
public:
    struct Format
    {
        unsigned width = 0; ///< pixels, at least 1
        unsigned height = 0;
        unsigned samples = 0; ///< a pixel; as many as the driver has at most. 0 is the same as 1
        bool encodes = false; ///< whether light is coded

        [[nodiscard]] bool operator==(const Format&) const = default;
    };

    static constexpr unsigned kWhole = std::numeric_limits<unsigned>::max();
    /// The greatest side of a part of a picture that bounds what a driver needs, in pixels.
    static constexpr unsigned kPartSide = 2048;

    /// Throws a DisplayError.
    /// @param partSide  the greatest side of a part; kWhole for what goes into a window
    explicit Frame(const Format& format, unsigned partSide = kWhole);
    Frame(const Frame&) = delete;
    Frame& operator=(const Frame&) = delete;
    ~Frame();

    [[nodiscard]] const Format& format() const noexcept { return fFormat; }

    /// Leads drawing into the frame, also back into it after something else.
    void bind() const;
    /// Says what is written from now on: light, which the frame codes and blends as light, or colours that are to be
    /// shown as they are.
    void writeLight(bool isLight) const;

    /// Whether what was drawn stays until the next drawing.
    [[nodiscard]] bool keepsPicture() const noexcept { return fDrawn != 0; }
    /// Copies what was drawn into the window's back buffer and leads drawing there.
    void show() const;
    /// Makes a picture in pictureFormat().
    /// @param draw  draws the scene; called for each part
    [[nodiscard]] Ref<PixelArray2D> picture(const std::function<void()>& draw);

private:
    enum Attachment
    {
        kColourBuffer,
        kDepthBuffer,
        kResolvedBuffer,
        kBuffers,
    };

    void release() noexcept;
    void attach(Attachment which, GLenum point, GLenum format, GLsizei samples);
    /// Makes the pixels of the samples and leads reading to them.
    void resolve() const;

    Format fFormat;
    GLsizei fWidth; ///< of a part
    GLsizei fHeight;
    GLint fLeft = 0; ///< of the part in the frame
    GLint fBottom = 0;
    bool fEncodes = false; ///< whether the driver can
    GLuint fDrawn = 0;     ///< the framebuffer object that is drawn into; 0 for the context's own
    GLuint fResolved = 0;  ///< the same with one sample a pixel
    GLuint fBuffers[kBuffers] = {};
};
