// Surfaces, as opaque objects.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

typedef struct __attribute__((objc_bridge(id))) __IOSurface* IOSurfaceRef;
