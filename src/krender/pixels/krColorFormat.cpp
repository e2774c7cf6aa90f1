#include <krender/pixels/krColorFormat.h>

krColorFormat::~krColorFormat() = default;

void krColorFormat::deallocate(void* /*pixels*/) const {}

void* krColorFormat::allocate(unsigned /*w*/, unsigned /*h*/, unsigned /*d*/) const { return nullptr; }
