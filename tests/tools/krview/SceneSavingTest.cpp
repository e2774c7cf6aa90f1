#include "WorkingFolder.h"

#include <krview/scene/OptionsText.h>
#include <krview/scene/SceneFile.h>
#include <krview/scene/SceneWriter.h>

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstddef>
#include <exception>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace fs = std::filesystem;
using nlohmann::ordered_json;

namespace
{

/// Works in the folder of the shipped scenes' copies.
class SceneSaving : public testing::Test
{
protected:
    SceneSaving()
    {
        fs::copy(KRENDER_SHARE, fPlace.path(), fs::copy_options::recursive);
        fs::current_path("scenes");
    }

    [[nodiscard]] std::string read(const std::string& name) const { return fPlace.read("scenes/" + name); }
    void write(const std::string& name, const std::string& text) const { fPlace.write("scenes/" + name, text); }

    /// The scene that a text tells of when it stands in the file.
    static Scene sceneOfText(const std::string& file, const std::string& text)
    {
        const SceneText read = readSceneText(std::make_shared<const krTools::Source>(file, text));
        return sceneOf(readSceneFile(read), read);
    }

private:
    WorkingFolder fPlace;
};

/// Adds pointers to all members and items and, behind them, to the value itself.
void collect(const ordered_json& value, const ordered_json::json_pointer& place,
             std::vector<ordered_json::json_pointer>& places)
{
    if (value.is_object())
        for (const auto& [key, member] : value.items())
            collect(member, place / key, places);
    else
        for (std::size_t i = 0; value.is_array() && i < value.size(); ++i)
            collect(value[i], place / i, places);
    places.push_back(place);
}

/// Pointers to all members and items.
std::vector<ordered_json::json_pointer> placesIn(const ordered_json& document)
{
    std::vector<ordered_json::json_pointer> places;
    collect(document, ordered_json::json_pointer(), places);
    places.pop_back();
    std::erase(places, ordered_json::json_pointer("/objects")); // a list stays a list
    return places;
}

/// What is left when something, and all that is then empty, is taken away.
ordered_json without(ordered_json document, ordered_json::json_pointer place)
{
    do
    {
        ordered_json& parent = document[place.parent_pointer()];
        if (parent.is_object())
            parent.erase(place.back());
        else
            parent.erase(std::stoul(place.back()));
        place.pop_back();
    } while (!place.empty() && document[place].empty() && place.back() != "lights");
    return document;
}

bool isSubsequence(std::string_view part, std::string_view whole)
{
    for (const char c : whole)
        if (!part.empty() && part.front() == c)
            part.remove_prefix(1);
    return part.empty();
}

/// The bytes of `text` that are neither at its beginning nor at its end as in `other`.
std::size_t changedBytes(std::string_view text, std::string_view other)
{
    const auto begin = std::mismatch(text.begin(), text.end(), other.begin(), other.end());
    const auto end = std::mismatch(text.rbegin(), text.rend() - (begin.first - text.begin()), other.rbegin(),
                                   other.rend() - (begin.second - other.begin()));
    return static_cast<std::size_t>(text.size()) - static_cast<std::size_t>(begin.first - text.begin()) -
           static_cast<std::size_t>(end.first - text.rbegin());
}

/// Every key in odd layouts.
const char* const kEverything =
    "{\r\n"
    "\t\"objects\":[\r\n"
    "\t\t{\"shape\":\"box\",\"rotation\":[0,90,0.5],\"scale\":2,\"fit\":false,\"castsShadow\":false},\r\n\r\n"
    "\t\t{\"name\":\"pot\",\"mesh\":\"wood.json\",\"scale\":[1,2,3],\"material\":\"../materials/clay.krs\",\r\n"
    "\t\t\"transparent\":true,\"parts\":{\"lid\":{\"material\":\"../materials/"
    "phong.krs:phong\",\"inputs\":{\"glossiness\":1.0}},\r\n"
    "\t\t\"glass\":{\"transparent\":true}},\"inputs\":{\"color\":[0.5,1.0,1e-3]}},\r\n"
    "\t\t{ \"name\" : \"third\" , "
    "\"shape\":\"torus\",\"fineness\":12,\"smooth\":false,\"particles\":7,\"position\":[1,2,3] }],\r\n"
    "\t\"material\":\"../materials/lambert.krs\",\r\n"
    "\t\"inputs\":{\"moonrise\":3,\"map\":\"slide.png\",\"other\":{\"picture\":\"bricks.png\",\"wrap\":\"mirror\",\r\n"
    "\t\t\"filter\":\"nearest\",\"coded\":false,\"normalMap\":2.5},\"uv\":\"textureCoord\",\"cube\":{\"faces\":[\"a\","
    "\"b\",\"c\",\"d\",\"e\",\"noise\"]}},\r\n"
    "\t\"lights\":[{\"key\":\"sun\",\"function\":\"lamp\",\"source\":\"../lights/"
    "cone.krs\"},{\"key\":\"b\",\"function\":\"x\"}],\r\n"
    "\t\"shadow\":{\"light\":\"sun\",\"size\":512},\"environment\":{\"picture\":\"sky\",\"turn\":10,\"intensity\":2,"
    "\"background\":false,\"blur\":0.5},\r\n"
    "\t\"stdlib\":\"../stdlib.krs\",\"libraries\":[\"../lights/gobo.krs\",\"../lights/cone.krs\"],\r\n"
    "\t\"spacing\":3,\"axes\":true,\"wire\":true,\"view\":{\"pitch\":1,\"target\":[0,1,0],\"frame\":true},"
    "\"background\":{\"top\":[1,1,1]},\r\n"
    "\t\"samples\":8,\"encode\":false,\"size\":[320,240]}";

const char* const kOneLine =
    R"({"material":"../materials/clay.krs","lights":[{"key":"a","function":"headLight"}],"view":{"yaw":0.5}})";

TEST_F(SceneSaving, ChangesNothingInAnyShippedScene)
{
    for (const auto& entry : fs::directory_iterator("."))
        if (entry.path().extension() == ".json")
        {
            const std::string file = entry.path().filename().string();
            const std::string text = read(file);
            saveScene(sceneOfText(file, text), file);
            EXPECT_EQ(read(file), text);
        }
}

class LaidOutScenes : public SceneSaving, public testing::WithParamInterface<const char*>
{
protected:
    /// The text of the file when a scene is saved that was `from` before.
    [[nodiscard]] std::string saved(const Scene& scene, const std::string& from) const
    {
        write("scene.json", from);
        saveScene(scene, "scene.json");
        return read("scene.json");
    }

