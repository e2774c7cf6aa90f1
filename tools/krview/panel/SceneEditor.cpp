#include "SceneEditor.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace
{

constexpr std::size_t kMostSteps = 200;

} // namespace

void SceneEditor::take(const Scene& scene)
{
    if (fHasScene)
        begin("what the files say", Change::All);
    fHasScene = true;
    fStepIsOpen = false;
    fScene = scene;
    accept();
}

Scene& SceneEditor::change(const std::string& what, Change change)
{
    if (!fStepIsOpen || fUndone.empty() || fUndone.back().what != what)
        begin(what, change);
    fUndone.back().change = std::max(fUndone.back().change, change);
    fStepIsOpen = true;
    note(change);
    return fScene;
}

void SceneEditor::begin(const std::string& what, Change change)
{
    if (fUndone.size() == kMostSteps)
        fUndone.erase(fUndone.begin());
    fUndone.push_back({fScene, change, what});
    fRedone.clear();
    ++fPosition;
}

void SceneEditor::note(Change change) { fChange = std::max(fChange, change); }

SceneEditor::Change SceneEditor::takeChange() { return std::exchange(fChange, Change::None); }

void SceneEditor::reject(const Scene& shown)
{
    while (fPosition < fShown && canRedo())
        redo();
    for (; fPosition > fShown && canUndo(); --fPosition)
        fUndone.pop_back();
    fShown = fPosition;
    replace(shown);
    fChange = Change::None;
}

void SceneEditor::undo()
{
    fPosition -= canUndo() ? 1 : 0;
    step(fUndone, fRedone);
}

void SceneEditor::redo()
{
    fPosition += canRedo() ? 1 : 0;
    step(fRedone, fUndone);
}

void SceneEditor::step(Steps& from, Steps& to)
{
    if (from.empty())
        return;
    Step back = std::move(from.back());
    from.pop_back();
    to.push_back({fScene, back.change, back.what});
    replace(std::move(back.scene));
    note(back.change);
}

/// What was saved stays saved.
void SceneEditor::replace(Scene scene)
{
    std::string file = std::move(fScene.file);
    fScene = std::move(scene);
    fScene.file = std::move(file);
    fStepIsOpen = false;
}
