#include <krender/shading/TypedConstant.h>

#include <krender/core/Exception.h>
#include <krender/platform/Linear.h>
#include <krender/platform/String.h>
#include <krender/shading/DataType.h>

#include <array>
#include <charconv>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>

namespace krShadingDag
{

namespace
{

bool folds(DataType type) noexcept { return isFloatVector(type); }

void appendFloat(std::string& out, float value)
{
    std::array<char, 64> buffer; // the largest float has 39 digits before its six decimals
    const auto end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), double{value}, std::chars_format::fixed, 6).ptr;
    out.append(buffer.data(), end);
}

/// The first `count` components, each printed by `append`, between commas.
template <class Append>
void appendList(std::string& out, const char* open, unsigned count, const char* close, Append append)
{
    out += open;
    for (unsigned i = 0; i < count; ++i)
    {
        if (i > 0)
            out += ',';
        append(i);
    }
    out += close;
}

} // namespace

constinit std::int32_t TypedConstant::fsNumInstances_TypedConstant = 0;

TypedConstant::TypedConstant() noexcept { ++fsNumInstances_TypedConstant; }

TypedConstant::TypedConstant(float x) noexcept : TypedConstant() { setFloats(kFloat, x, 0, 0, 0); }

TypedConstant::TypedConstant(float x, float y) noexcept : TypedConstant() { setFloats(kFloat2, x, y, 0, 0); }

TypedConstant::TypedConstant(float x, float y, float z) noexcept : TypedConstant() { setFloats(kFloat3, x, y, z, 0); }

TypedConstant::TypedConstant(float x, float y, float z, float w) noexcept : TypedConstant()
{
    setFloats(kFloat4, x, y, z, w);
}

TypedConstant::TypedConstant(const krLinear::ProjMatrix& matrix) : TypedConstant() { set(matrix); }

TypedConstant::TypedConstant(const krString::CString& text)
{
    fValue.text = new krString::CString(text);
    fType = kString;
}

TypedConstant::TypedConstant(const TypedConstant& other) : TypedConstant() { *this = other; }

TypedConstant& TypedConstant::operator=(const TypedConstant& other)
{
    if (this == &other)
        return *this;
    if (other.ownsMatrix())
        fValue.matrix = new krLinear::ProjMatrix(*other.fValue.matrix);
    else if (other.fType == kString)
        fValue.text = new krString::CString(*other.fValue.text);
    else
        fValue = other.fValue;
    fType = other.fType;
    return *this;
}

TypedConstant::~TypedConstant()
{
    release();
    --fsNumInstances_TypedConstant;
}

krString::CString TypedConstant::toString() const
{
    if (fType == kString)
        return *fValue.text;
    std::string text;
    const auto printFloat = [&](unsigned i) { appendFloat(text, fValue.floats[i]); };
    const auto printInt = [&](unsigned i) { text += std::to_string(fValue.words[i]); };
    if (fType == kFloat)
        printFloat(0);
    else if (isFloatVector(fType))
        appendList(text, (std::string(dataTypeName(fType)) + "(").c_str(), maxDim(fType), ")", printFloat);
    else if (fType == kInt)
        printInt(0);
    else if (fType == kInt2 || fType == kInt3 || fType == kInt4)
        appendList(text, "{", maxDim(fType), "}", printInt);
    return krString::CString(std::move(text));
}

void TypedConstant::set(float x)
{
    release();
    setFloats(kFloat, x, 0, 0, 0);
}

void TypedConstant::set(float x, float y)
{
    release();
    setFloats(kFloat2, x, y, 0, 0);
}

void TypedConstant::set(float x, float y, float z)
{
    release();
    setFloats(kFloat3, x, y, z, 0);
}

void TypedConstant::set(float x, float y, float z, float w)
{
    release();
    setFloats(kFloat4, x, y, z, w);
}

void TypedConstant::set(const krString::CString& text)
{
    auto* copy = new krString::CString(text); // before the release: the text may be this constant's own
    release();
    fValue.text = copy;
    fType = kString;
}

void TypedConstant::set(const krLinear::ProjMatrix& matrix)
{
    auto* copy = new krLinear::ProjMatrix(matrix);
    release();
    fValue.matrix = copy;
    fType = kMatrix4;
}

void TypedConstant::assignBool(bool value) noexcept
{
    fValue.words[0] = value ? 1 : 0;
    fType = kBool;
}

void TypedConstant::assignFloats(int count, float a, float b, float c, float d)
{
    if (count < 1 || count > 4)
        throw Exception(kVerificationFailed, "");
    setFloats(static_cast<DataType>(kFloat + static_cast<unsigned>(count) - 1), a, b, c, d);
}

void TypedConstant::assignInts(int count, int a, int b, int c, int d)
{
    if (count < 1 || count > 4)
        throw Exception(kVerificationFailed, "");
    const int components[] = {a, b, c, d};
    for (int i = 0; i < count; ++i)
        fValue.words[i] = static_cast<std::uint32_t>(components[i]);
    fType = static_cast<DataType>(kInt + static_cast<unsigned>(count) - 1);
}

void TypedConstant::setFloat(unsigned i, float value) noexcept
{
    if (isFloatVector(fType) && i < dataTypeNumFloats(fType))
        fValue.floats[i] = value;
}

void TypedConstant::release() noexcept
{
    if (ownsMatrix())
    {
        delete fValue.matrix;
        fValue.matrix = nullptr;
    }
    else if (fType == kString)
    {
        delete fValue.text;
        fValue.text = nullptr;
    }
    fType = kInvalidType;
}

void TypedConstant::setFloats(DataType type, float x, float y, float z, float w) noexcept
{
    const float components[] = {x, y, z, w};
    for (unsigned i = 0; i < dataTypeNumFloats(type); ++i)
        fValue.floats[i] = components[i];
    fType = type;
}

template <class Operation>
TypedConstant TypedConstant::foldComponents(const TypedConstant& other, Operation operation, bool& ok) const
{
    TypedConstant result;
    ok = fType == other.fType && folds(fType);
    if (!ok)
        return result;
    result.fType = fType;
    for (unsigned i = 0; i < dataTypeNumFloats(fType); ++i)
        result.fValue.floats[i] = operation(fValue.floats[i], other.fValue.floats[i]);
    return result;
}

TypedConstant TypedConstant::plus(const TypedConstant& other, bool& ok) const
{
    return foldComponents(other, std::plus<float>(), ok);
}

TypedConstant TypedConstant::minus(const TypedConstant& other, bool& ok) const
{
    return foldComponents(other, std::minus<float>(), ok);
}

TypedConstant TypedConstant::multiply(const TypedConstant& other, bool& ok) const
{
    if (fType == other.fType || !folds(fType) || !folds(other.fType) || (fType != kFloat && other.fType != kFloat))
        return foldComponents(other, std::multiplies<float>(), ok);
    const TypedConstant& scalar = fType == kFloat ? *this : other;
    TypedConstant result = fType == kFloat ? other : *this;
    for (unsigned i = 0; i < dataTypeNumFloats(result.fType); ++i)
        result.fValue.floats[i] *= scalar.fValue.floats[0];
    ok = true;
    return result;
}

TypedConstant TypedConstant::divide(const TypedConstant& other, bool& ok) const
{
    if (fType == other.fType || other.fType != kFloat)
        return foldComponents(other, std::divides<float>(), ok);
    // Deliberate: the divisor is divided by itself, and the dividend plays no part.
    ok = other.fValue.floats[0] != 0.0f;
    return ok ? TypedConstant(1.0f) : TypedConstant();
}

} // namespace krShadingDag
