#include <krender/core/Exception.h>
#include <krender/platform/Linear.h>
#include <krender/platform/String.h>
#include <krender/shading/DataType.h>
#include <krender/shading/FunctionType.h>
#include <krender/shading/IHWShaderManager.h>
#include <krender/shading/ShadingAttribute.h>
#include <krender/shading/ShadingNodeSpec.h>
#include <krender/shading/Statement.h>
#include <krender/shading/StatementCompound.h>
#include <krender/shading/TypedConstant.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <map>
#include <memory>
#include <string>
#include <vector>

using namespace krShadingDag;

namespace
{

/// Each test starts with an empty library and must leave no spec behind.
class SpecLibrary : public testing::Test
{
protected:
    ~SpecLibrary() override
    {
        ShadingNodeSpec::clearLibrary();
        EXPECT_EQ(ShadingNodeSpec::fsNumInstances_ShadingNodeSpec, fBefore);
    }

    static ShadingNodeSpec* make(const char* name, std::initializer_list<DataType> inputs)
    {
        auto* spec = new ShadingNodeSpec(kDeclaration);
        spec->setName(name);
        char input[] = "a";
        for (const DataType type : inputs)
        {
            spec->addInput(type, input, kFullRange);
            ++input[0];
        }
        spec->addOutput(kFloat, "output", kFullRange);
        return spec;
    }

    static ShadingNodeSpec::Attributes ofTypes(std::initializer_list<DataType> types)
    {
        ShadingNodeSpec::Attributes attributes;
        for (const DataType type : types)
            attributes.emplace_back("any", type);
        return attributes;
    }

private:
    std::int32_t fBefore = ShadingNodeSpec::fsNumInstances_ShadingNodeSpec;
};

/// Tells when it ends, and which manager its spec has then.
class WatchedManager : public IHWShaderManager
{
public:
    WatchedManager(const ShadingNodeSpec& spec, std::vector<const IHWShaderManager*>& seen) : fSpec(spec), fSeen(seen)
    {
    }
    ~WatchedManager() override { fSeen.push_back(fSpec.shaderManager()); }

private:
    const ShadingNodeSpec& fSpec;
    std::vector<const IHWShaderManager*>& fSeen;
};

} // namespace

TEST(ShadingAttribute, ConstantsCarryTheirText)
{
    const std::int32_t before = ShadingAttribute::fsNumInstances_ShadingAttribute;
    const TypedConstant value(1.0f, 2.0f);
    const ShadingAttribute constant(value);
    EXPECT_STREQ(constant.name().asChar(), "float2(1.000000,2.000000)");
    EXPECT_STREQ(constant.expression().asChar(), constant.name().asChar());
    EXPECT_TRUE(constant.isConstant() && constant.isValid());

    const ShadingAttribute named("k", value);
    const ShadingAttribute copy(&named);
    EXPECT_STREQ(copy.name().asChar(), "k");
    EXPECT_STREQ(copy.expression().asChar(), "float2(1.000000,2.000000)");
    EXPECT_EQ(copy.typedConstant().getFloat(1), 2.0f);
    static_cast<void>(ShadingAttribute("ended", kFloat));
    EXPECT_EQ(ShadingAttribute::fsNumInstances_ShadingAttribute, before + 3);
}

TEST(ShadingAttribute, IsValidWithANameAndAType)
{
    ShadingAttribute mistyped(TypedConstant(1.0f));
    mistyped.setDataType(kFloat2);
    EXPECT_FALSE(mistyped.isValid());
    EXPECT_TRUE(ShadingAttribute(mistyped).isValid()) << "a copy of a constant takes the type of its value";
    EXPECT_FALSE(ShadingAttribute("", kFloat, kUniformRange).isValid());
    EXPECT_FALSE(ShadingAttribute("a", kInvalidType, kUniformRange).isValid());
    EXPECT_TRUE(ShadingAttribute("a", kFloat).isValid());
    EXPECT_FALSE(ShadingAttribute("a", kFloat, {kFreqConstant, kFreqConstant}).isValid()) << "a constant without value";
}

TEST(ShadingAttribute, AssignmentReleasesHeapValues)
{
    ShadingAttribute attribute(TypedConstant("a text"));
    attribute = ShadingAttribute(TypedConstant(krLinear::ProjMatrix(1.0)));
    attribute.setConstant(TypedConstant("another text")); // a leak would fail under the address sanitizer
    EXPECT_EQ(attribute.dataType(), kString);
}

