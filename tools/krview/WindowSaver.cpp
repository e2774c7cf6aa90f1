#include "WindowSaver.h"

#include "FileNames.h"

#include <krview/picture/Picture.h>
#include <krview/scene/InputError.h>
#include <krview/scene/OptionsText.h>

#include <common/MessageOutput.h>
#include <common/PrintedMessage.h>

#include <cstdio>
#include <exception>

void WindowSaver::savePicture(const std::function<Ref<PixelArray2D>()>& draw)
{
    attempt(
        [&]
        {
            const std::string path = freeFileName(".png");
            writePng(path, *draw());
            tell(path);
        });
}

std::string WindowSaver::saveScene(const Scene& scene)
{
    std::string saved;
    attempt(
        [&]
        {
            const std::string path = fSource.fileToSave();
            const std::string options = fSource.save(scene, path);
            tell(path, options.empty() ? "" : ", which needs " + options);
            saved = path;
        });
    return saved;
}

void WindowSaver::copyOptions(const Scene& scene)
{
    attempt(
        [&]
        {
            const OptionsText options = optionsText(scene);
            fWindow.clipboard().copy(options.text);
            std::string note = "copied the options";
            for (const std::string& key : options.leftOut)
                note += (&key == &options.leftOut.front() ? ", without " : ", ") + key;
            fTitle.showNote(note + (options.leftOut.empty() ? "" : ": save the scene to keep all of it"));
        });
}

void WindowSaver::attempt(const std::function<void()>& work)
{
    try
    {
        work();
    }
    catch (const InputError& error)
    {
        error.print(krTools::standardMessages());
        fTitle.showNote(error.what());
    }
    catch (const std::exception& error)
    {
        krTools::printError("krview", error.what());
        fTitle.showNote(error.what());
    }
}

/// @param rest  what else is to be known of the file
void WindowSaver::tell(const std::string& path, const std::string& rest)
{
    std::printf("krview: saved %s%s\n", path.c_str(), rest.c_str());
    std::fflush(stdout);
    fTitle.showNote("saved " + path + rest);
}
