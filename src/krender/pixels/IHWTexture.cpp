#include <krender/pixels/IHWTexture.h>

IHWTexture::~IHWTexture() = default;

bool IHWTexture::bind() { return false; }

bool IHWTexture::unbind() { return false; }

bool IHWTexture::generateMipMaps() { return false; }

void IHWTexture::setImportance(unsigned importance) { fImportance = importance; }