    const std::string fText = GetParam();
    const Scene fScene = sceneOfText("scene.json", fText);
    const ordered_json fDocument = ordered_json::parse(fText);
    const std::vector<ordered_json::json_pointer> fPlaces = placesIn(fDocument);
};

TEST_P(LaidOutScenes, LoseAndGetBackEachMember)
{
    std::size_t taken = 0;
    for (const ordered_json::json_pointer& place : fPlaces)
    {
        SCOPED_TRACE(place.to_string());
        const ordered_json less = without(fDocument, place);
        Scene lesser;
        try
        {
            lesser = sceneOfText("scene.json", less.dump());
        }
        catch (const std::exception&)
        {
            continue; // a scene cannot do without it
        }
        const std::string cut = saved(lesser, fText);
        EXPECT_EQ(nlohmann::json::parse(cut), nlohmann::json(less));
        EXPECT_TRUE(isSubsequence(cut, fText)) << cut;
        const std::string whole = saved(fScene, cut);
        EXPECT_EQ(nlohmann::json::parse(whole), nlohmann::json(fDocument));
        EXPECT_TRUE(isSubsequence(cut, whole)) << whole;
        ++taken;
    }
    EXPECT_GT(taken, fPlaces.size() / 4);
}

TEST_P(LaidOutScenes, ChangeInEachNumber)
{
    for (const ordered_json::json_pointer& place : fPlaces)
    {
        ordered_json other = fDocument;
        ordered_json& value = other[place];
        if (!value.is_number())
            continue;
        SCOPED_TRACE(place.to_string());
        value = value.is_number_integer() ? ordered_json(value.get<int>() + 1) : ordered_json(0.375);
        const std::string changed = saved(sceneOfText("scene.json", other.dump()), fText);
        EXPECT_EQ(nlohmann::json::parse(changed), nlohmann::json(other));
        EXPECT_LE(changedBytes(changed, fText), 5U) << changed;
    }
}

INSTANTIATE_TEST_SUITE_P(Krview, LaidOutScenes, testing::Values(kEverything, kOneLine));

/// A change of a scene, and what becomes of its file.
struct SavedChange
{
    const char* name;
    const char* text;
    void (*change)(Scene&);
    const char* saved;
};

class SavedChanges : public SceneSaving, public testing::WithParamInterface<SavedChange>
{
};

TEST_P(SavedChanges, StandInTheFile)
{
    write("scene.json", GetParam().text);
    const SceneText text = readSceneText("scene.json");
    Scene scene = sceneOf(readSceneFile(text), text);
    GetParam().change(scene);
    saveScene(scene, "scene.json");
    EXPECT_EQ(read("scene.json"), GetParam().saved);
}

InputValue numbers(std::vector<double> values) { return {std::move(values), {}, ""}; }

constexpr SavedChange kSavedChanges[] = {
    {"StyleOfNumbers",
     R"({"material": "../materials/clay.krs", "inputs": {"a": 1.0, "b": [1.00, 2], "c": true, "d": 0.5}})",
     [](Scene& scene)
     {
         scene.inputs["a"] = numbers({2});
         scene.inputs["b"] = numbers({1, 0.3F});
         scene.inputs["c"] = numbers({0});
         scene.inputs["d"] = numbers({1e30});
     },
     R"({"material": "../materials/clay.krs", "inputs": {"a": 2.0, "b": [1.00, 0.3], "c": false, "d": 1e+30}})"},
    {"ByteOrderMark", "\xef\xbb\xbf{\"material\": \"../materials/clay.krs\"}", [](Scene& scene) { scene.yaw = 0.1F; },
     "\xef\xbb\xbf{\"material\": \"../materials/clay.krs\", \"view\": {\"yaw\": 0.1}}"},
    {"LineEnds", "{\r\n\t\"material\": \"../materials/clay.krs\"\r\n}",
     [](Scene& scene) {
         scene.lights = {{"", "a", "headLight", ""}};
     },
     "{\r\n\t\"material\": \"../materials/clay.krs\",\r\n\t\"lights\": [\r\n"
     "\t\t{\"key\": \"a\", \"function\": \"headLight\"}\r\n\t]\r\n}"},
    {"Defaults",
     R"({"material": "../materials/clay.krs", "axes": true, "view": {"yaw": -30, "pitch": 9}, "smooth": true, "lights": []})",
     [](Scene& scene)
     {
         scene.axes = false;
         scene.lights->push_back({"", "a", "headLight", ""});
         scene.pitch = 20;
     },
     R"({"material": "../materials/clay.krs", "smooth": true, "lights": [{"key": "a", "function": "headLight"}]})"},
    {"OnlyObjectNotFitted", R"({"material": "../materials/clay.krs", "axes": true})",
     [](Scene& scene) { scene.objects[0].isFitted = false; },
     R"({"objects": [{"material": "../materials/clay.krs", "fit": false}], "axes": true})"},
    {"InputsOfLights", R"({
  "material": "../materials/clay.krs",
  "inputs": {"sunrise": 1},
  "lights": [
    {"key": "sun", "function": "directionalLight"},
    {"key": "sunset", "function": "directionalLight", "inputs": {"color": [1, 0, 0]}}
  ]
})",
     [](Scene& scene)
     {
         scene.inputs["sunrise"] = numbers({2});
         scene.inputs["suncolor"] = numbers({1, 2, 3});
         scene.inputs.erase("sunsetcolor");
         scene.lights->at(1).key = "sunset2";
         scene.lights->push_back({"", "room", "ambientLight", ""});
     },
     R"({
  "material": "../materials/clay.krs",
  "inputs": {"sunrise": 2},
  "lights": [
    {"key": "sun", "function": "directionalLight", "inputs": {"color": [1, 2, 3]}},
    {"key": "sunset2", "function": "directionalLight"},
    {"key": "room", "function": "ambientLight"}
  ]
})"},
    {"InputOfTheOnlyObject", R"({"material": "../materials/clay.krs", "inputs": {"color": [1, 1, 1]}})",
     [](Scene& scene) {
         scene.objects[0].look.inputs["color"] = numbers({1, 0, 1});
     },
     R"({"material": "../materials/clay.krs", "inputs": {"color": [1, 0, 1]}})"},
    {"AnotherObject", R"({
    "material": "../materials/clay.krs",
    "shape": "cube",
    "lights": []
}
)",
     [](Scene& scene)
     {
         scene.objects.push_back(scene.objects[0]);
         scene.objects[0].name = "object1";
         scene.objects[1].name = "floor";
         scene.objects[1].position = {0, -1, 0};
     },
     R"({
    "objects": [
        {"material": "../materials/clay.krs", "shape": "cube"},
        {"name": "floor", "material": "../materials/clay.krs", "shape": "cube", "position": [0, -1, 0]}
    ],
    "lights": [],
    "view": {"frame": false}
}
)"},
    {"FirstObjectGone", R"({"material": "../materials/clay.krs", "objects": [{}, {"scale": 2}, {"name": "a"}]})",
     [](Scene& scene) { scene.objects.erase(scene.objects.begin()); },
     R"({"material": "../materials/clay.krs", "objects": [{"name": "object2", "scale": 2}, {"name": "a"}]})"},
};

