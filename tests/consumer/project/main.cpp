#include <vxr/platform/graphics/AffineTransform.h>

int main() { return vxr::AffineTransform::makeScale(2, 2).inverted() ? 0 : 1; }
