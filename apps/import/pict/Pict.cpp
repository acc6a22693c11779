#include <apps/import/pict/Pict.h>

namespace vxr::importing {

bool canReadPict() { return false; }

bool convertPictToPDF(std::span<const std::byte>, std::string&, std::string& error)
{
    error = "PICT files can't be read.";
    return false;
}

} // namespace vxr::importing
