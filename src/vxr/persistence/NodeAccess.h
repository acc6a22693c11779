#pragma once

#include <vxr/host/archiving/VXAXMLArchiver.h>
#include <vxr/host/utility/VXULog.h>

#include <fmt/format.h>

#include <span>

namespace vxr {

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

/// The attribute narrowed to single precision; `fallback` after logging `message` when it is missing.
inline float floatAttribute(
    const VXAXMLNode* node, const char* name, float fallback, const char* file, const std::string& message)
{
    double value;
    if (vxaxmlGetDoubleNsProp(node, VelloraNamespace, name, value))
        return static_cast<float>(value);
    warn(file, message);
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

} // namespace vxr
