#pragma once
#include "InputRows.h"
#include "LightChoices.h"
#include "SceneEditor.h"
#include "SettingsRows.h"

#include <krview/stage/Stage.h>
#include <krview/stage/View.h>

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

/// The panel beside the picture: all that can be set in a scene.
class Panel
{
public:
    /// What the panel has done by somebody else.
    struct Actions
    {
        std::function<void()> save;
        std::function<void()> copy; ///< as options
    };

    /// All is borrowed.
    Panel(SceneEditor& editor, View& view, const Stage& stage, Actions actions);

    /// Builds it at the right edge of the window; where that is narrower than the panel, it scrolls.
    /// @param width, height  of the window, pixels
    void build(float width, float height);
    /// The stage has a new scene.
    void refresh();

private:
    void buildButtons();
    void buildSubject();
    void buildLights();
    void buildLight(const std::vector<krTools::LightName>& all, std::size_t index);
    void buildNewLight(const std::vector<krTools::LightName>& all);
    void remove(const std::string& key);
    /// The lights, to be changed.
    [[nodiscard]] std::vector<krTools::LightName>& lights(const std::string& step);

    SceneEditor& fEditor;
    const Stage& fStage;
    Actions fActions;
    InputRows fRows;
    SettingsRows fSettings;
    std::vector<InputRows::Subject> fSubjects;
    std::size_t fSubject = 0;
    std::vector<LightChoice> fLightChoices; ///< while the list is open
};
