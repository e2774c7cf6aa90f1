// A million bounding volumes against a frustum, a box grown by a million points, a million boxes mapped: beside the
// same work written plainly and beside Imath.
#include "RatioReporter.h"

#include <krender/spatial/Frustum.h>

#include <Imath/ImathBoxAlgo.h>
#include <Imath/ImathFrustumTest.h>

#include <cstdlib>
#include <memory>
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

/// Volumes spread in and around the frustum of a camera at the origin: about half of them are visible.
struct Scene
{
    Scene()
    {
        std::mt19937 random(1);
        const auto number = [&random](float low, float high)
        { return std::uniform_real_distribution<float>(low, high)(random); };

        krLinear::ProjMatrix projection(0.0); // 90 degrees, from 1 to 100
        projection(0, 0) = projection(1, 1) = 1.0;
        projection(2, 2) = -101.0 / 99.0;
        projection(2, 3) = -1.0;
        projection(3, 2) = -200.0 / 99.0;
        frustum.recomputePlaneEquations(projection);
        plain.planes = frustum.planes();
        imath.setFrustum(Imath::Frustumd(1, 100, -1, 1, 1, -1, false), Imath::M44d());

        for (std::size_t i = 0; i < kCount; ++i)
        {
            const PointFlt center(number(-60, 60), number(-60, 60), number(-120, 20));
            const PointFlt half(number(0.1f, 8), number(0.1f, 8), number(0.1f, 8));
            const float radius = number(0.1f, 8);
            points.push_back(center);
            spheres.emplace_back(center, radius);
            boxes.emplace_back(PointFlt(center.x - half.x, center.y - half.y, center.z - half.z),
                               PointFlt(center.x + half.x, center.y + half.y, center.z + half.z));
            const auto wide = [](const PointFlt& p) { return Imath::V3d(p.x, p.y, p.z); };
            const auto narrow = [](const PointFlt& p) { return Imath::V3f(p.x, p.y, p.z); };
            imathPoints.push_back(narrow(center));
            imathSpheres.emplace_back(wide(center), radius);
            imathBoxes.emplace_back(wide(boxes.back().min()), wide(boxes.back().max()));
            imathFloatBoxes.emplace_back(narrow(boxes.back().min()), narrow(boxes.back().max()));
        }

        matrix.rotate(0.7, {1, 2, 3});
        matrix.translate({4, 5, 6});
        for (unsigned row = 0; row < 4; ++row)
            for (unsigned column = 0; column < 3; ++column)
                imathMatrix[static_cast<int>(row)][static_cast<int>(column)] = matrix(row, column);
    }

    Frustum frustum;
    PlainFrustum plain{};
    Imath::FrustumTestd imath;
    std::vector<PointFlt> points;
    std::vector<BoundingSphere> spheres;
    std::vector<AABoundingBox> boxes;
    std::vector<Imath::V3f> imathPoints;
    std::vector<Imath::Sphere3d> imathSpheres;
    std::vector<Imath::Box3d> imathBoxes;
    std::vector<Imath::Box3f> imathFloatBoxes;
    krLinear::AffineMatrix matrix;
    Imath::M44d imathMatrix;
};

Scene& scene()
{
    static Scene scene;
    return scene;
}

using Answers = std::vector<std::uint8_t>;

template <class Test>
void answerEach(Answers& answers, Test test)
{
    for (std::size_t i = 0; i < kCount; ++i)
        answers[i] = test(i);
}

// All forms of one test read the same double values, the forms for arrays the library's own volumes.

void plainSpheres(Answers& answers)
{
    answerEach(answers,
               [&s = scene()](std::size_t i)
               {
                   const Imath::Sphere3d& v = s.imathSpheres[i];
                   return s.plain.sphere(v.center.x, v.center.y, v.center.z, v.radius);
               });
}

void imathSpheres(Answers& answers)
{
    answerEach(answers, [&s = scene()](std::size_t i) { return s.imath.isVisible(s.imathSpheres[i]); });
}

