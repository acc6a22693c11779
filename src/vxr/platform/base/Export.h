#pragma once

/// Marks what the shared library shows to its hosts; everything else stays hidden.
#define VXR_EXPORT __attribute__((visibility("default")))
