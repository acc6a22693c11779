#pragma once

#include <vxr/host/archiving/VXAXMLNode.h>
#include <vxr/platform/base/Object.h>

#include <map>
#include <unordered_map>

struct _xmlDoc;

namespace vxr {

/// A copy of an element that nobody here knows, kept to be written back as it was.
class VXR_EXPORT VXAXMLKeptElement {
public:
    explicit VXAXMLKeptElement(const VXAXMLNode*);

    /// Gives an empty element the kept one's name, attributes and content.
    void copyTo(VXAXMLNode*) const;

private:
    std::shared_ptr<_xmlDoc> mDocument; ///< with the element as its root
};

/// What readers have left of an element: attributes and elements that none of them asked for, on the element
/// itself and below it, and elements of classes that nobody knows. Objects' own elements keep theirs.
class VXR_EXPORT VXAXMLKeptParts {
public:
    /// Counts elements of a name among their siblings; in their order, each is counted once.
    class Counter;

    static VXAXMLKeptParts partsOf(const VXAXMLNode*); ///< once the node has been read

    bool isEmpty() const { return mParts.empty(); }
    /// Puts them where they were. What is there already stays, and what stood on an element that is gone is
    /// left out.
    void appendTo(VXAXMLNode*) const;
    /// Adds those of an element below `ancestor`.
    void addPartsOfNodeBelow(const VXAXMLKeptParts&, const VXAXMLNode*, const VXAXMLNode* ancestor, Counter&);

private:
    struct Step {
        std::string name, uri;
        int ordinal; ///< among elements of that name
    };
    using Path = std::vector<Step>;
    struct Part {
        Path path; ///< from the element down
        std::shared_ptr<_xmlDoc> rest; ///< with the attributes and children on its root
    };
    class Finder;

    static Path pathTo(const VXAXMLNode*, const VXAXMLNode* ancestor, Counter&);
    void collect(const VXAXMLNode*, const VXAXMLNode* top, Counter&);

    std::vector<Part> mParts;
};

class VXR_EXPORT VXAXMLKeptParts::Counter {
public:
    int ordinalOf(const VXAXMLNode*); ///< among the siblings before it that have its name

private:
    struct Place {
        const VXAXMLNode* node;
        int ordinal;
    };
    std::map<std::pair<const VXAXMLNode*, std::string>, Place> mLast; ///< by parent and name
};

/// Kept parts by the objects that were read from their elements. They go with the object.
class VXR_EXPORT VXAXMLKeptPartsOfObjects {
public:
    void setParts(const std::shared_ptr<Object>&, VXAXMLKeptParts);
    const VXAXMLKeptParts* partsOf(const Object&) const; ///< or none
    bool isEmpty() const { return mParts.empty(); }

private:
    struct Entry {
        std::weak_ptr<Object> object; ///< to tell one that has taken the place of another in memory
        VXAXMLKeptParts parts;
    };
    std::unordered_map<const Object*, Entry> mParts;
    std::size_t mMostBeforeSweep = 64;
};

} // namespace vxr
