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
    Bad, ///< is no value of the property; the style stays as it was
    NotApplied, ///< has an effect that the model can't show
};

/// All there is to know about a property.
struct PropertyRow {
    std::string_view name;
    bool isInherited = false;
    bool isAttribute = true; ///< can stand as an attribute of its own

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
