#include <krender/draw/DrawProcedure.h>

#include <krender/core/IResource.h>
#include <krender/platform/String.h>

DrawProcedure::DrawProcedure() = default;

DrawProcedure::DrawProcedure(const krString::CString& name) { IResource::setName(name.asChar()); }

DrawProcedure::~DrawProcedure()
{
    if (fDestroyUserData)
        fDestroyUserData(fUserData);
}

void DrawProcedure::execute(const DrawProcedureData& data)
{
    if (fExecuteCallback)
        fExecuteCallback(*this, data);
}

bool DrawProcedure::isEnabled() const { return fEnabled; }

void DrawProcedure::enable(bool enabled) { fEnabled = enabled; }

void DrawProcedure::setUserData(void* data, DestroyUserData destroy)
{
    if (fUserData && fDestroyUserData)
        fDestroyUserData(fUserData);
    fUserData = data;
    fDestroyUserData = destroy;
}
