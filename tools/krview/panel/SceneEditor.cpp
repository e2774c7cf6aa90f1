#include "SceneEditor.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace
{

constexpr std::size_t kMostSteps = 200;

} // namespace

Scene& SceneEditor::change(const std::string& what, Change change)
{
    if (!fStepIsOpen || fUndone.empty() || fUndone.back().what != what)
    {
        if (fUndone.size() == kMostSteps)
            fUndone.erase(fUndone.begin());
        fUndone.push_back({fScene, change, what});
        fRedone.clear();
    }
    fUndone.back().change = std::max(fUndone.back().change, change);
    fStepIsOpen = true;
    note(change);
    return fScene;
}

void SceneEditor::note(Change change) { fChange = std::max(fChange, change); }

SceneEditor::Change SceneEditor::takeChange() { return std::exchange(fChange, Change::None); }

void SceneEditor::reject(const Scene& shown)
{
    fScene = shown;
    if (!fUndone.empty())
        fUndone.pop_back();
    fStepIsOpen = false;
}

void SceneEditor::step(Steps& from, Steps& to)
{
    if (from.empty())
        return;
    Step back = std::move(from.back());
    from.pop_back();
    to.push_back({fScene, back.change, back.what});
    std::string file = std::move(fScene.file); // what was saved stays saved
    fScene = std::move(back.scene);
    fScene.file = std::move(file);
    fStepIsOpen = false;
    note(back.change);
}
