// The example hosts, run as their readers run them, and a browser: all of them draw every material alike.
#include "common/Sample.h"
#include "frontend/ProgramGenerator.h"
#include "tools/Program.h"

#include <krender-targets/SpirvProgram.h>
#include <krender/frontend/Module.h>
#include <krender/frontend/Program.h>
#include <krender/shadergen/Target.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <span>
#include <string>
#include <vector>

namespace
{

using Json = nlohmann::json;
/// Red, green and blue of each pixel, the uppermost row first, by the name of a material.
using Pictures = std::map<std::string, std::vector<std::uint8_t>>;

const std::string gLights = KRENDER_SHARE "/lights/hemisphere.krs";

std::string readFile(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// How much two pictures differ.
struct Difference
{
    int most = 0;       ///< levels of the worst component
    double mean = 0;    ///< levels
    double changed = 0; ///< the part of the pixels with more than one level
};

Difference compare(const std::vector<std::uint8_t>& a, const std::vector<std::uint8_t>& b)
{
    Difference found;
    if (a.size() != b.size() || a.empty())
        return {256, 256, 1};
    for (std::size_t i = 0; i < a.size(); i += 3)
    {
        int pixel = 0;
        for (std::size_t c = i; c < i + 3; ++c)
        {
            pixel = std::max(pixel, std::abs(a[c] - b[c]));
            found.mean += std::abs(a[c] - b[c]) / static_cast<double>(a.size());
        }
        found.most = std::max(found.most, pixel);
        found.changed += pixel > 1 ? 3.0 / static_cast<double>(a.size()) : 0;
    }
    return found;
}

/// All materials to draw: the shipped ones, and random ones.
class Hosts : public testing::Test
{
protected:
    Hosts()
    {
        for (const auto& entry : std::filesystem::directory_iterator(KRENDER_SHARE "/materials"))
            fFiles.push_back(entry.path().string());
        constexpr unsigned kRandom = 12;
        for (unsigned seed = 1; seed <= kRandom; ++seed)
        {
            const std::string name = "random" + std::to_string(seed) + ".krs";
            fPlace.write(name, generateProgram(seed, GeneratedKind::InOneFile).source);
            fFiles.push_back((fPlace.path() / name).string());
        }
        std::sort(fFiles.begin(), fFiles.end());
    }

    [[nodiscard]] Pictures drawWith(const std::string& host, const Circumstances& circumstances = {}) const
    {
        std::filesystem::create_directory(fPlace.path() / "pictures");
        std::vector<std::string> arguments{gLights, "pictures"};
        arguments.insert(arguments.end(), fFiles.begin(), fFiles.end());
        const Outcome outcome = fPlace.run(host, arguments, circumstances);
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.out, "") << "the validation layer speaks there";
        EXPECT_EQ(outcome.err.find("error"), std::string::npos) << outcome.err;
        Pictures pictures;
        for (const std::string& file : fFiles)
        {
            const std::string name = std::filesystem::path(file).stem().string();
            const std::string text = readFile(fPlace.path() / "pictures" / (name + ".ppm"));
            const std::size_t head = std::min(text.find("255\n") + 4, text.size());
            pictures[name].assign(text.begin() + static_cast<std::ptrdiff_t>(head), text.end());
        }
        return pictures;
    }

    Workplace fPlace;
    std::vector<std::string> fFiles;
};

/// What the page wants to know of a material; null where the target cannot have it.
Json describe(const std::string& path, const krFrontend::Module& lights)
{
    const krFrontend::Module module = krFrontend::Module::readFile(path);
    krFrontend::ProgramRequest request;
    request.module = &module;
    request.lights.push_back({&lights, "hemisphereLight", "hemisphereLight"});
    std::vector<krFrontend::ProgramDiagnostic> problems;
    const Target& target = *findTarget("essl300");
    const auto text = compileProgram(request, target, problems);
    if (!text)
        return {}; // it has a sampler1DShadow
    const auto program = krTargets::SpirvProgram::build(*text, problems);
    const auto translation = program ? program->translate(target, problems) : std::nullopt;
    EXPECT_TRUE(translation) << path;
    if (!translation)
        return {};
    Json inputs = Json::array();
    const auto add = [&inputs](const auto& input)
    {
        const sample::VertexField field = sample::fieldOf(input.programName, input.type);
        inputs.push_back({{"location", input.location}, {"offset", field.offset}, {"components", field.components}});
    };
    std::for_each(text->interface.block.frameInputs.begin(), text->interface.block.frameInputs.end(), add);
    std::for_each(text->interface.vertexInputs.begin(), text->interface.vertexInputs.end(), add);
    Json samplers = Json::array();
    for (const krFrontend::UniformInterface& uniform : text->interface.uniforms)
        if (uniform.binding >= 0)
            samplers.push_back({{"name", uniform.programName}, {"kind", dataTypeName(uniform.type)}});
    return {{"name", std::filesystem::path(path).stem()},
            {"vertex", translation->vertex},
            {"fragment", translation->fragment},
            {"block", sample::uniformBytes(text->interface, sample::ClipDepth::MinusOneToOne)},
            {"inputs", inputs},
            {"samplers", samplers}};
}

Json bytesOf(std::span<const std::byte> bytes) { return std::vector<std::byte>(bytes.begin(), bytes.end()); }

/// The page for the browser, with everything in it.
std::string makePage(const std::vector<std::string>& files)
{
    const krFrontend::Module lights = krFrontend::Module::readFile(gLights);
    const sample::Mesh mesh = sample::makeBall();
    Json page{{"size", sample::kSize},
              {"stride", sizeof(sample::Vertex)},
              {"pictureSide", sample::kPictureSide},
              {"picture", sample::makePicture()},
              {"vertices", bytesOf(std::as_bytes(std::span(mesh.vertices)))},
              {"triangles", bytesOf(std::as_bytes(std::span(mesh.triangles)))}};
    for (const std::string& file : files)
        if (Json material = describe(file, lights); !material.is_null())
            page["materials"].push_back(std::move(material));
    std::string html = readFile(KRENDER_PAGE);
    const std::string mark = "= PAGE;";
    return html.replace(html.find(mark), mark.size(), "= " + page.dump() + ";");
}

/// What the page wrote down: a line a material, its name and its pixels as hexadecimal digits, the lowest row first.
Pictures readPage(const std::string& html)
{
    Pictures pictures;
    const std::size_t begin = html.find("<pre id=\"pictures\">") + 19;
    std::istringstream lines(html.substr(begin, html.find("</pre>", begin) - begin));
    constexpr std::size_t kRow = std::size_t{8} * sample::kSize; // digits
    for (std::string name, pixels; lines >> name && std::getline(lines >> std::ws, pixels);)
    {
        EXPECT_EQ(pixels.size(), kRow * sample::kSize) << name << ": " << pixels.substr(0, 500);
        if (pixels.size() != kRow * sample::kSize)
            continue;
        for (std::size_t row = pixels.size(); row > 0; row -= kRow)
            for (std::size_t i = row - kRow; i < row; i += 8)
                for (std::size_t c = i; c < i + 6; c += 2)
                    pictures[name].push_back(
                        static_cast<std::uint8_t>(std::strtoul(pixels.substr(c, 2).c_str(), nullptr, 16)));
    }
    return pictures;
}

TEST_F(Hosts, DrawEveryMaterialAlikeWithOpenGlAndVulkanAndInABrowser)
{
    const Pictures opengl = drawWith(KRENDER_OPENGL_HOST);
    // Vulkan's drivers leak, and are gone when a build with sanitizers looks for whom to blame.
    const Pictures vulkan = drawWith(
        KRENDER_VULKAN_HOST,
        {.environment = {{"VK_INSTANCE_LAYERS", "VK_LAYER_KHRONOS_validation"}, {"ASAN_OPTIONS", "detect_leaks=0"}}});
    fPlace.write("page.html", makePage(fFiles));
    // On the driver that the others have: what it takes for a derivative is for each driver to choose.
    const Outcome browser = fPlace.run(
        KRENDER_BROWSER, {"--headless=new", "--no-sandbox", "--use-gl=angle", "--use-angle=gl-egl",
                          "--ignore-gpu-blocklist", "--user-data-dir=" + (fPlace.path() / "browser").string(),
                          "--dump-dom", "file://" + (fPlace.path() / "page.html").string()});
    ASSERT_EQ(browser.status, 0) << browser.err;
    const Pictures web = readPage(browser.out);
    EXPECT_GT(web.size(), opengl.size() * 2 / 3);
    for (const auto& [name, picture] : opengl)
    {
        const bool isRandom = name.starts_with("random");
        const Difference inVulkan = compare(picture, vulkan.at(name));
        EXPECT_LE(isRandom ? 0 : inVulkan.most, 1) << name << " with Vulkan";
        EXPECT_LE(inVulkan.changed, isRandom ? 0.005 : 0.0) << name << " with Vulkan";
        const auto inBrowser = web.find(name);
        const double mean = inBrowser != web.end() ? compare(picture, inBrowser->second).mean : isRandom ? 0 : 256;
        EXPECT_LE(mean, 0.1) << name << " in the browser";
    }
}

} // namespace
