// A million bounding volumes against a frustum, a box grown by a million points, a million boxes mapped: beside the
// same work written plainly and beside Imath.
#include "RatioReporter.h"

#include <krender/spatial/IHWCamera.h>

#include <Imath/ImathBoxAlgo.h>
#include <Imath/ImathFrustumTest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <memory>
#include <numbers>
#include <numeric>
#include <random>

namespace
{

using krLinear::PointFlt;

constexpr std::size_t kCount = 1'000'000;

/// The frustum's tests written plainly: plane by plane, corner by corner.
struct PlainFrustum
{
    std::array<Frustum::Plane, 6> planes;

    [[gnu::noinline]] bool sphere(double x, double y, double z, double radius) const
    {
        for (const Frustum::Plane& p : planes)
            if (-radius >= p.a * x + p.b * y + p.c * z + p.d)
                return false;
        return true;
    }

    [[gnu::noinline]] bool box(const double* min, const double* max) const
    {
        for (const Frustum::Plane& p : planes)
        {
            bool passed = false;
            for (unsigned corner = 0; corner < 8 && !passed; ++corner)
                passed = p.a * (corner & 1 ? max : min)[0] + p.b * (corner & 2 ? max : min)[1] +
                             p.c * (corner & 4 ? max : min)[2] + p.d >
                         0.0;
            if (!passed)
                return false;
        }
        return true;
    }
};

[[gnu::noinline]] void plainGrow(PointFlt& min, PointFlt& max, const PointFlt& p)
{
    if (min.x > p.x)
        min.x = p.x;
    if (p.x > max.x)
        max.x = p.x;
    if (min.y > p.y)
        min.y = p.y;
    if (p.y > max.y)
        max.y = p.y;
    if (min.z > p.z)
        min.z = p.z;
    if (p.z > max.z)
        max.z = p.z;
}

/// What a host keeps of its volumes; every form that asks one by one reads these numbers and widens them.
struct Sphere
{
    PointFlt center;
    float radius;
};
struct Box
{
    PointFlt min;
    PointFlt max;
};

Imath::V3d wide(const PointFlt& p) { return {p.x, p.y, p.z}; }

/// Volumes all around a camera, most of them out of its sight.
struct Scene
{
    Scene()
    {
        matrix.translate({4, 5, 6});
        matrix.rotate(0.7, {1, 2, 3});
        for (unsigned row = 0; row < 4; ++row)
            for (unsigned column = 0; column < 3; ++column)
                imathMatrix[static_cast<int>(row)][static_cast<int>(column)] = matrix(row, column);

        IHWCamera camera;
        camera.setPerspective(60, 1.5, 1, 150);
        camera.setViewMatrix(matrix.inverse());
        frustum = camera.frustum();
        plain.planes = frustum.planes();
        const double top = std::tan(std::numbers::pi / 6);
        imath.setFrustum(Imath::Frustumd(1, 150, -1.5 * top, 1.5 * top, top, -top, false), imathMatrix);

        std::mt19937 random(1);
        const auto number = [&random](float low, float high)
        { return std::uniform_real_distribution<float>(low, high)(random); };
        for (std::size_t i = 0; i < kCount; ++i)
        {
            const PointFlt center(number(-100, 100), number(-100, 100), number(-100, 100));
            const PointFlt half(number(0.1f, 8), number(0.1f, 8), number(0.1f, 8));
            sphereNumbers.push_back({center, number(0.1f, 8)});
            boxNumbers.push_back({PointFlt(center.x - half.x, center.y - half.y, center.z - half.z),
                                  PointFlt(center.x + half.x, center.y + half.y, center.z + half.z)});
            points.push_back(center);
            imathPoints.emplace_back(center.x, center.y, center.z);
            spheres.emplace_back(center, sphereNumbers.back().radius);
            boxes.emplace_back(boxNumbers.back().min, boxNumbers.back().max);
        }
    }

