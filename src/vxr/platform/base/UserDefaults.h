#pragma once

#include <vxr/platform/base/Export.h>

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace vxr {

/// The user's settings.
///
/// Values are looked up in this order: set by the program, an environment variable with the key's name, the
/// file `vxr/defaults` in the user's configuration folder (`$XDG_CONFIG_HOME`, else `~/.config`). The file
/// has lines `key = value`; blanks around both and lines starting with `#` are ignored, and the last line
/// of a key wins. It is read once.
class VXR_EXPORT UserDefaults {
public:
    static UserDefaults& standardUserDefaults();

    /// From the text of a defaults file, for hosts that keep settings elsewhere.
    explicit UserDefaults(std::string_view fileText);

    std::optional<std::string> stringForKey(const std::string& key) const;
    /// The leading integer of the value; 0 if there is none or it does not fit.
    int integerForKey(const std::string& key) const;
    /// Whether the value begins with Y, y, T, t or is a number other than 0.
    bool boolForKey(const std::string& key) const;

    void setObjectForKey(std::string value, const std::string& key); ///< for this process; not saved
    void removeObjectForKey(const std::string& key); ///< removes the value set by the program

private:
    std::map<std::string, std::string> mSet, mFile;
};

} // namespace vxr
