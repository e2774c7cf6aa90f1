#pragma once
#include <krender/core/IResource.h>

struct TgeomDirtyDetail;

/// A named attachment of a logical group, which finds it by its name().
class KRENDER_EXPORT GeometryCustomData : public IResource
{
public:
    GeometryCustomData();
    ~GeometryCustomData() override;

    /// Whether the change that the detail describes, of a type that the host defines, touches the attachment. Never, here.
    [[nodiscard]] virtual bool dirty(TgeomDirtyDetail* detail);
    /// What kind of attachment this is, for the host that made it; the library does not read it.
    [[nodiscard]] virtual const char* kind() const = 0;
};
