#pragma once

class QPDF;

namespace vxr::importing {

/// Gives the JPEG pictures of a document the profiles that they carry: what writes documents says device
/// colours of all of them. Their bytes stay as they are.
void honourJPEGProfiles(QPDF& document);

} // namespace vxr::importing
