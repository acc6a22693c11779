// The class is header-only; this file checks that the header is self-contained.
#include <vxr/host/animation/VXXTextureSession.h>
