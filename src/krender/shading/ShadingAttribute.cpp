#include <krender/shading/ShadingAttribute.h>

#include <krender/platform/String.h>
#include <krender/shading/DataType.h>
#include <krender/shading/TypedConstant.h>

#include <array>

namespace krShadingDag
{

const char* compFreqName(CompFreq frequency) noexcept
{
    static constexpr std::array kNames{"invalid", "constant", "uniform", "vertex", "fragment"};
    return kNames[frequency < kNames.size() ? frequency : kFreqInvalid];
}

constinit std::int32_t ShadingAttribute::fsNumInstances_ShadingAttribute = 0;

ShadingAttribute::ShadingAttribute() { ++fsNumInstances_ShadingAttribute; }

ShadingAttribute::ShadingAttribute(const krString::CString& name, DataType type)
    : ShadingAttribute(name, type, CompFreqRange())
{
}

ShadingAttribute::ShadingAttribute(const krString::CString& name, DataType type, const CompFreqRange& range)
    : fName(name), fDataType(type), fRange(range), fExpression(name)
{
    ++fsNumInstances_ShadingAttribute;
}

ShadingAttribute::ShadingAttribute(const TypedConstant& constant) : ShadingAttribute() { setConstant(constant); }

ShadingAttribute::ShadingAttribute(const krString::CString& name, const TypedConstant& constant)
    : ShadingAttribute(constant)
{
    fName = name;
}

ShadingAttribute::ShadingAttribute(const ShadingAttribute& other)
    : fName(other.fName),
      fDataType(other.isConstant() ? other.fValue.type() : other.fDataType),
      fRange(other.fRange),
      fExpression(other.fExpression),
      fValue(other.fValue)
{
    ++fsNumInstances_ShadingAttribute;
}

ShadingAttribute::ShadingAttribute(const ShadingAttribute* other) : ShadingAttribute(*other) {}

ShadingAttribute& ShadingAttribute::operator=(const ShadingAttribute& other)
{
    if (this == &other)
        return *this;
    fName = other.fName;
    fDataType = other.isConstant() ? other.fValue.type() : other.fDataType;
    fRange = other.fRange;
    fExpression = other.fExpression;
    fValue.release();
    fValue = other.fValue;
    return *this;
}

ShadingAttribute::~ShadingAttribute() { --fsNumInstances_ShadingAttribute; }

bool ShadingAttribute::isConstant() const noexcept
{
    return fRange == CompFreqRange{kFreqConstant, kFreqConstant} && fValue.type() != kInvalidType;
}

bool ShadingAttribute::isValid() const noexcept
{
    if (fRange == CompFreqRange{kFreqConstant, kFreqConstant})
        return fValue.type() != kInvalidType && fValue.type() == fDataType;
    return fName.length() > 0 && fDataType != kInvalidType;
}

void ShadingAttribute::setConstant(const TypedConstant& constant)
{
    fExpression = constant.toString();
    fName = fExpression;
    fRange = {kFreqConstant, kFreqConstant};
    fDataType = constant.type();
    fValue.release();
    fValue = constant;
}

} // namespace krShadingDag
