#pragma once

/// Marks what the shared library offers to its hosts; everything else keeps hidden visibility.
#define KRENDER_EXPORT __attribute__((visibility("default")))
