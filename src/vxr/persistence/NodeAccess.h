#pragma once

#include <vxr/host/archiving/VXAXMLArchiver.h>
#include <vxr/host/utility/VXULog.h>

#include <fmt/format.h>

#include <span>

namespace vxr {

class Path;
class VXAXMLUnarchiver;

// What the readers and writers of all classes share. Attributes and children lie in `VelloraNamespace`.

/// The record of a class whose bodies are two functions on the class itself.
template <class Class, auto encode, auto read> const VXAXMLClass& recordOf(const char* name)
{
    static const VXAXMLClass record { name, typeid(Class),
        [](const Object& object, VXAXMLArchiver& archiver, VXAXMLNode* node, std::uint32_t version) {
            encode(static_cast<const Class&>(object), archiver, node, version);
        },
        [](VXAXMLUnarchiver& unarchiver, VXAXMLNode* node, std::uint32_t version) -> std::shared_ptr<Object> {
            return read(unarchiver, node, version);
        } };
    return record;
}

inline void warn(const char* file, const std::string& message, int level = VXULogLevelWarning)
{
    VXULog_Fn(level, file, message);
}

/// The attribute narrowed to single precision; `fallback` when it is missing, after logging what `message`
/// answers: messages are made only when they are needed.
template <class Message>
float floatAttribute(
    const VXAXMLNode* node, const char* name, float fallback, const char* file, const Message& message)
{
    double value;
    if (vxaxmlGetDoubleNsProp(node, VelloraNamespace, name, value))
        return static_cast<float>(value);
    warn(file, message());
    return fallback;
}

/// Truncated; what an int can't hold is cut to its limits and NaN is 0.
int intFromDouble(double value);

inline bool setNumber(VXAXMLNode* node, const char* name, double value)
{
    return vxaxmlSetDoubleNsProp(node, VelloraNamespace, name, value);
}

inline void setWord(VXAXMLNode* node, const char* name, const char* word)
{
    vxaxmlSetNSStringNsProp(node, VelloraNamespace, name, word);
}

/// The index of `word` among `words`, or -1.
int indexOfWord(std::span<const char* const> words, std::string_view word);

/// None for a null node; also, logged, for a path with coordinates that are not finite.
std::shared_ptr<Path> finitePathFromNode(VXAXMLUnarchiver&, VXAXMLNode*);

/// A child element with the attributes "x", "y", "width" and "height".
void encodeRectChild(const Rect&, VXAXMLNode* parent, const char* name);

/// Reads the properties of one element. What is missing or can't be read is logged and replaced by a default.
struct PropertyReader {
    const char* file;
    const char* kind; ///< of object, for messages: "a line"
    const VXAXMLNode* node;

    void cannotGet(const char* name) const;
    float number(const char* name, float fallback) const; ///< finite
    std::uint32_t whole(const char* name, std::uint32_t fallback) const;
    int word(const char* name, std::span<const char* const> words, int fallback) const; ///< an index
    Point point(const char* name) const; ///< finite; the origin where there is none
    bool getRect(const char* name, Rect&) const; ///< finite; nothing is logged where there is none
};

} // namespace vxr
