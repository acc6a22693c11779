#pragma once

#include <vxr/platform/base/Object.h>

#include <string>

namespace vxr {

class DataConsumer;
class DataProvider;

/// Turns PostScript into PDF.
class VXR_EXPORT PSConverter final : public Object {
public:
    /// None when there is no import program to convert with.
    static std::shared_ptr<PSConverter> create();

    /// False when the PostScript has an error, is not that of one page with a box, or the consumer refuses;
    /// `reason` is then a sentence.
    bool convert(const DataProvider&, DataConsumer&, std::string* reason = nullptr);
};

} // namespace vxr
