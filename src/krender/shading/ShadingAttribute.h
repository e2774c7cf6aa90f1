#pragma once
#include <krender/Export.h>
#include <krender/platform/String.h>
#include <krender/shading/DataType.h>
#include <krender/shading/TypedConstant.h>

#include <cstdint>

namespace krShadingDag
{

/// How often a value is computed, from least to most.
enum CompFreq : std::uint32_t
{
    kFreqInvalid,
    kFreqConstant,
    kFreqUniform,
    kFreqVertex,
    kFreqFragment,
};

/// The frequencies at which a value may be computed. (0, 0) is the empty range, (1, 4) the full one.
struct CompFreqRange
{
    CompFreq minFreq = kFreqInvalid;
    CompFreq maxFreq = kFreqInvalid;

    friend constexpr bool operator==(const CompFreqRange&, const CompFreqRange&) noexcept = default;
};

inline constexpr CompFreqRange kUniformRange{kFreqUniform, kFreqUniform};
inline constexpr CompFreqRange kVertexRange{kFreqVertex, kFreqVertex};
inline constexpr CompFreqRange kFullRange{kFreqConstant, kFreqFragment};

/// The keyword of a frequency; "invalid" for 0 and for any value outside the enumeration.
[[nodiscard]] KRENDER_EXPORT const char* compFreqName(CompFreq frequency) noexcept;

/// An input, output, constant or argument of a shading function.
class KRENDER_EXPORT ShadingAttribute
{
public:
    /// Nothing is set: the attribute has no name, type, range or value.
    ShadingAttribute();
    /// A variable: its expression is its name, and without a range the range is empty.
    ShadingAttribute(const krString::CString& name, DataType type);
    ShadingAttribute(const krString::CString& name, DataType type, const CompFreqRange& range);
    /// A constant, see setConstant().
    explicit ShadingAttribute(const TypedConstant& constant);
    /// A constant with a name; the expression is the constant's text.
    ShadingAttribute(const krString::CString& name, const TypedConstant& constant);
    /// The copy of a constant has the type of its value, whatever setDataType() has set.
    ShadingAttribute(const ShadingAttribute& other);
    /// Copies the attribute pointed to; null is the caller's fault.
    explicit ShadingAttribute(const ShadingAttribute* other);
    ShadingAttribute& operator=(const ShadingAttribute& other);
    ~ShadingAttribute();

    [[nodiscard]] const krString::CString& name() const noexcept { return fName; }
    [[nodiscard]] DataType dataType() const noexcept { return fDataType; }
    [[nodiscard]] const CompFreqRange& range() const noexcept { return fRange; }
    /// The text that stands for the attribute in generated code.
    [[nodiscard]] const krString::CString& expression() const noexcept { return fExpression; }
    /// A copy of the value, which is of the invalid type unless the attribute is a constant.
    [[nodiscard]] TypedConstant typedConstant() const { return fValue; }
    /// Whether the range is exactly constant to constant and there is a value.
    [[nodiscard]] bool isConstant() const noexcept;
    /// Whether this is a constant with a value of its type, or a variable with a name and a type.
    [[nodiscard]] bool isValid() const noexcept;

    /// Makes this the constant; name and expression become the constant's text.
    void setConstant(const TypedConstant& constant);
    void setDataType(DataType type) noexcept { fDataType = type; }

    /// Live attributes, for leak accounting.
    static std::int32_t fsNumInstances_ShadingAttribute;

private:
    krString::CString fName;
    DataType fDataType = kInvalidType;
    CompFreqRange fRange;
    krString::CString fExpression;
    TypedConstant fValue;
};

} // namespace krShadingDag
