#include <krender/draw/DrawProcedureData.h>

DrawProcedureData::~DrawProcedureData() = default;