void singleSpheres(Answers& answers)
{
    answerEach(answers,
               [&s = scene()](std::size_t i)
               {
                   const Imath::Sphere3d& v = s.imathSpheres[i];
                   return s.frustum.sphereInFrustum(v.center.x, v.center.y, v.center.z, v.radius);
               });
}

void bulkSpheres(Answers& answers) { scene().frustum.classifySpheres(scene().spheres, answers); }

void plainBoxes(Answers& answers)
{
    answerEach(answers, [&s = scene()](std::size_t i)
               { return s.plain.box(s.imathBoxes[i].min.getValue(), s.imathBoxes[i].max.getValue()); });
}

void imathBoxes(Answers& answers)
{
    answerEach(answers, [&s = scene()](std::size_t i) { return s.imath.isVisible(s.imathBoxes[i]); });
}

void singleBoxes(Answers& answers)
{
    answerEach(answers,
               [&s = scene()](std::size_t i)
               {
                   const Imath::Box3d& b = s.imathBoxes[i];
                   return s.frustum.boxInFrustum(b.min.x, b.min.y, b.min.z, b.max.x, b.max.y, b.max.z);
               });
}

void bulkBoxes(Answers& answers) { scene().frustum.classifyBoxes(scene().boxes, answers); }

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

/// Each form maps the boxes of its own kind into others.
struct Mapped
{
    std::vector<AABoundingBox> boxes = std::vector<AABoundingBox>(kCount);
    std::vector<Imath::Box3f> imathBoxes = std::vector<Imath::Box3f>(kCount);
};

Mapped& mapped()
{
    static Mapped mapped;
    return mapped;
}

const AABoundingBox* plainMap()
{
    const krLinear::AffineMatrix& m = scene().matrix;
    for (std::size_t n = 0; n < kCount; ++n)
    {
        const PointFlt oldMin = scene().boxes[n].min();
        const PointFlt oldMax = scene().boxes[n].max();
        const std::array<double, 3> from{oldMin.x, oldMin.y, oldMin.z};
        const std::array<double, 3> to{oldMax.x, oldMax.y, oldMax.z};
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
        mapped().boxes[n].set(PointFlt(min[0], min[1], min[2]), PointFlt(max[0], max[1], max[2]));
    }
    return mapped().boxes.data();
}

const Imath::Box3f* imathMap()
{
    for (std::size_t n = 0; n < kCount; ++n)
        mapped().imathBoxes[n] = Imath::affineTransform(scene().imathFloatBoxes[n], scene().imathMatrix);
    return mapped().imathBoxes.data();
}

const AABoundingBox* map()
{
    for (std::size_t n = 0; n < kCount; ++n)
    {
        mapped().boxes[n] = scene().boxes[n];
        mapped().boxes[n].transform(scene().matrix);
    }
    return mapped().boxes.data();
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

void checkResults()
{
    check(answersOf(plainSpheres) == answersOf(singleSpheres), "spheres one by one");
    check(answersOf(plainSpheres) == answersOf(bulkSpheres), "spheres");
    check(answersOf(plainBoxes) == answersOf(singleBoxes), "boxes one by one");
    check(answersOf(plainBoxes) == answersOf(bulkBoxes), "boxes");
    check(same(grown(), plainGrown()), "growing");
    check(same(grown(), imathGrown()), "growing beside Imath");
    plainMap();
    const std::vector<AABoundingBox> plain = mapped().boxes;
    map();
    check(std::equal(plain.begin(), plain.end(), mapped().boxes.begin(), same), "mapping");
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
    addTest("spheres/krender array", bulkSpheres);
    addTest("boxes/plain", plainBoxes);
    addTest("boxes/Imath", imathBoxes);
    addTest("boxes/krender single", singleBoxes);
    addTest("boxes/krender array", bulkBoxes);
    add("grow/plain", plainGrown);
    add("grow/Imath", imathGrown);
    add("grow/krender", grown);
    add("map/plain", plainMap);
    add("map/Imath", imathMap);
    add("map/krender", map);

    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printRatios();
}
