#include "ObjectKeys.h"

#include <common/PrintedMessage.h>
#include <common/Words.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <map>
#include <string>
#include <utility>

using krTools::inQuotes;

namespace
{

Key partsKey(std::map<std::string, Look>& parts)
{
    return {"parts",
            [&parts](const SceneValue& all)
            {
                all.forEachMember(
                    [&](const std::string& name, const SceneValue& part)
                    {
                        parts[name].origin = part.place();
                        readKeys(part, partKeys(parts[name]));
                        if (parts.size() > kMostListed)
                            all.fail("more than 1000 parts");
                    });
            },
            [&parts](const std::string& folder)
            {
                Key::Json all;
                Look blank;
                for (auto& [name, look] : parts)
                    if (Key::Json part = writtenKeys(partKeys(look), partKeys(blank), folder); !part.empty())
                        all[name] = std::move(part);
                return all;
            }};
}

/// A number for all directions or three of them.
Key scaleKey(std::array<double, 3>& scale)
{
    constexpr double kLeast = 1e-6;
    constexpr double kGreatest = 1e6;
    const Key triple = tripleKey("scale", scale);
    return {"scale",
            [&scale, triple](const SceneValue& value)
            {
                if (!value.isList())
                    return scale.fill(value.number(kLeast, kGreatest));
                triple.read(value);
                if (*std::min_element(scale.begin(), scale.end()) < kLeast)
                    value.fail("numbers above 0 are wanted here");
            },
            [triple](const std::string& folder)
            {
                Key::Json numbers = triple.write(folder);
                return numbers[0] == numbers[1] && numbers[0] == numbers[2] ? numbers[0] : numbers;
            }};
}

std::string nameAt(std::size_t index) { return "object" + std::to_string(index + 1); }

/// Whether an object is fitted that does not say so: a mesh stands where its file puts it.
bool isFittedUnlessSaid(const SceneObject& object) { return object.mesh.empty(); }

void settle(const SceneValue& value, std::vector<SceneObject>& objects)
{
    SceneObject& object = objects.back();
    if (!value.has("fit"))
        object.isFitted = isFittedUnlessSaid(object);
    if (object.name.empty())
        object.name = nameAt(objects.size() - 1);
    if (!krTools::isName(object.name))
        value.fail("the name " + inQuotes(object.name) + " is wanted to be of letters, digits and _");
    if (std::count_if(objects.begin(), objects.end(),
                      [&](const SceneObject& other) { return other.name == object.name; }) > 1)
        value.fail("another object has the name " + inQuotes(object.name));
}

} // namespace

Keys partKeys(Look& look)
{
    return {materialKey("material", look.material), inputsKey("inputs", look.inputs),
            truthKey("transparent", look.isTransparent)};
}

Keys shapeKeys(SceneObject& object)
{
    return {materialKey("material", object.look.material),
            choiceKey("shape", object.shape, kShapeNames),
            fileKey("mesh", object.mesh),
            truthKey("smooth", object.isSmooth),
            wholeNumberKey("fineness", object.fineness, kLeastFineness, kGreatestFineness),
            wholeNumberKey("particles", object.particles, 1, kMostParticles),
            truthKey("transparent", object.look.isTransparent),
            partsKey(object.parts)};
}

Keys objectKeys(SceneObject& object)
{
    Keys keys{textKey("name", object.name)};
    for (Key& key : shapeKeys(object))
        keys.push_back(std::move(key));
    for (Key& key : Keys{inputsKey("inputs", object.look.inputs), tripleKey("position", object.position),
                         tripleKey("rotation", object.rotation), scaleKey(object.scale),
                         truthKey("fit", object.isFitted), truthKey("castsShadow", object.castsShadow)})
        keys.push_back(std::move(key));
    return keys;
}

Key objectsKey(std::optional<std::vector<SceneObject>>& objects)
{
    const auto blankOf = [](const SceneObject& object, std::size_t index)
    {
        SceneObject blank;
        blank.name = nameAt(index);
        blank.isFitted = isFittedUnlessSaid(object);
        return blank;
    };
    const Key list = listKey("objects", objects, objectKeys, settle, blankOf);
    const auto read = [&objects, list](const SceneValue& value)
    {
        list.read(value);
        if (objects->empty())
            value.fail("an object is wanted");
    };
    return {list.name, read, list.write};
}