TEST(FunctionType, ReadsAndPrintsItsName)
{
    for (const char* text : {"regular", "material", "displacement", "light", "texture2D", "texture3D"})
        EXPECT_STREQ(FunctionType(text).toString().asChar(), text);
    EXPECT_EQ(FunctionType("Light"), FunctionType());
    EXPECT_STREQ(FunctionType(static_cast<FunctionType::TypeEnum>(6)).toString().asChar(), "regular");
    EXPECT_FALSE(FunctionType("texture3D").allowedInKRSL());
    EXPECT_TRUE(FunctionType("texture3D").allowedInTSL());
}

TEST_F(SpecLibrary, HeaderStringListsArgumentsInOrder)
{
    ShadingNodeSpec spec(kDeclaration);
    spec.setName("f");
    EXPECT_STREQ(spec.functionHeaderString().asChar(), "f(\n)\n");
    spec.addInput(kFloat3, "a", kUniformRange);
    spec.addOutput(kFloat, "output", kFullRange); // the return value is no argument
    spec.addOutput(kFloat4, "c", {kFreqFragment, kFreqFragment});
    spec.addInput(kInt, "d", {});
    spec.addInput(kInt, "e", {static_cast<CompFreq>(5), kFreqFragment});
    EXPECT_STREQ(spec.functionHeaderString().asChar(),
                 "f(\n\t\tuniform float3 a,\n\t\tout fragment float4 c,\n\t\tinvalid int d,\n\t\tinvalid int e)\n");
}

TEST_F(SpecLibrary, LookUpsFindTheFirstOrADefault)
{
    const std::unique_ptr<ShadingNodeSpec> spec(
        make("f", {kFloat, kSampler2D, kFloat, kSamplerCube, kSampler2D, kInt}));
    EXPECT_THROW(spec->addInput(kBool, "b", kUniformRange), Exception);
    bool found = true;
    EXPECT_STREQ(spec->input("zz", found).name().asChar(), "");
    EXPECT_FALSE(found);
    EXPECT_EQ(&spec->output("a", found), &spec->input("zz", found));
    EXPECT_FALSE(found);
    EXPECT_EQ(&spec->input("b", found), &spec->inputs()[1]);
    EXPECT_TRUE(found);
    EXPECT_EQ(&spec->output("output", found), &spec->outputs()[0]);
    EXPECT_TRUE(found);
    EXPECT_EQ(&spec->input(6), &spec->inputs()[6]);
    EXPECT_EQ(spec->input(7).dataType(), kInvalidType);
    EXPECT_EQ(spec->getOffsetOfInput("b", true), 1u);
    EXPECT_EQ(spec->getOffsetOfInput("zz", true), 0xFFFFFFFF);
    EXPECT_EQ(spec->numInputs(kFloat), 2u);
    EXPECT_EQ(spec->numInputs(kFloat2), 0u);
    EXPECT_EQ(spec->numSamplerInputs(), 3u);
}

TEST_F(SpecLibrary, DuplicateInputIsAddedAndThenReported)
{
    ShadingNodeSpec spec(kDeclaration);
    spec.addInput(kFloat, "aNameTooLongToBeKeptWithinTheString", kFullRange);
    try
    {
        spec.addInput(kFloat2, spec.inputs()[0].name(), kUniformRange); // the name moves when the list grows
        FAIL();
    }
    catch (const Exception& e)
    {
        EXPECT_EQ(e.type, kVerificationFailed);
        EXPECT_STREQ(e.message.asChar(), "input variable already exists: aNameTooLongToBeKeptWithinTheString");
    }
    EXPECT_STREQ(spec.functionHeaderString().asChar(), "(\n\t\tconstant float aNameTooLongToBeKeptWithinTheString,"
                                                       "\n\t\tuniform float2 aNameTooLongToBeKeptWithinTheString)\n");
    EXPECT_EQ(spec.inputs().size(), 2u);
}

TEST_F(SpecLibrary, FindsTheOverloadOfExactlyTheseTypes)
{
    const std::initializer_list<DataType> overloads[] = {{kFloat}, {kFloat3}, {kFloat3, kFloat}, {}};
    std::vector<ShadingNodeSpec*> specs;
    for (const auto& types : overloads)
    {
        specs.push_back(make("f", types));
        EXPECT_EQ(specs.back()->addToLibrary(), specs.back());
    }
    make("e", {kFloat2})->addToLibrary();
    for (const ShadingNodeSpec* spec : specs)
        EXPECT_EQ(ShadingNodeSpec::findSpecInLibrary("f", spec->arguments()), spec);
    for (std::size_t i = 0; i < specs.size(); ++i)
        EXPECT_EQ(ShadingNodeSpec::findSpecInLibrary("f", ofTypes(overloads[i])), specs[i]);
    for (const auto& types : {ofTypes({kFloat2}), ofTypes({kFloat, kFloat}), ofTypes({kFloat3, kFloat, kFloat}),
                              ofTypes({kFloat, kFloat3}), ofTypes({kInt})})
        EXPECT_EQ(ShadingNodeSpec::findSpecInLibrary("f", types), nullptr);

    ShadingNodeSpec::Library::iterator first, last;
    ShadingNodeSpec::findSpecsInLibrary("f", first, last);
    for (const ShadingNodeSpec* spec : specs)
        EXPECT_EQ((first++)->second, spec) << "in the order of registration";
    EXPECT_TRUE(first == last);
}

