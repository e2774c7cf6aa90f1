#pragma once

/// Marks what this library offers to its hosts; everything else, and all that it links, keeps hidden visibility.
#define KRENDER_TARGETS_EXPORT __attribute__((visibility("default")))