    Frustum frustum;
    PlainFrustum plain{};
    Imath::FrustumTestd imath;
    krLinear::AffineMatrix matrix; // the camera's placement
    Imath::M44d imathMatrix;
    std::vector<Sphere> sphereNumbers;
    std::vector<Box> boxNumbers;
    std::vector<BoundingSphere> spheres;
    std::vector<AABoundingBox> boxes;
    std::vector<PointFlt> points;
    std::vector<Imath::V3f> imathPoints;
};

Scene& scene()
{
    static Scene scene;
    return scene;
}

using Answers = std::vector<std::uint8_t>;

template <class Volume, class Test>
void answerEach(const std::vector<Volume>& volumes, Answers& answers, Test test)
{
    std::transform(volumes.begin(), volumes.end(), answers.begin(), test);
}

void plainSpheres(Answers& answers)
{
    answerEach(scene().sphereNumbers, answers,
               [&plain = scene().plain](const Sphere& s)
               { return plain.sphere(s.center.x, s.center.y, s.center.z, s.radius); });
}

void imathSpheres(Answers& answers)
{
    answerEach(scene().sphereNumbers, answers,
               [&imath = scene().imath](const Sphere& s)
               { return imath.isVisible(Imath::Sphere3d(wide(s.center), s.radius)); });
}

void singleSpheres(Answers& answers)
{
    answerEach(scene().sphereNumbers, answers,
               [&frustum = scene().frustum](const Sphere& s)
               { return frustum.sphereInFrustum(s.center.x, s.center.y, s.center.z, s.radius); });
}

void arrayOfSpheres(Answers& answers) { scene().frustum.classifySpheres(scene().spheres, answers); }

void plainBoxes(Answers& answers)
{
    answerEach(scene().boxNumbers, answers,
               [&plain = scene().plain](const Box& b)
               {
                   const double min[] = {b.min.x, b.min.y, b.min.z};
                   const double max[] = {b.max.x, b.max.y, b.max.z};
                   return plain.box(min, max);
               });
}

void imathBoxes(Answers& answers)
{
    answerEach(scene().boxNumbers, answers,
               [&imath = scene().imath](const Box& b)
               { return imath.isVisible(Imath::Box3d(wide(b.min), wide(b.max))); });
}

void singleBoxes(Answers& answers)
{
    answerEach(scene().boxNumbers, answers,
               [&frustum = scene().frustum](const Box& b)
               { return frustum.boxInFrustum(b.min.x, b.min.y, b.min.z, b.max.x, b.max.y, b.max.z); });
}

void arrayOfBoxes(Answers& answers) { scene().frustum.classifyBoxes(scene().boxes, answers); }

AABoundingBox plainGrown()
{
    PointFlt min = AABoundingBox().min();
    PointFlt max = AABoundingBox().max();
    for (const PointFlt& point : scene().points)
        plainGrow(min, max, point);
    return {min, max};
}

AABoundingBox imathGrown()
{
    Imath::Box3f box;
    for (const Imath::V3f& point : scene().imathPoints)
        box.extendBy(point);
    return {PointFlt(box.min.x, box.min.y, box.min.z), PointFlt(box.max.x, box.max.y, box.max.z)};
}

AABoundingBox grown()
{
    AABoundingBox box;
    box.addPoints(scene().points);
    return box;
}

Box plainMap(const Box& box)
{
    const krLinear::AffineMatrix& m = scene().matrix;
    const std::array<double, 3> from{box.min.x, box.min.y, box.min.z};
    const std::array<double, 3> to{box.max.x, box.max.y, box.max.z};
    std::array<double, 3> min{};
    std::array<double, 3> max{};
    for (unsigned j = 0; j < 3; ++j)
    {
        min[j] = max[j] = m(3, j);
        for (unsigned i = 0; i < 3; ++i)
        {
            const double a = m(i, j) * from[i];
            const double b = m(i, j) * to[i];
            if (a < b)
            {
                min[j] += a;
                max[j] += b;
            }
            else
            {
                min[j] += b;
                max[j] += a;
            }
        }
    }
    return {PointFlt(min[0], min[1], min[2]), PointFlt(max[0], max[1], max[2])};
}

Imath::Box3f imathMap(const Box& box)
{
    const Imath::Box3f from(Imath::V3f(box.min.x, box.min.y, box.min.z), Imath::V3f(box.max.x, box.max.y, box.max.z));
    return Imath::affineTransform(from, scene().imathMatrix);
}

AABoundingBox map(const Box& box)
{
    AABoundingBox mapped(box.min, box.max);
    mapped.transform(scene().matrix);
    return mapped;
}

template <class Map>
int mapEach(Map map)
{
    for (const Box& box : scene().boxNumbers)
    {
        auto mapped = map(box);
        benchmark::DoNotOptimize(mapped);
    }
    return 0;
}

void check(bool held, const char* what)
{
    if (held)
        return;
    std::fprintf(stderr, "%s: the forms do not agree\n", what);
    std::exit(1);
}

bool same(const AABoundingBox& a, const AABoundingBox& b) { return a.min() == b.min() && a.max() == b.max(); }

using Classify = void (*)(Answers&);

Answers answersOf(Classify classify)
{
    Answers answers(kCount);
    classify(answers);
    return answers;
}

/// Imath rounds in other places, so that volumes which touch a plane may differ.
void checkNearly(const Answers& a, const Answers& b, const char* what)
{
    const auto equal = std::inner_product(a.begin(), a.end(), b.begin(), std::size_t{0}, std::plus{}, std::equal_to{});
    check(kCount - equal < kCount / 10'000, what);
}

void checkResults()
{
    checkNearly(answersOf(imathSpheres), answersOf(singleSpheres), "spheres beside Imath");
    checkNearly(answersOf(imathBoxes), answersOf(singleBoxes), "boxes beside Imath");
    check(answersOf(plainSpheres) == answersOf(singleSpheres), "spheres one by one");
    check(answersOf(plainSpheres) == answersOf(arrayOfSpheres), "spheres");
    check(answersOf(plainBoxes) == answersOf(singleBoxes), "boxes one by one");
    check(answersOf(plainBoxes) == answersOf(arrayOfBoxes), "boxes");
    check(same(grown(), plainGrown()), "growing");
    check(same(grown(), imathGrown()), "growing beside Imath");
    for (const Box& box : scene().boxNumbers)
        check(same(map(box), AABoundingBox(plainMap(box).min, plainMap(box).max)), "mapping");
}

template <class Work>
void add(const char* name, Work work)
{
    benchmark::RegisterBenchmark(name,
                                 [work](benchmark::State& state)
                                 {
                                     for (auto _ : state)
                                         benchmark::DoNotOptimize(work());
                                 })
        ->Unit(benchmark::kMillisecond)
        ->MinTime(0.05)
        ->Repetitions(9)
        ->ReportAggregatesOnly(false);
}

void addTest(const char* name, Classify classify)
{
    add(name,
        [classify, answers = std::make_shared<Answers>(kCount)]
        {
            classify(*answers);
            return answers->data();
        });
}

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    checkResults();

    addTest("spheres/plain", plainSpheres);
    addTest("spheres/Imath", imathSpheres);
    addTest("spheres/krender single", singleSpheres);
    addTest("spheres/krender array", arrayOfSpheres);
    addTest("boxes/plain", plainBoxes);
    addTest("boxes/Imath", imathBoxes);
    addTest("boxes/krender single", singleBoxes);
    addTest("boxes/krender array", arrayOfBoxes);
    add("grow/plain", plainGrown);
    add("grow/Imath", imathGrown);
    add("grow/krender", grown);
    add("map/plain", [] { return mapEach(plainMap); });
    add("map/Imath", [] { return mapEach(imathMap); });
    add("map/krender", [] { return mapEach(map); });

    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printRatios();
}
