#include "SceneWriter.h"

#include "SceneFile.h"
#include "SceneText.h"
#include "TextEdit.h"

#include <common/OutputFiles.h>
#include <common/Source.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string_view>
#include <system_error>

namespace fs = std::filesystem;

using Json = Key::Json;

namespace
{

std::string folderOf(const std::string& path) { return fs::path(path).parent_path().string(); }

/// The text of the scene's file; nothing when there is none.
std::optional<SceneText> textOf(const Scene& scene)
{
    std::error_code failure;
    if (scene.file.empty() || !fs::exists(scene.file, failure))
        return std::nullopt;
    return readSceneText(scene.file);
}

/// What readers drop at the beginning of a file.
std::string byteOrderMarkOf(const std::string& path)
{
    constexpr std::string_view kMark = "\xef\xbb\xbf";
    std::array<char, kMark.size()> begin{};
    std::ifstream(path, std::ios::binary).read(begin.data(), begin.size());
    return std::string_view(begin.data(), begin.size()) == kMark ? std::string(kMark) : "";
}

} // namespace

void saveScene(const Scene& scene, const std::string& path)
{
    const std::optional<SceneText> old = textOf(scene);
    const SceneFile before = old ? readSceneFile(*old) : SceneFile();
    const Json after = writtenScene(sceneFileOf(scene, before), folderOf(path));
    const std::string text =
        old ? editedText(*old, writtenScene(before, folderOf(scene.file)), after) : freshText(after);
    // No file is left behind that cannot be read.
    const SceneText saved = readSceneText(std::make_shared<const krTools::Source>(path, text));
    (void)sceneOf(readSceneFile(saved), saved);
    krTools::OutputFiles files;
    files.add(path, (old ? byteOrderMarkOf(scene.file) : "") + text);
    files.publish();
}
