#pragma once
#include <krender/Export.h>
#include <krender/platform/Linear.h>
#include <krender/platform/String.h>
#include <krender/shading/DataType.h>

#include <cstdint>

namespace krShadingDag
{

/// A value of one data type: a literal, or what constants fold to. Matrices and texts stand on the heap and belong to the
/// constant.
class KRENDER_EXPORT TypedConstant
{
public:
    /// No value: the type is invalid.
    TypedConstant() noexcept;
    explicit TypedConstant(float x) noexcept;
    TypedConstant(float x, float y) noexcept;
    TypedConstant(float x, float y, float z) noexcept;
    TypedConstant(float x, float y, float z, float w) noexcept;
    /// A matrix4.
    explicit TypedConstant(const krLinear::ProjMatrix& matrix);
    /// A string. Deliberate: this constructor alone does not count an instance, so the counter ends one lower for every
    /// string constant made this way.
    explicit TypedConstant(const krString::CString& text);
    TypedConstant(const TypedConstant& other);
    /// Copies type and value. What this constant held is not released: assign only into one without a heap value, or
    /// call release() first.
    TypedConstant& operator=(const TypedConstant& other);
    ~TypedConstant();

    [[nodiscard]] DataType type() const noexcept { return fType; }
    /// The value of a bool; not checked.
    [[nodiscard]] bool getBool() const noexcept { return fValue.words[0] != 0; }
    /// Component i of an int type; not checked.
    [[nodiscard]] std::uint32_t getInt(unsigned i) const noexcept { return fValue.words[i]; }
    /// Component i of a float type; not checked.
    [[nodiscard]] float getFloat(unsigned i) const noexcept { return fValue.floats[i]; }
    /// The matrix of a matrix3 or matrix4, owned by the constant; meaningless for every other type.
    [[nodiscard]] const krLinear::ProjMatrix* matrix() const noexcept { return fValue.matrix; }
    /// The text of a string, owned by the constant; meaningless for every other type.
    [[nodiscard]] const krString::CString* stringValue() const noexcept { return fValue.text; }
    /// The value in the language's syntax: floats with six decimals, ints as unsigned numbers, a string as it is; empty
    /// for every other type.
    [[nodiscard]] krString::CString toString() const;

    void set(float x);
    void set(float x, float y);
    void set(float x, float y, float z);
    void set(float x, float y, float z, float w);
    void set(const krString::CString& text);
    void set(const krLinear::ProjMatrix& matrix);

    // The setters above release what was held. The three assignments release nothing: they are for constants without a
    // heap value.
    void assignBool(bool value) noexcept;
    /// Makes a float to float4 of the first components; the others are not written.
    /// @param count  1 to 4; anything else throws an Exception of type kVerificationFailed with an empty message
    void assignFloats(int count, float a, float b, float c, float d);
    /// The same for int to int4.
    void assignInts(int count, int a, int b, int c, int d);

    /// Writes component i; does nothing unless the type is a float vector that has it.
    void setFloat(unsigned i, float value) noexcept;
    /// Frees what stands on the heap; the constant then has no value.
    void release() noexcept;

    // Constant folding of float to float4. Where nothing folds, ok is false and the result has no value.
    [[nodiscard]] TypedConstant plus(const TypedConstant& other, bool& ok) const;
    [[nodiscard]] TypedConstant minus(const TypedConstant& other, bool& ok) const;
    /// Component by component, or all components by a scalar on either side.
    [[nodiscard]] TypedConstant multiply(const TypedConstant& other, bool& ok) const;
    /// Component by component where the types are equal. Deliberate: a constant of any other type divided by a scalar
    /// float gives the scalar 1.0, whatever its value; divided by 0 it gives none.
    [[nodiscard]] TypedConstant divide(const TypedConstant& other, bool& ok) const;

    /// How many constants live, but for the strings that were not counted; for leak accounting.
    static std::int32_t fsNumInstances_TypedConstant;

private:
    union Value
    {
        float floats[4];
        std::uint32_t words[4];
        krLinear::ProjMatrix* matrix;
        krString::CString* text;
    };

    template <class Operation>
    TypedConstant foldComponents(const TypedConstant& other, Operation operation, bool& ok) const;
    void setFloats(DataType type, float x, float y, float z, float w) noexcept;
    [[nodiscard]] bool ownsMatrix() const noexcept { return fType == kMatrix3 || fType == kMatrix4; }

    Value fValue{};
    DataType fType = kInvalidType;
};

} // namespace krShadingDag
