#pragma once
#include "SceneSource.h"
#include "WindowTitle.h"

#include <krview/gl/GlWindow.h>

#include <krender/core/Ref.h>
#include <krender/pixels/PixelArray2D.h>

#include <functional>
#include <string>

/// Saves and copies what a window shows, and tells the user in its title where it is. What fails is told too, and nothing
/// else comes of it.
class WindowSaver
{
public:
    /// All is borrowed.
    WindowSaver(GlWindow& window, WindowTitle& title, SceneSource& source)
        : fWindow(window), fTitle(title), fSource(source)
    {
    }

    /// Saves a picture in a new file.
    /// @param draw  gives it
    void savePicture(const std::function<Ref<PixelArray2D>()>& draw);
    /// Saves the scene in its file, or in a new one.
    /// @return  the file; empty for none
    std::string saveScene(const Scene& scene);
    /// Copies the scene as options.
    void copyOptions(const Scene& scene);

private:
    void attempt(const std::function<void()>& work);
    void tell(const std::string& path, const std::string& rest = "");

    GlWindow& fWindow;
    WindowTitle& fTitle;
    SceneSource& fSource;
};
