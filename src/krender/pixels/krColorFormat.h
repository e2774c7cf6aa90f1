#pragma once
#include <krender/Export.h>
#include <krender/pixels/krSysPixelFormat.h>

/// The base of formats that allocate their own images. By itself it has no storage to give.
class KRENDER_EXPORT krColorFormat : public krSysPixelFormat
{
public:
    ~krColorFormat() override;

    /// Does nothing.
    void deallocate(void* pixels) override;
    using krSysPixelFormat::deallocate;

    /// Storage for an image of w x h x d pixels.
    /// @return  storage that the caller owns until deallocate; null here
    [[nodiscard]] virtual void* allocate(unsigned w, unsigned h, unsigned d);
    /// Calls the virtual form, which must not modify a format that was defined const.
    [[nodiscard]] void* allocate(unsigned w, unsigned h, unsigned d) const;

protected:
    using krSysPixelFormat::krSysPixelFormat;
};
