#include <krender/shading/DataType.h>

#include "krender/shading/private/DataTypeTable.h"
#include "krender/shading/private/Words.h"

constinit const std::array<DataTypeInfo, kDataTypeCount> dataTypeInfo = krShadingDag::kDataTypes;

constinit const std::array<DataType, 4> floatConversion{kFloat, kFloat2, kFloat3, kFloat4};

DataType convertToDataType(const char* name) noexcept
{
    return name ? krShadingDag::classifyWord(name).dataType : kInvalidType;
}
