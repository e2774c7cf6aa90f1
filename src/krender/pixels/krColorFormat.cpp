#include <krender/pixels/krColorFormat.h>

krColorFormat::~krColorFormat() = default;

void krColorFormat::deallocate(void* /*pixels*/) {}

void* krColorFormat::allocate(unsigned /*w*/, unsigned /*h*/, unsigned /*d*/) { return nullptr; }

void* krColorFormat::allocate(unsigned w, unsigned h, unsigned d) const
{
    return const_cast<krColorFormat*>(this)->allocate(w, h, d);
}
