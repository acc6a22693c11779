// The session is header-only; this shows that it stands on its own includes.
#include <vxr/host/animation/VXXTextureSession.h>
