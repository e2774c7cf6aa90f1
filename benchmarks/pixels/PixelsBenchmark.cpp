// Resizing, normal maps and conversions of large images: beside the same work written plainly, beside two image
// libraries, and beside a plain copy of as many bytes.
#include "RatioReporter.h"
#include "krender/pixels/private/ResizePlain.h"
#include "pixels/PlainNormalMap.h"

#include <krender/pixels/krColorFormatRGBAFixed8.h>
#include <krender/pixels/krColorFormatRGBAFloat.h>

#include <opencv2/imgproc.hpp>
#include <stb/stb_image_resize.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

namespace
{

struct Sizes
{
    unsigned srcW, srcH, dstW, dstH;
};

template <class Component>
std::vector<Component> resizedPlainly(const Component* src, Sizes s)
{
    std::vector<Component> dst(std::size_t{4} * s.dstW * s.dstH);
    krPixels::resizePlainly(src, s.srcW, s.srcH, dst.data(), s.dstW, s.dstH);
    return dst;
}

/// What a component type goes with in the library and in its peers.
template <class Component>
struct Kind;

template <>
struct Kind<unsigned char>
{
    using Format = krColorFormatRGBAFixed8;
    static constexpr const char* kName = "8-bit";
    static constexpr int kMatrixType = CV_8UC4;
    static void stb(const unsigned char* src, Sizes s, unsigned char* dst)
    {
        stbir_resize_uint8_generic(src, int(s.srcW), int(s.srcH), 0, dst, int(s.dstW), int(s.dstH), 0, 4, -1, 0,
                                   STBIR_EDGE_CLAMP, STBIR_FILTER_BOX, STBIR_COLORSPACE_LINEAR, nullptr);
    }
};

template <>
struct Kind<float>
{
    using Format = krColorFormatRGBAFloat;
    static constexpr const char* kName = "float";
    static constexpr int kMatrixType = CV_32FC4;
    static void stb(const float* src, Sizes s, float* dst)
    {
        stbir_resize_float_generic(src, int(s.srcW), int(s.srcH), 0, dst, int(s.dstW), int(s.dstH), 0, 4, -1, 0,
                                   STBIR_EDGE_CLAMP, STBIR_FILTER_BOX, STBIR_COLORSPACE_LINEAR, nullptr);
    }
};

/// A random image in storage of the library, as every large image of a host is.
template <class Component>
std::shared_ptr<Component> randomImage(unsigned w, unsigned h)
{
    const std::shared_ptr<Component> image(
        static_cast<Component*>(typename Kind<Component>::Format().allocate(w, h, 1)), std::free);
    std::mt19937 random(1);
    for (std::size_t i = 0; i < std::size_t{4} * w * h; ++i)
        image.get()[i] = static_cast<Component>(static_cast<double>(random() % 256) /
                                                (std::is_same_v<Component, float> ? 255.0 : 1.0));
    return image;
}

void require(bool same, const std::string& what)
{
    if (same)
        return;
    std::fprintf(stderr, "%s: the results differ from those of the plain form\n", what.c_str());
    std::exit(1);
}

void add(const std::string& name, const std::function<void()>& run)
{
    benchmark::RegisterBenchmark(name.c_str(),
                                 [run](benchmark::State& state)
                                 {
                                     for (auto _ : state)
                                         run();
                                 })
        ->Unit(benchmark::kMillisecond)
        ->Repetitions(3);
}

/// Every run makes a new image and gives it back; all forms read from the same memory.
template <class Component>
void addResize(Sizes s)
{
    using Format = typename Kind<Component>::Format;
    const auto src = randomImage<Component>(s.srcW, s.srcH);
    const auto resizeOnce = [src, s](auto use)
    {
        const Format format;
        Component* pixels = format.resize(src.get(), s.srcW, s.srcH, s.dstW, s.dstH);
        use(pixels);
        format.deallocate(pixels);
    };
    const std::string name = std::string("resize ") + Kind<Component>::kName + " " + std::to_string(s.srcW) + "x" +
                             std::to_string(s.srcH) + " to " + std::to_string(s.dstW) + "x" + std::to_string(s.dstH);
    resizeOnce(
        [&](const Component* pixels)
        {
            const auto expected = resizedPlainly(src.get(), s);
            require(std::memcmp(pixels, expected.data(), expected.size() * sizeof(Component)) == 0, name);
        });
    add(name + "/plain", [src, s] { benchmark::DoNotOptimize(resizedPlainly(src.get(), s)); });
    add(name + "/OpenCV INTER_AREA",
        [src, s]
        {
            const cv::Mat from(int(s.srcH), int(s.srcW), Kind<Component>::kMatrixType, src.get());
            cv::Mat to;
            cv::resize(from, to, cv::Size(int(s.dstW), int(s.dstH)), 0, 0, cv::INTER_AREA);
            benchmark::DoNotOptimize(to.data);
        });
    add(name + "/stb_image_resize box",
        [src, s]
        {
            void* dst = std::malloc(std::size_t{4} * s.dstW * s.dstH * sizeof(Component));
            Kind<Component>::stb(src.get(), s, static_cast<Component*>(dst));
            benchmark::DoNotOptimize(dst);
            std::free(dst);
        });
    add(name + "/krender",
        [resizeOnce] { resizeOnce([](const Component* pixels) { benchmark::DoNotOptimize(pixels); }); });
}

template <class Component>
void addNormalMap(unsigned size)
{
    using Format = typename Kind<Component>::Format;
    const std::string name = std::string("normal map ") + Kind<Component>::kName + " " + std::to_string(size);
    const auto image = randomImage<Component>(size, size);
    std::vector<Component> expected(image.get(), image.get() + std::size_t{4} * size * size);
    std::vector<Component> converted = expected;
    plain::convertToNormalMap(expected.data(), size, size, 3.0f);
    Format().convertToNormalMap(converted.data(), size, size, 3.0f);
    require(std::memcmp(expected.data(), converted.data(), expected.size() * sizeof(Component)) == 0, name);
    add(name + "/plain", [image, size] { plain::convertToNormalMap(image.get(), size, size, 3.0f); });
    add(name + "/krender", [image, size] { Format().convertToNormalMap(image.get(), size, size, 3.0f); });
}

/// @param convert  makes a new image of size x size pixels
template <class From, class To, class Convert>
void addConversion(const std::string& name, unsigned size, Convert convert)
{
    const auto src = randomImage<From>(size, size);
    // As many bytes as the conversion reads and writes, half of them read.
    const std::size_t bytes = std::size_t{4} * size * size * (sizeof(From) + sizeof(To)) / 2;
    const auto from = std::make_shared<std::vector<char>>(bytes);
    const auto to = std::make_shared<std::vector<char>>(bytes);
    add(name + "/copy to a warm image",
        [from, to, bytes] { benchmark::DoNotOptimize(std::memcpy(to->data(), from->data(), bytes)); });
    add(name + "/copy to a new image",
        [from, bytes]
        {
            void* copy = std::malloc(bytes);
            benchmark::DoNotOptimize(std::memcpy(copy, from->data(), bytes));
            std::free(copy);
        });
    add(name + "/krender",
        [src, convert, size]
        {
            To* pixels = convert(src.get(), size);
            benchmark::DoNotOptimize(pixels);
            std::free(pixels);
        });
}

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    cv::setNumThreads(1);

    for (const Sizes s :
         {Sizes{2048, 2048, 512, 512}, {1000, 1000, 333, 777}, {512, 512, 2048, 2048}, {333, 777, 1000, 1000}})
    {
        addResize<unsigned char>(s);
        addResize<float>(s);
    }
    addNormalMap<unsigned char>(2048);
    addNormalMap<float>(2048);
    addConversion<unsigned char, float>("8-bit to float 2048", 2048,
                                        [](const unsigned char* src, unsigned size)
                                        { return krColorFormatRGBAFloat().convertFromFixed8(src, size, size, 1); });
    addConversion<float, unsigned char>("float to 8-bit 2048", 2048,
                                        [](const float* src, unsigned size)
                                        { return krColorFormatRGBAFixed8().convertFromFloat(src, size, size, 1); });

    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printRatios();
}
