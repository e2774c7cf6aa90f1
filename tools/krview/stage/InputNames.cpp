#include "InputNames.h"

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
    std::vector<std::string> inputs;

    void add(const Material& material)
    {
        if (std::find(materials.begin(), materials.end(), material.name) == materials.end())
            materials.push_back(material.name);
        for (const ProgramInput& input : material.inputs)
            inputs.push_back(input.name);
    }
};

void check(const InputValues& values, const Known& known)
{
    for (const auto& [name, value] : values)
        if (!value.isFromPanel && std::find(known.inputs.begin(), known.inputs.end(), name) == known.inputs.end())
            throw InputError(
                value.origin,
                value.place + ": " +
                    (known.materials.size() == 1
                         ? "neither the material " + inQuotes(known.materials.front()) + " nor its lights have"
                         : "no material and no light of this scene has") +
                    " an input " + inQuotes(name) + krFrontend::didYouMean(name, known.inputs));
}

} // namespace

void checkInputNames(const Scene& scene, const std::vector<ObjectMaterials>& objects)
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
            check(look->second.inputs, ofPart);
        }
        check(scene.objects[i].look.inputs, own);
    }
    check(scene.inputs, all);
}