INSTANTIATE_TEST_SUITE_P(Krview, SavedChanges, testing::ValuesIn(kSavedChanges),
                         [](const auto& change) { return change.param.name; });

TEST_F(SceneSaving, ElsewhereNamesTheSameFiles)
{
    Scene scene = sceneOfText("scene.json", R"({"material": "../materials/phong.krs:phong", "mesh": "wood.json",
        "libraries": ["../lights/cone.krs"], "inputs": {"map": {"picture": "bricks.png", "wrap": "clamp"}, "uv": "normal"},
        "lights": [{"key": "a", "function": "headLight", "inputs": {"color": [1, 0.5, 0], "slide": "slide.png"}}],
        "environment": "sky", "stdlib": "none"})");
    scene.file.clear();
    saveScene(scene, "../new.json");
    EXPECT_EQ(read("../new.json"), R"({
    "material": "materials/phong.krs:phong",
    "mesh": "scenes/wood.json",
    "stdlib": "none",
    "libraries": ["lights/cone.krs"],
    "inputs": {"map": {"picture": "scenes/bricks.png", "wrap": "clamp"}, "uv": "normal"},
    "lights": [
        {"key": "a", "function": "headLight", "inputs": {"color": [1, 0.5, 0], "slide": "scenes/slide.png"}}
    ],
    "environment": "sky"
}
)");
}

