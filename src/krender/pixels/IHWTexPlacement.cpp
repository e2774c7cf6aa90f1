#include <krender/pixels/IHWTexPlacement.h>

IHWTexPlacement::IHWTexPlacement() noexcept = default;

IHWTexPlacement::~IHWTexPlacement() = default;
