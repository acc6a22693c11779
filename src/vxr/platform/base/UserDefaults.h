#pragma once

#include <vxr/platform/base/Export.h>

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace vxr {

/// The user's settings.
///
/// A value set by the program comes before an environment variable of the key's name, and that before the
/// file `vxr/defaults` in the user's configuration folder (`$XDG_CONFIG_HOME`, else `~/.config`). The file
/// has lines `key = value`; blanks around both and lines that start with `#` do not count, the last line
/// of a key does. It is read once.
class VXR_EXPORT UserDefaults {
public:
    static UserDefaults& standardUserDefaults();

    /// From the text of a defaults file, for whoever keeps settings elsewhere.
    explicit UserDefaults(std::string_view fileText);

    std::optional<std::string> stringForKey(const std::string& key) const;
    /// Leading whole number of the value; 0 without one, or when it does not fit.
    int integerForKey(const std::string& key) const;
    /// Whether the value begins with Y, y, T, t or is a number other than 0.
    bool boolForKey(const std::string& key) const;

    void setObjectForKey(std::string value, const std::string& key); ///< for this process, not written
    void removeObjectForKey(const std::string& key); ///< what the program set for it

private:
    std::map<std::string, std::string> mSet, mFile;
};

} // namespace vxr
