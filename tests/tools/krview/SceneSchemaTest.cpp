#include "WorkingFolder.h"

#include <krview/scene/InputError.h>
#include <krview/scene/ObjectKeys.h>
#include <krview/scene/SceneFile.h>

#include <Schema.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>
#include <memory>
#include <set>
#include <string>
#include <vector>

using nlohmann::json;

namespace
{

/// An object in a scene file, with its keys of one value.
struct Place
{
    std::string schema; ///< where the schema has its properties
    std::string scene;  ///< a scene with this object, which is called KEYS
    Keys keys;
};

class SceneSchema : public testing::Test
{
protected:
    [[nodiscard]] std::vector<Place> places()
    {
        const std::string list = "/properties/objects/items";
        return {
            {"", R"({"material": "a.krs", KEYS})", sceneKeys(fFile)},
            {list, R"({"material": "a.krs", "objects": [{KEYS}]})", objectKeys(fFile.only)},
            {"/$defs/parts/additionalProperties", R"({"material": "a.krs", "parts": {"p": {KEYS}}})",
             partKeys(fFile.only.look)},
            {"/properties/lights/items", R"({"material": "a.krs", "lights": [{"key": "k", "function": "f", KEYS}]})",
             lightKeys(fLight)},
            {"/properties/shadow", R"({"material": "a.krs", "shadow": {KEYS}})", shadowKeys(fFile.scene.shadow)},
            {"/properties/environment/anyOf/1", R"({"material": "a.krs", "environment": {"picture": "p", KEYS}})",
             environmentKeys(fEnvironment)},
            {"/properties/view", R"({"material": "a.krs", "view": {KEYS}})", viewKeys(fFile.scene)},
            {"/properties/background", R"({"material": "a.krs", "background": {KEYS}})", backgroundKeys(fFile.scene)},
            {"/$defs/picture/anyOf/1", R"({"material": "a.krs", "inputs": {"i": {"picture": "p", KEYS}}})",
             pictureKeys(fPicture)}};
    }

