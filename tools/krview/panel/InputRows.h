#pragma once
#include "FileChooser.h"
#include "SceneEditor.h"

#include <krview/material/InputForm.h>
#include <krview/stage/Stage.h>

#include <cstddef>
#include <map>
#include <string>
#include <vector>

/// The rows of the panel for the inputs of materials and lights.
class InputRows
{
public:
    /// A surface whose inputs are shown: a part of an object of the stage, or all of its parts that have no look of their
    /// own.
    struct Subject
    {
        std::size_t object = 0;
        std::size_t surface = 0; ///< of the object
        std::string part;        ///< empty: all parts that have no look of their own
    };

    /// All is borrowed.
    InputRows(SceneEditor& editor, const Stage& stage);

    /// Builds the rows of the material's inputs, or of a light's, page by page.
    /// @param light  the key; empty for the material
    void build(const Subject& subject, const std::string& light);
    /// Takes the values of these inputs back.
    void resetAll(const Subject& subject, const std::string& light);
    /// Forgets the materials, whose interfaces may be others now.
    void forget() { fForms.clear(); }

private:
    [[nodiscard]] const Surface& surfaceOf(const Subject& subject) const;
    [[nodiscard]] const std::vector<InputForm>& forms(const Subject& subject);
    [[nodiscard]] const InputValue* value(const Subject& subject, const std::string& name) const;
    [[nodiscard]] std::vector<double> numbers(const Subject& subject, const InputForm& form) const;

    void buildRow(const Subject& subject, const InputForm& form);
    bool buildNumbers(const InputForm& form, std::vector<double>& numbers) const;
    void buildPicture(const Subject& subject, const InputForm& form);
    void buildStream(const Subject& subject, const InputForm& form);
    void set(const Subject& subject, const InputForm& form, InputValue value);
    void reset(const Subject& subject, const InputForm& form, const std::string& step);

    SceneEditor& fEditor;
    const Stage& fStage;
    FileChooser fPictures;
    std::map<const Material*, std::vector<InputForm>> fForms;
};
