// The part of the builder that handles placed pictures.

#include "Builder.h"

namespace app::svg {

void Builder::addImage(const XmlElement& element, const Scope& scope, Nodes& out)
{
    const std::string* href = element.attribute("href");
    if (!href)
        href = element.attribute("xlink:href");
    if (!href || trimmed(*href).empty() || !scope.style.isVisible)
        return;
    const auto at = [&](const char* name, double whole) { return length(element, name, whole, scope.style); };
    Picture picture;
    picture.reference = trimmed(*href);
    // What isn't given, or not positive, follows the picture.
    picture.width = at("width", scope.viewport.width);
    picture.height = at("height", scope.viewport.height);
    if (const std::string* aspect = element.attribute("preserveAspectRatio"))
        picture.aspect = parseAspectRatio(*aspect).value_or(AspectRatio {});

    Shape shape;
    shape.element = element.name;
    if (const std::string* id = element.attribute("id"))
        shape.id = *id;
    shape.line = element.line;
    shape.toCanvas
        = scope.toCanvas * Matrix::translation(at("x", scope.viewport.width), at("y", scope.viewport.height));
    if (picture.width > 0 && picture.height > 0)
        shape.outline = Outline::rectangle(0, 0, picture.width, picture.height, 0, 0);
    shape.picture = std::make_shared<const Picture>(std::move(picture));
    countShape(element);
    out.push_back({ std::move(shape) });
}

} // namespace app::svg
