#pragma once
#include <krender/Export.h>
#include <krender/platform/Linear.h>
#include <krender/window/MessageHandler.h>

#include <cstdint>

/// Keeps the view matrix of a tumbling view: the scene turns about its origin and is seen from a distance. A viewer
/// derives from it and turns mouse drags into angles, distance and translation.
class KRENDER_EXPORT TumbleWindowsHandler : public MessageHandler
{
public:
    TumbleWindowsHandler();
    ~TumbleWindowsHandler() override;

    /// True at first, and again after a move, a resize or a change of the view, until markDrawn().
    [[nodiscard]] bool needsRefresh() const override;
    void windowMoved() override;
    /// Stores the size in pixels. A side of less than 8 is stored as 8, so that an aspect ratio can always be formed.
    void resize(int width, int height) override;
    /// Does nothing: the viewer decides what a drag means.
    void mouseButton(int, int, int, int) override;

    /// Pixels; 0 until the first resize().
    [[nodiscard]] std::int32_t width() const noexcept { return fWidth; }
    [[nodiscard]] std::int32_t height() const noexcept { return fHeight; }
    /// Whether resize() was called since the last markDrawn().
    [[nodiscard]] bool isResized() const noexcept { return fResized; }
    /// Degrees.
    [[nodiscard]] float angleX() const noexcept { return fAngleX; }
    [[nodiscard]] float angleY() const noexcept { return fAngleY; }
    [[nodiscard]] float angleZ() const noexcept { return fAngleZ; }
    [[nodiscard]] float distance() const noexcept { return fDistance; }
    [[nodiscard]] const krLinear::Vector& translation() const noexcept { return fTranslation; }
    [[nodiscard]] const krLinear::AffineMatrix& baseMatrix() const noexcept { return fBaseMatrix; }

    /// The map from the scene to the eye, which looks down its negative z axis. A point of the scene is moved by the
    /// translation, pushed back along the eye's z axis by the distance, turned about z, x and y in this order, and
    /// multiplied by the base matrix. An angle counts as angle / 57.29 radians, which is not quite a degree. Computed
    /// only after a change; the reference lives as long as the handler.
    [[nodiscard]] const krLinear::AffineMatrix& viewMatrix();

    /// @param x, y, z  rotations about the axes, degrees
    void setAngles(float x, float y, float z);
    /// How far the scene's origin lies in front of the eye, in units of the scene; 10 at first.
    void setDistance(float distance);
    /// Moves the scene, in its own space.
    void setTranslation(const krLinear::Vector& translation);
    /// The matrix that the view is built on; the identity at first.
    void setBaseMatrix(const krLinear::AffineMatrix& base);
    /// Makes needsRefresh() and isResized() false; to be called when the picture has been drawn.
    void markDrawn() noexcept;

protected:
    /// The state of a mouse drag, for derived handlers; nothing here reads it.
    struct Drag
    {
        std::int32_t button = 0;
        std::int32_t startX = 0, startY = 0; ///< where it began, pixels
        std::int32_t lastX = 0, lastY = 0;   ///< where it was last, pixels
        bool turning = false;
        bool moving = false;
        float startAngleX = 0.0f, startAngleY = 0.0f, startAngleZ = 0.0f;
        float startDistance = 10.0f;
    };
    Drag fDrag;

private:
    void viewChanged() noexcept;

    std::int32_t fWidth = 0;
    std::int32_t fHeight = 0;
    bool fResized = false;
    float fAngleX = 0.0f;
    float fAngleY = 0.0f;
    float fAngleZ = 0.0f;
    float fDistance = 10.0f;
    krLinear::Vector fTranslation;
    krLinear::AffineMatrix fViewMatrix;
    krLinear::AffineMatrix fBaseMatrix;
    bool fMatrixDirty = true;
    bool fRefreshNeeded = true;
};
