#pragma once
#include <krender/shading/TypedConstant.h>

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
    ShadingAttribute();
    /// The expression is the name.
    ShadingAttribute(const krString::CString& name, DataType type);
    ShadingAttribute(const krString::CString& name, DataType type, const CompFreqRange& range);
    explicit ShadingAttribute(const TypedConstant& constant);
    /// A named constant; the expression is the constant's text.
    ShadingAttribute(const krString::CString& name, const TypedConstant& constant);
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
    /// A copy of the value; without one unless the attribute is a constant.
    [[nodiscard]] TypedConstant typedConstant() const { return fValue; }
    /// Whether the range is exactly "constant" and there is a value.
    [[nodiscard]] bool isConstant() const noexcept;
    /// Whether the attribute can be used: a constant whose value is of its type, or a named variable with a type.
    [[nodiscard]] bool isValid() const noexcept;

    /// Becomes the constant; name and expression are the constant's text.
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
