#pragma once
#include <krender/Export.h>
#include <krender/core/IResource.h>

struct TgeomDirtyDetail;

/// An attachment of a logical group, which finds it by its name().
class KRENDER_EXPORT GeometryCustomData : public IResource
{
public:
    GeometryCustomData();
    ~GeometryCustomData() override;

    /// Whether a change concerns the attachment; false here.
    /// @param detail  describes the change; its type is the host's
    [[nodiscard]] virtual bool dirty(TgeomDirtyDetail* detail);
    /// What kind of attachment this is. For the host; the library does not call it.
    [[nodiscard]] virtual const char* kind() const = 0;
};
