#include "InputNames.h"

#include <krview/material/ResolvedInputs.h>
#include <krview/scene/InputError.h>

#include <common/PrintedMessage.h>

#include <krender/frontend/NearNames.h>

#include <algorithm>
#include <cstddef>
#include <string>

using krTools::inQuotes;

namespace
{

/// The inputs that values may be for.
struct Known
{
    std::vector<std::string> materials; ///< names, each once
    std::vector<const ProgramInput*> inputs;

    void add(const Material& material)
    {
        if (std::find(materials.begin(), materials.end(), material.name) == materials.end())
            materials.push_back(material.name);
        for (const ProgramInput& input : material.inputs)
            inputs.push_back(&input);
    }

    [[nodiscard]] std::vector<std::string> names() const
    {
        std::vector<std::string> names;
        for (const ProgramInput* input : inputs)
            names.push_back(input->name);
        return names;
    }
};

/// Calls `visit(values, known)` for all places of a scene that have values, with the inputs that they may be for.
template <class Scene, class Visit>
void forEachValues(Scene& scene, const std::vector<ObjectMaterials>& objects, Visit visit)
{
    Known all;
    for (std::size_t i = 0; i < objects.size(); ++i)
    {
        Known own;
        for (std::size_t part = 0; part < objects[i].materials.size(); ++part)
        {
            const Material& material = *objects[i].materials[part];
            own.add(material);
            all.add(material);
            const auto look = scene.objects[i].parts.find(objects[i].model->parts()[part].name);
            if (look == scene.objects[i].parts.end())
                continue;
            Known ofPart;
            ofPart.add(material);
            visit(look->second.inputs, ofPart);
        }
        visit(scene.objects[i].look.inputs, own);
    }
    visit(scene.inputs, all);
}

void check(const InputValues& values, const Known& known)
{
    const std::vector<std::string> names = known.names();
    for (const auto& [name, value] : values)
        if (!value.isOptional && std::find(names.begin(), names.end(), name) == names.end())
            throw InputError(value.origin, value.place + ": " +
                                               (known.materials.size() == 1
                                                    ? "neither the material " + inQuotes(known.materials.front()) +
                                                          " nor its lights have"
                                                    : "no material and no light of this scene has") +
                                               " an input " + inQuotes(name) + krFrontend::didYouMean(name, names));
}

} // namespace

void checkInputNames(const Scene& scene, const std::vector<ObjectMaterials>& objects)
{
    forEachValues(scene, objects, check);
}

void dropUnusedInputs(Scene& scene, const std::vector<ObjectMaterials>& objects)
{
    forEachValues(scene, objects,
                  [](InputValues& values, const Known& known)
                  {
                      std::erase_if(values,
                                    [&](const auto& named)
                                    {
                                        const auto& [name, value] = named;
                                        const auto takes = [&, &name = name, &value = value](const ProgramInput* input)
                                        { return input->name == name && suits(value, *input); };
                                        return value.isOptional &&
                                               std::none_of(known.inputs.begin(), known.inputs.end(), takes);
                                    });
                  });
}
