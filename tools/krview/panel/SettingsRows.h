#pragma once
#include "FileChooser.h"
#include "SceneEditor.h"

#include <krview/stage/Stage.h>
#include <krview/stage/View.h>

#include <cstddef>
#include <string>

/// Builds the head of a part of the panel.
/// @param detail    beside its name, may be empty
/// @param isAtFirst  whether it is open at first
/// @return  whether it is open
bool buildSection(const char* name, const std::string& detail, bool isAtFirst);

/// The rows of the panel for what is in the scene beside materials and lights, and how it is seen.
class SettingsRows
{
public:
    /// All is borrowed.
    SettingsRows(SceneEditor& editor, View& view, const Stage& stage);

    /// @param object  the one whose shape is shown
    void build(std::size_t object);

private:
    using Change = SceneEditor::Change;

    void buildObject(std::size_t object);
    void buildShape(std::size_t object);
    void buildScene();
    void buildEnvironment();
    void buildView();

    /// Shows a row with a widget for what a copy of the scene holds, and takes its change over.
    /// @param widget  says whether it has changed the scene that it is given
    template <class Widget>
    void row(const char* label, Change change, Widget widget);

    SceneEditor& fEditor;
    View& fView;
    const Stage& fStage;
    FileChooser fMaterials;
    FileChooser fMeshes;
    FileChooser fSurroundings;
};
