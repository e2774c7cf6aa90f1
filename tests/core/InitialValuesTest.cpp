#include <krender/core/HWEnvironment.h>
#include <krender/core/IHWMemoryObject.h>
#include <krender/core/IResource.h>
#include <krender/core/Ref.h>
#include <krender/draw/DrawProcedure.h>
#include <krender/geometry/Geometry.h>
#include <krender/geometry/GeometryData.h>
#include <krender/geometry/ParticleData.h>
#include <krender/platform/String.h>
#include <krender/shading/DataType.h>
#include <krender/shading/ShadingAttribute.h>
#include <krender/shading/ShadingNodeSpec.h>
#include <krender/shading/TypedConstant.h>
#include <krender/window/SimpleWindow.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

using namespace krShadingDag;

namespace
{

// Read before any test runs: what the library is loaded with.
const std::uint32_t gFirstID = IResource::fsUniqueIDGenerator;

/// Shows what a resource keeps for its host.
class OpenResource : public IResource
{
public:
    using IResource::fResourceKind;
};

class OpenProcedure : public DrawProcedure
{
public:
    using DrawProcedure::fSpare;
};

class OpenParticles : public ParticleData
{
public:
    using ParticleData::fReserved;
    using ParticleData::fSpare;
    using ParticleData::ParticleData;
};

class OpenWindow : public SimpleWindow
{
public:
    using SimpleWindow::fSpare;
};

} // namespace

TEST(InitialValues, OfTheEnvironment)
{
    using E = HWEnvironment;
    for (const krString::CString* text :
         {&E::enable_hwr_cg_programs, &E::env_desired_profile, &E::enable_arbvp1, &E::shaderFileName})
        EXPECT_STREQ(text->asChar(), "");
    EXPECT_STREQ(E::teka_path.asChar(), "");

    struct Switch
    {
        const char* name;
        bool value;
    };
    for (const Switch& s : {Switch{"teka_batch_mode", E::teka_batch_mode},
                            {"teka_enable_batched_hw_materials", E::teka_enable_batched_hw_materials},
                            {"teka_enable_tsl_echo", E::teka_enable_tsl_echo},
                            {"teka_disable_hwr_multisampling", E::teka_disable_hwr_multisampling},
                            {"teka_block_allocate_strips", E::teka_block_allocate_strips},
                            {"teka_use_primitive_restart", E::teka_use_primitive_restart},
                            {"teka_use_draw_range_elements", E::teka_use_draw_range_elements},
                            {"force_hwRenderer_supported", E::force_hwRenderer_supported},
                            {"enable_hwr_tsl_flag", E::enable_hwr_tsl_flag},
                            {"disable_hwr_shadow_texture_flag", E::disable_hwr_shadow_texture_flag},
                            {"disable_hwr_point_smooth_flag", E::disable_hwr_point_smooth_flag},
                            {"disable_hwr_texture_shader_flag", E::disable_hwr_texture_shader_flag}})
        EXPECT_FALSE(s.value) << s.name;
    EXPECT_EQ(E::teka_max_vbo_data_size, 0);
    EXPECT_EQ(E::teka_enable_vbo, 2);
}

TEST(InitialValues, OfResources)
{
    const auto resource = makeRef<OpenResource>();
    EXPECT_STREQ(resource->name(), "");
    EXPECT_TRUE(resource->valid());
    EXPECT_TRUE(resource->isDirty());
    EXPECT_EQ(resource->fResourceKind, 6);
}

TEST(InitialValues, OfWhatIsSpare)
{
    EXPECT_EQ(makeRef<OpenProcedure>()->fSpare, nullptr);
    const auto stream =
        makeRef<GeometryData>("", GeometryData::vertex, GeometryData::float32, 3u, 0u, nullptr, false, false);
    const auto particles =
        makeRef<OpenParticles>(ParticleData::single, 1.0f, *stream, *stream, nullptr, nullptr, nullptr);
    EXPECT_EQ(particles->fReserved, 0u);
    EXPECT_FALSE(particles->fSpare);
    const OpenWindow window;
    EXPECT_EQ(window.fSpare[0], 0);
    EXPECT_EQ(window.fSpare[1], 0);
}

TEST(InitialValues, OfTheCounters)
{
    EXPECT_EQ(gFirstID, 1u);
    EXPECT_EQ(IHWMemoryObject::fsMemoryUsage, 0u);
    EXPECT_EQ(Geometry::fsNumInstances_Geometry, 0);
    EXPECT_EQ(ShadingNodeSpec::fsNumInstances_ShadingNodeSpec, 0);
    EXPECT_EQ(ShadingAttribute::fsNumInstances_ShadingAttribute, 1) << "the default attribute, with its value";
    EXPECT_EQ(TypedConstant::fsNumInstances_TypedConstant, 1);
}

TEST(InstanceCounters, FollowEveryConstructorAndDestructor)
{
    const std::int32_t before = ShadingAttribute::fsNumInstances_ShadingAttribute;
    {
        const ShadingAttribute empty;
        const ShadingAttribute variable("a", kFloat);
        const ShadingAttribute ranged("a", kFloat, kUniformRange);
        const ShadingAttribute constant(TypedConstant(1.0f));
        const ShadingAttribute named("a", TypedConstant(1.0f));
        const ShadingAttribute copy(empty);
        const ShadingAttribute copied(&empty);
        EXPECT_EQ(ShadingAttribute::fsNumInstances_ShadingAttribute, before + 7);
        const ShadingNodeSpec spec(kGenerated);
        EXPECT_EQ(ShadingNodeSpec::fsNumInstances_ShadingNodeSpec, 1);
        const auto geometry = makeRef<Geometry>();
        EXPECT_EQ(Geometry::fsNumInstances_Geometry, 1);
    }
    EXPECT_EQ(ShadingAttribute::fsNumInstances_ShadingAttribute, before);
    EXPECT_EQ(ShadingNodeSpec::fsNumInstances_ShadingNodeSpec, 0);
    EXPECT_EQ(Geometry::fsNumInstances_Geometry, 0);
}
