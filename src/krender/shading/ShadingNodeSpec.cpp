#include <krender/shading/ShadingNodeSpec.h>

#include <krender/core/Exception.h>
#include <krender/platform/String.h>
#include <krender/shading/DataType.h>
#include <krender/shading/IHWShaderManager.h>
#include <krender/shading/ShadingAttribute.h>
#include <krender/shading/Statement.h>
#include <krender/shading/StatementCompound.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

namespace krShadingDag
{

namespace
{

/// What look-ups by name return when they find nothing.
const ShadingAttribute& defaultAttribute()
{
    static const ShadingAttribute attribute;
    return attribute;
}

/// Makes it at load time, so that its instance is counted from the start.
[[maybe_unused]] const ShadingAttribute& gDefaultAttribute = defaultAttribute();

ShadingNodeSpec::Attributes::const_iterator findByName(const ShadingNodeSpec::Attributes& attributes,
                                                       const krString::CString& name)
{
    return std::find_if(attributes.begin(), attributes.end(),
                        [&name](const ShadingAttribute& a) { return krString::equal(a.name(), name); });
}

const ShadingAttribute& byName(const ShadingNodeSpec::Attributes& attributes, const krString::CString& name,
                               bool& found)
{
    const auto place = findByName(attributes, name);
    found = place != attributes.end();
    return found ? *place : defaultAttribute();
}

DataType typeOf(const ShadingAttribute& attribute) { return attribute.dataType(); }
DataType typeOf(const ShadingNodeSpec::Arguments::value_type& argument) { return argument.second.dataType(); }

template <class Candidates>
bool sameTypes(const ShadingNodeSpec::Arguments& arguments, const Candidates& candidates)
{
    return arguments.size() == candidates.size() && std::equal(candidates.begin(), candidates.end(), arguments.begin(),
                                                               [](const auto& candidate, const auto& argument)
                                                               { return typeOf(candidate) == typeOf(argument); });
}

template <class Candidates>
ShadingNodeSpec* findOverload(const krString::CString& name, const Candidates& arguments)
{
    const auto [first, last] = ShadingNodeSpec::fLibrary.equal_range(name);
    const auto match = std::find_if(first, last,
                                    [&arguments](const ShadingNodeSpec::Library::value_type& entry)
                                    { return entry.second->matchArguments(arguments); });
    return match == last ? nullptr : match->second;
}

} // namespace

[[gnu::init_priority(200)]] ShadingNodeSpec::Library ShadingNodeSpec::fLibrary;
constinit std::int32_t ShadingNodeSpec::fsNumInstances_ShadingNodeSpec = 0;

ShadingNodeSpec::ShadingNodeSpec(NodeType nodeType) : fNodeType(nodeType) { ++fsNumInstances_ShadingNodeSpec; }

ShadingNodeSpec::~ShadingNodeSpec()
{
    fShaderManager.reset();
    --fsNumInstances_ShadingNodeSpec;
}

const ShadingAttribute& ShadingNodeSpec::input(const krString::CString& name, bool& found) const
{
    return byName(fInputs, name, found);
}

const ShadingAttribute& ShadingNodeSpec::output(const krString::CString& name, bool& found) const
{
    return byName(fOutputs, name, found);
}

const ShadingAttribute& ShadingNodeSpec::input(unsigned i) const
{
    static const ShadingAttribute missing;
    return i < fInputs.size() ? fInputs[i] : missing;
}

unsigned ShadingNodeSpec::getOffsetOfInput(const krString::CString& name, bool) const
{
    const auto place = findByName(fInputs, name);
    return place == fInputs.end() ? 0xFFFFFFFF : static_cast<unsigned>(place - fInputs.begin());
}

unsigned ShadingNodeSpec::numInputs(DataType type) const
{
    return static_cast<unsigned>(std::count_if(fInputs.begin(), fInputs.end(),
                                               [type](const ShadingAttribute& a) { return a.dataType() == type; }));
}

unsigned ShadingNodeSpec::numSamplerInputs() const
{
    return static_cast<unsigned>(std::count_if(fInputs.begin(), fInputs.end(),
                                               [](const ShadingAttribute& a) { return isSampler(a.dataType()); }));
}

krString::CString ShadingNodeSpec::functionHeaderString() const
{
    std::string header(fName.view());
    header += "(\n";
    const char* separator = "\t\t";
    for (const auto& [role, attribute] : fArguments)
    {
        header += separator;
        if (role == kOutput)
            header += "out ";
        header.append(compFreqName(attribute.range().minFreq)).append(" ");
        header.append(dataTypeName(attribute.dataType())).append(" ");
        header += attribute.name().view();
        separator = ",\n\t\t";
    }
    header += ")\n";
    return krString::CString(std::move(header));
}

bool ShadingNodeSpec::matchArguments(const Attributes& candidates) const { return sameTypes(fArguments, candidates); }

bool ShadingNodeSpec::matchArguments(const Arguments& candidates) const { return sameTypes(fArguments, candidates); }

ShadingAttribute& ShadingNodeSpec::addInput(DataType type, const krString::CString& name, const CompFreqRange& range)
{
    const bool taken = findByName(fInputs, name) != fInputs.end();
    appendInput(name, type, range);
    if (taken) // the name may have been that of an input, which has moved
        verifyAlways(false, krString::plus("input variable already exists: ", fInputs.back().name()));
    return fInputs.back();
}

ShadingAttribute& ShadingNodeSpec::addOutput(DataType type, const krString::CString& name, const CompFreqRange& range)
{
    appendOutput(name, type, range);
    return fOutputs.back();
}

void ShadingNodeSpec::appendInput(const krString::CString& name, DataType type, const CompFreqRange& range)
{
    const ShadingAttribute attribute(name, type, range);
    fInputs.push_back(attribute);
    fArguments.emplace_back(kInput, attribute);
}

void ShadingNodeSpec::appendOutput(const krString::CString& name, DataType type, const CompFreqRange& range)
{
    const ShadingAttribute attribute(name, type, range);
    fOutputs.push_back(attribute);
    if (krString::notEqual(attribute.name(), "output"))
        fArguments.emplace_back(kOutput, attribute);
}

Statement* ShadingNodeSpec::createPrologStatement() { return fBody.appendStatement(nullptr); }

Statement* ShadingNodeSpec::createStatementInCurrentScope() { return fBody.appendStatement(nullptr); }

Statement* ShadingNodeSpec::createPrefixStatement() { return fBody.appendStatement(nullptr); }

void ShadingNodeSpec::updateIlluminanceLoopFlag()
{
    fHasIlluminanceLoop = fBody.findStatement(StatementType::Illuminance) != nullptr;
}

void ShadingNodeSpec::assignShaderManager(IHWShaderManager* manager)
{
    if (manager == fShaderManager.get())
        return;
    std::unique_ptr<IHWShaderManager> adopted(manager);
    fShaderManager.reset();
    fShaderManager = std::move(adopted);
}

void ShadingNodeSpec::releaseShaderManager() { fShaderManager.reset(); }

void ShadingNodeSpec::reset()
{
    fInputs.clear();
    fOutputs.clear();
    fArguments.clear();
    fBody.clear();
    releaseShaderManager();
}

void ShadingNodeSpec::cloneFrom(const ShadingNodeSpec& other)
{
    if (this == &other)
        return;
    reset();
    fName = other.fName;
    fSecondName = other.fSecondName;
    fNodeType = other.fNodeType;
    for (const ShadingAttribute& attribute : other.fInputs)
        appendInput(attribute.name(), attribute.dataType(), attribute.range());
    for (const ShadingAttribute& attribute : other.fOutputs)
        appendOutput(attribute.name(), attribute.dataType(), attribute.range());
    fBody.cloneFrom(other.fBody);
}

void ShadingNodeSpec::findSpecsInLibrary(const krString::CString& name, Library::iterator& first,
                                         Library::iterator& last)
{
    std::tie(first, last) = fLibrary.equal_range(name);
}

ShadingNodeSpec* ShadingNodeSpec::findSpecInLibrary(const krString::CString& name)
{
    const auto place = fLibrary.lower_bound(name);
    return place == fLibrary.end() ? nullptr : place->second;
}

ShadingNodeSpec* ShadingNodeSpec::findSpecInLibrary(const krString::CString& name, const Attributes& arguments)
{
    return findOverload(name, arguments);
}

ShadingNodeSpec* ShadingNodeSpec::findSpecInLibrary(const krString::CString& name, const Arguments& arguments)
{
    return findOverload(name, arguments);
}

ShadingNodeSpec* ShadingNodeSpec::addToLibrary()
{
    if (ShadingNodeSpec* registered = findOverload(fName, fArguments))
    {
        registered->cloneFrom(*this);
        return registered;
    }
    fLibrary.emplace(fName, this);
    updateIlluminanceLoopFlag();
    return this;
}

void ShadingNodeSpec::clearLibrary()
{
    // Emptied first: a manager that ends with its spec may look into the library.
    const Library library = std::exchange(fLibrary, {});
    for (const auto& [name, spec] : library)
        delete spec;
}

} // namespace krShadingDag
