#pragma once

#include "Property.h"
#include "Style.h"

namespace app::svg {

/// What reading one element's declarations needs.
struct StyleReading {
    Style& style;
    const Style& parent;
    const Viewport& viewport;
};

enum class ReadResult {
    Read,
    Bad, ///< not a value of the property; the style is unchanged
    NotApplied, ///< has an effect that the model can't show
};

/// Description of a property.
struct PropertyRow {
    std::string_view name;
    bool isInherited = false;
    bool isAttribute = true; ///< is also a presentation attribute

    // Of properties that the model can show.
    void (*copy)(Style& to, const Style& from) = nullptr;
    bool (*read)(StyleReading&, const std::string& text) = nullptr; ///< false for a bad value

    // Of the others.
    std::string_view harmless {}; ///< values without an effect, lower case, separated by `|`
    std::string_view complaint {}; ///< the warning; a general one when empty

    ReadResult readValue(StyleReading&, const std::string& text) const;
    std::string warning() const;
};

const PropertyRow& rowOf(Property);

} // namespace app::svg