TEST_F(SceneSaving, LeavesTheFileWhereItCannotSave)
{
    const std::string text = R"({"material": "../materials/clay.krs"})";
    write("scene.json", text);
    Scene scene = sceneOfText("scene.json", text);
    scene.pitch = 100;
    EXPECT_THROW(saveScene(scene, "scene.json"), InputError);
    EXPECT_EQ(read("scene.json"), text);
    write("scene.json", text + ',');
    scene.pitch = 10;
    EXPECT_THROW(saveScene(scene, "scene.json"), InputError);
    EXPECT_EQ(read("scene.json"), text + ',');
}

TEST_F(SceneSaving, OptionsShowTheSame)
{
    write("scene.json",
          R"({"material": "../materials/clay.krs", "objects": [{"name": "a"}, {"name": "b", "inputs": {"x": 1}}],
        "inputs": {"x": 2, "y": 3}})");
    Scene scene = sceneOfText("scene.json", read("scene.json"));
    scene.objects[0].look.material = "../materials/it's.krs";
    scene.objects[0].shape = Shape::Torus;
    scene.objects[1].look.inputs["z"] = numbers({1, 0.1F});
    scene.inputs["x"] = numbers({-1});
    scene.inputs["map"] = {NamedValue{"bricks.png", "", 2}, {}, ""};
    scene.inputs["uv"] = {NamedValue{"1", ""}, {}, ""};
    scene.lights = {{"", "k", "lamp", "lamp.krs"}};
    scene.width = 100;
    const OptionsText options = optionsText(scene);
    EXPECT_EQ(options.text,
              "scene.json --material '../materials/it'\\''s.krs' --shape torus --light k=lamp.krs:lamp "
              "--set 'map={\"picture\": \"bricks.png\", \"normalMap\": 2}' --set 'uv={\"picture\": \"1\"}' --set x=-1 "
              "--set b.x=1 --set b.z=1,0.1 --size 100x480");
    EXPECT_EQ(options.leftOut, std::vector<std::string>());
}

TEST_F(SceneSaving, OptionsTellWhatTheyLeaveOut)
{
    const char* const text = R"({"material": "../materials/clay.krs", "inputs": {"color": 1, "slope": 2}})";
    write("scene.json", text);
    const struct
    {
        void (*change)(Scene&);
        std::vector<std::string> leftOut;
    } changes[] = {
        {[](Scene& scene) { scene.inputs["color"] = numbers({2}); }, {}},
        {[](Scene& scene) { scene.inputs.erase("slope"); }, {"inputs"}},
        {[](Scene& scene) { scene.yaw = 7; }, {"view"}},
        {[](Scene& scene) {
             scene.objects[0].position = {0, 1, 0};
         },
         {"position"}},
        {[](Scene& scene)
         {
             scene.lights.emplace();
             scene.axes = true;
         },
         {"lights", "axes"}},
        {[](Scene& scene)
         {
             scene.file.clear();
             scene.includeFolders = {"parts"};
         },
         {}},
    };
    for (const auto& [change, leftOut] : changes)
    {
        Scene scene = sceneOfText("scene.json", text);
        change(scene);
        EXPECT_EQ(optionsText(scene).leftOut, leftOut);
    }
}

} // namespace
