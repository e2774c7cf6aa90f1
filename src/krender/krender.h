#pragma once
/// Every public header of the library.
#include <krender/core/Exception.h>
#include <krender/core/HWEnvironment.h>
#include <krender/core/IHWMemoryObject.h>
#include <krender/core/IResource.h>
#include <krender/core/SharedObject.h>
#include <krender/platform/Linear.h>
#include <krender/platform/String.h>
