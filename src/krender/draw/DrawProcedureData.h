#pragma once
#include <krender/Export.h>

/// What a draw procedure is told about the current draw. Empty here: the host derives its own from it.
class KRENDER_EXPORT DrawProcedureData
{
public:
    virtual ~DrawProcedureData();
};
