#include <krender/geometry/GeometryCustomData.h>

GeometryCustomData::GeometryCustomData() = default;

GeometryCustomData::~GeometryCustomData() = default;

bool GeometryCustomData::dirty(TgeomDirtyDetail*) { return false; }
