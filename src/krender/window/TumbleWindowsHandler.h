#pragma once
#include <krender/platform/Linear.h>
#include <krender/window/MessageHandler.h>

#include <cstdint>

/// A handler that keeps the view matrix of a tumbling view: the scene is turned about its origin and looked at from a
/// distance. A viewer derives from it to turn drags of the mouse into angles, distance and translation.
class KRENDER_EXPORT TumbleWindowsHandler : public MessageHandler
{
public:
    TumbleWindowsHandler();
    ~TumbleWindowsHandler() override;

    /// True from the beginning, and again after a move, a resize or a change of the view, until markDrawn().
    [[nodiscard]] bool needsRefresh() const override;
    void windowMoved() override;
    /// Stores the size, each side at least 8 pixels, so that an aspect ratio can always be formed from it.
    void resize(int width, int height) override;
    /// Does nothing: what a drag means is up to the viewer.
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
    /// translation, pushed back by the distance, turned about z, x and y in this order, and given to the base matrix.
    /// Computed anew only after a change; valid until the next call.
    [[nodiscard]] const krLinear::AffineMatrix& viewMatrix();

    /// Turns the view.
    /// @param x, y, z  rotations about the axes, degrees
    void setAngles(float x, float y, float z);
    /// How far the scene's origin lies in front of the eye; 10 at first.
    void setDistance(float distance);
    /// Moves the scene, in its own space.
    void setTranslation(const krLinear::Vector& translation);
    /// What the view is built on; the identity at first.
    void setBaseMatrix(const krLinear::AffineMatrix& base);
    /// Clears the marks of a refresh and of a resize; to be called when the picture has been drawn.
    void markDrawn() noexcept;

protected:
    /// The state of a drag of the mouse, for derived handlers; nothing here reads it.
    struct Drag
    {
        std::int32_t button = 0;
        std::int32_t startX = 0, startY = 0; ///< where it began, pixels
        std::int32_t lastX = 0, lastY = 0;   ///< where it was seen last, pixels
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
