#pragma once

#include <vxr/platform/graphics/Geometry.h>
