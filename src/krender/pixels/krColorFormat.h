#pragma once
#include <krender/pixels/krSysPixelFormat.h>

/// The base of formats that allocate their own images. By itself it has no memory to give.
class KRENDER_EXPORT krColorFormat : public krSysPixelFormat
{
public:
    ~krColorFormat() override;

    /// Does nothing.
    void deallocate(void* pixels) const override;
    /// @return  an image of w x h x d pixels, owned by the caller until deallocate; null here
    [[nodiscard]] virtual void* allocate(unsigned w, unsigned h, unsigned d) const;

protected:
    using krSysPixelFormat::krSysPixelFormat;
};