TEST_F(SpecLibrary, RegisteringAgainCopiesIntoTheEntry)
{
    ShadingNodeSpec* entry = make("f", {kFloat});
    entry->setFunctionType(FunctionType::kLight);
    entry->addToLibrary();
    const std::unique_ptr<ShadingNodeSpec> again(make("f", {kFloat}));
    again->setNodeType(kDefinition);
    for (Statement* statement :
         {again->createPrologStatement(), again->createStatementInCurrentScope(), again->createPrefixStatement()})
        statement->setType(StatementType::Illuminance);
    EXPECT_EQ(again->addToLibrary(), entry);
    EXPECT_EQ(ShadingNodeSpec::fLibrary.size(), 1u);
    EXPECT_EQ(entry->nodeType(), kDefinition);
    EXPECT_EQ(entry->body().size(), 3u);
    EXPECT_EQ(entry->functionType(), FunctionType::kLight) << "not copied";
    EXPECT_FALSE(entry->hasIlluminanceLoop()) << "not computed again";
    EXPECT_EQ(entry->addToLibrary(), entry) << "an entry registered once more stays whole";
    EXPECT_EQ(entry->inputs().size(), 1u);
}

TEST_F(SpecLibrary, MissingNameYieldsItsSuccessor)
{
    ShadingNodeSpec* spec = make("mmm", {});
    spec->createPrologStatement()->setType(StatementType::Illuminance);
    spec->addToLibrary();
    EXPECT_TRUE(spec->hasIlluminanceLoop());
    EXPECT_EQ(ShadingNodeSpec::findSpecInLibrary("aaa"), spec);
    EXPECT_EQ(ShadingNodeSpec::findSpecInLibrary("mmm"), spec);
    EXPECT_EQ(ShadingNodeSpec::findSpecInLibrary("zzz"), nullptr);
}

TEST_F(SpecLibrary, CloneMakesItsArgumentsAnew)
{
    ShadingNodeSpec source(kDefinition);
    source.setName("g");
    source.addOutput(kFloat, "o", kFullRange);
    source.addOutput(kFloat, "output", kFullRange);
    source.addInput(kFloat2, "i", kFullRange);
    source.addInput(kFloat, "k", kFullRange).setConstant(TypedConstant(1.0f));
    source.constants().emplace_back(TypedConstant(1.0f));
    source.setSecondName("h");
    source.setHostFlag(true);
    source.createPrologStatement()->setType(StatementType::Illuminance);
    source.updateIlluminanceLoopFlag();
    ShadingNodeSpec copy(kGenerated);
    copy.addInput(kInt, "gone", kFullRange);
    copy.addOutput(kInt, "goneToo", kFullRange);
    copy.cloneFrom(source);
    EXPECT_STREQ(copy.functionHeaderString().asChar(),
                 "g(\n\t\tconstant float2 i,\n\t\tconstant float 1.000000,\n\t\tout constant float o)\n")
        << "inputs come first";
    EXPECT_EQ(copy.outputs().size(), 2u);
    EXPECT_FALSE(copy.inputs()[1].isConstant()) << "made of name, type and range";
    EXPECT_EQ(copy.nodeType(), kDefinition);
    EXPECT_STREQ(copy.secondName().asChar(), "h");
    EXPECT_EQ(copy.body().size(), 1u);
    EXPECT_FALSE(copy.hasIlluminanceLoop()) << "not computed";
    EXPECT_TRUE(copy.constants().empty()) << "constants stay each spec's own";
    EXPECT_FALSE(copy.hostFlag()) << "as does the host's mark";
}

TEST_F(SpecLibrary, ManagersEndBeforeTheNextOneComes)
{
    std::vector<const IHWShaderManager*> seen;
    {
        ShadingNodeSpec spec(kDeclaration);
        spec.assignShaderManager(new WatchedManager(spec, seen));
        spec.assignShaderManager(spec.shaderManager());
        EXPECT_EQ(seen.size(), 0u) << "assigned to itself";
        spec.assignShaderManager(new WatchedManager(spec, seen));
        EXPECT_EQ(seen.size(), 1u);
        spec.reset();
        EXPECT_EQ(seen.size(), 2u);
        EXPECT_EQ(spec.shaderManager(), nullptr);
        spec.assignShaderManager(new WatchedManager(spec, seen));
    }
    EXPECT_EQ(seen, std::vector<const IHWShaderManager*>(3));
}
