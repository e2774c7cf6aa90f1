// Must not compile: each use would get storage that unref() cannot free.
#include <krender/core/SharedObject.h>

class alignas(64) OverAligned : public krSharedObject::SharedObject
{
};

OverAligned* make()
{
#if defined(PLAIN)
    return new OverAligned;
#elif defined(NOTHROW)
    return new (std::nothrow) OverAligned;
#elif defined(ALIGNED)
    return new (std::align_val_t{64}) OverAligned;
#endif
}
