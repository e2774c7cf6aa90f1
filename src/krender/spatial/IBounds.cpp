#include <krender/spatial/IBounds.h>

constinit float IBounds::fsTolerance = -1.0f;
