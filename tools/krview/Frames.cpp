#include "Frames.h"

#include <krview/stage/Stage.h>

#include <krender/core/IHWMemoryObject.h>

#include <cstdio>

void printStats(const Stage& stage, unsigned frames)
{
    const Placements& placements = stage.placements();
    std::printf("frames %u\nobjects %zu\nculled %zu\nuploads %llu\nuploaded bytes %llu\ndevice bytes %u\n", frames,
                placements.count(), placements.count() - placements.visibleCount(),
                static_cast<unsigned long long>(stage.upload().uploads()),
                static_cast<unsigned long long>(stage.upload().bytes()), IHWMemoryObject::fsMemoryUsage);
}
