#pragma once
#include <krender/Export.h>

/// Describes the current draw to a draw procedure. Empty here: the host derives from it.
class KRENDER_EXPORT DrawProcedureData
{
public:
    virtual ~DrawProcedureData();
};
