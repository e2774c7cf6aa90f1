#include <krview/panel/SceneEditor.h>

#include <gtest/gtest.h>

namespace
{

using Change = SceneEditor::Change;

Scene turned(float yaw)
{
    Scene scene;
    scene.yaw = yaw;
    return scene;
}

/// Has a scene that was turned from 0 to 1 and to 2, which is shown.
class SceneEditing : public testing::Test
{
protected:
    SceneEditing()
    {
        fEditor.take(turned(0));
        for (const float yaw : {1.0F, 2.0F})
            turn(yaw);
    }
    void turn(float yaw)
    {
        fEditor.change("yaw", Change::Values).yaw = yaw;
        fEditor.endStep();
        fEditor.accept();
    }
    float yaw() { return fEditor.scene().yaw; }

    SceneEditor fEditor;
};

TEST_F(SceneEditing, ASteBackThatCannotBeShownIsNotTaken)
{
    fEditor.undo();
    fEditor.reject(turned(2));
    EXPECT_EQ(yaw(), 2);
    EXPECT_FALSE(fEditor.canRedo());
    EXPECT_EQ(fEditor.takeChange(), Change::None);
    fEditor.undo();
    EXPECT_EQ(yaw(), 1);
}

TEST_F(SceneEditing, AChangeThatCannotBeShownIsForgotten)
{
    fEditor.change("material", Change::All).yaw = 3;
    fEditor.change("axes", Change::Values).yaw = 4;
    fEditor.reject(turned(2));
    EXPECT_EQ(yaw(), 2);
    fEditor.undo();
    EXPECT_EQ(yaw(), 1);
}

TEST_F(SceneEditing, ADragThatComesToWhatCannotBeShownCanBeTakenBack)
{
    fEditor.change("yaw", Change::Values).yaw = 3;
    fEditor.accept();
    fEditor.change("yaw", Change::Values).yaw = 4;
    fEditor.reject(turned(3));
    EXPECT_EQ(yaw(), 3);
    fEditor.undo();
    EXPECT_EQ(yaw(), 2);
}

TEST_F(SceneEditing, WhatIsReadFromFilesIsAStep)
{
    fEditor.take(turned(9));
    fEditor.reject(turned(9));
    EXPECT_EQ(yaw(), 9);
    fEditor.undo();
    EXPECT_EQ(yaw(), 2);
    EXPECT_EQ(fEditor.takeChange(), Change::All);
}

TEST_F(SceneEditing, WhatIsSavedStaysSaved)
{
    fEditor.markSaved("new.json");
    fEditor.undo();
    EXPECT_EQ(fEditor.scene().file, "new.json");
    fEditor.reject(turned(2));
    EXPECT_EQ(fEditor.scene().file, "new.json");
}

} // namespace