    const json fSchema = readSchema("scene");

private:
    SceneFile fFile;
    SceneLight fLight;
    Environment fEnvironment;
    NamedValue fPicture;
};

json resolved(const json& root, json property)
{
    if (property.contains("$ref"))
    {
        json target = root.at(json::json_pointer(property["$ref"].get<std::string>().substr(1)));
        target.update(property);
        return target;
    }
    return property;
}

/// What is wrong with a scene in the eyes of krview; empty when nothing is.
std::string readerFault(const json& document, const std::string& file = "scene.json")
{
    try
    {
        const SceneText text = readSceneText(std::make_shared<const krTools::Source>(file, document.dump()));
        (void)sceneOf(readSceneFile(text), text);
        return "";
    }
    catch (const InputError& error)
    {
        return error.what();
    }
}

TEST_F(SceneSchema, HasTheKeysAndDefaultsOfTheReader)
{
    for (const Place& place : places())
    {
        SCOPED_TRACE(place.schema);
        const json properties = fSchema.at(json::json_pointer(place.schema + "/properties"));
        std::set<std::string> known;
        std::set<std::string> described;
        for (const Key& key : place.keys)
        {
            known.insert(key.name);
            const json value = json(key.write("."));
            const json property = resolved(fSchema, properties.value(key.name, json::object()));
            if (key.name != "fit" && !value.is_object()) // it depends on the mesh
            {
                EXPECT_EQ(property.value("default", json()), value) << key.name;
            }
        }
        for (const auto& [key, property] : properties.items())
            described.insert(key);
        EXPECT_EQ(known, described);
    }
}

TEST_F(SceneSchema, RefusesWhatTheReaderRefuses)
{
    const WorkingFolder place;
    for (const char* file : {"a.krs", "name", "cube", "mirror", "nearest", "a", "b", "c", "d", "e", "f"})
        place.write(file, "");
    const json values = {nullptr,
                         true,
                         -1e9,
                         -1,
                         0,
                         0.5,
                         1,
                         1.5,
                         7,
                         1e9,
                         "a.krs",
                         "name",
                         "cube",
                         "mirror",
                         "nearest",
                         json::array(),
                         {1, 2},
                         {1, 2, 3},
                         {100, 200},
                         {1, 2, 3, 4},
                         {0, 1, 2e6},
                         {1, 2, "x"},
                         {"a.krs"},
                         {"a", "b", "c", "d", "e", "f"},
                         json::object(),
                         {{"picture", "p"}},
                         {{"x", 1}},
                         {{"x", "a"}},
                         {{"x", {1, 2}}},
                         {{"x", json::object()}},
                         {{"x", {{"faces", {"a"}}}}},
                         {{"top", {0, 0, 0}}},
                         json::array({json::object()}),
                         json::array({{{"key", "k"}, {"function", "f"}}})};
    for (const Place& object : places())
        for (const Key& key : object.keys)
        {
            json probes = values;
            const json property =
                resolved(fSchema, fSchema.at(json::json_pointer(object.schema + "/properties/" + key.name)));
            for (const auto& [bound, beyond] : {std::pair("minimum", -0.001), std::pair("maximum", 0.001)})
                if (property.contains(bound))
                {
                    probes.push_back(property[bound]);
                    probes.push_back(property[bound].get<double>() + beyond);
                    if (property[bound].is_number_integer())
                        probes.push_back(property[bound].get<int>() + (beyond < 0 ? -1 : 1));
                }
            for (const json& value : probes)
            {
                std::string text = object.scene;
                const std::string member = json(key.name).dump() + ": " + value.dump();
                text.replace(text.find("KEYS"), 4, member);
                const json document = json::parse(text); // of two members of one name the last counts
                EXPECT_EQ(schemaFault(document, fSchema).empty(), readerFault(document).empty())
                    << document << "\nschema: " << schemaFault(document, fSchema)
                    << "\nreader: " << readerFault(document);
            }
        }
}

TEST_F(SceneSchema, FitsAllShippedScenes)
{
    for (const auto& entry : std::filesystem::directory_iterator(KRENDER_SHARE "/scenes"))
        if (entry.path().extension() == ".json")
        {
            std::ifstream file(entry.path());
            EXPECT_EQ(schemaFault(json::parse(file), fSchema), "") << entry.path();
        }
}

/// The guide to scenes.
std::string guide() { return krTools::readText(KRENDER_DOCS "/scene.md", krTools::kMaxSourceSize); }

TEST_F(SceneSchema, IsExplainedKeyByKey)
{
    const std::set<std::string> unseen{"$schema", "stdlib", "name", "key"};
    const std::string text = guide();
    for (const Place& place : places())
        for (const auto& [key, property] : fSchema.at(json::json_pointer(place.schema + "/properties")).items())
        {
            const std::string begin = "\n| `" + key + "` | ";
            const json value = resolved(fSchema, property).value("default", json());
            const std::string column = value.is_null() ? " | | " : " | `" + value.dump() + "` | ";
            bool isThere = false;
            for (std::size_t row = text.find(begin); row != std::string::npos; row = text.find(begin, row + 1))
            {
                const std::string line = text.substr(row + 1, text.find('\n', row + 1) - row - 1);
                isThere |= line.find(column) != std::string::npos;
                EXPECT_TRUE(line.find("](keys/") != std::string::npos || unseen.contains(key)) << line;
            }
            EXPECT_TRUE(isThere) << key << column;
        }
}

TEST_F(SceneSchema, HasPicturesOfItsKeys)
{
    const std::string text = guide();
    std::size_t count = 0;
    for (std::size_t at = text.find("](keys/"); at != std::string::npos; at = text.find("](keys/", at + 1))
    {
        const std::string name = text.substr(at + 2, text.find(')', at) - at - 2);
        EXPECT_TRUE(std::filesystem::exists(KRENDER_DOCS "/" + name)) << name;
        ++count;
    }
    EXPECT_GT(count, 80U); // each stands there with its picture and its scene
}

TEST_F(SceneSchema, FitsTheScenesOfTheGuide)
{
    const std::string text = guide();
    const std::string fence = "```json\n";
    std::size_t count = 0;
    for (std::size_t begin = text.find(fence); begin != std::string::npos; begin = text.find(fence, begin + 1))
    {
        const std::size_t end = text.find("```", begin + fence.size());
        const std::string scene = text.substr(begin + fence.size(), end - begin - fence.size());
        SCOPED_TRACE(scene);
        EXPECT_EQ(schemaFault(scene, "scene"), "");
        EXPECT_EQ(readerFault(json::parse(scene), KRENDER_SHARE "/scenes/guide.json"), "");
        ++count;
    }
    EXPECT_GT(count, 5U);
}

} // namespace
