#include <vxr/platform/base/UserDefaults.h>

#include <charconv>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace vxr {

namespace {

std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view blanks = " \t\r";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

/// The base directory rules accept absolute folders only.
std::string configurationFolder()
{
    if (const char* folder = std::getenv("XDG_CONFIG_HOME"); folder && folder[0] == '/')
        return folder;
    if (const char* home = std::getenv("HOME"); home && home[0] == '/')
        return std::string(home) + "/.config";
    return {};
}

std::string defaultsFileText()
{
    const std::string folder = configurationFolder();
    if (folder.empty())
        return {};
    std::ifstream file(folder + "/vxr/defaults");
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

} // namespace

UserDefaults& UserDefaults::standardUserDefaults()
{
    static UserDefaults defaults(defaultsFileText());
    return defaults;
}

UserDefaults::UserDefaults(std::string_view fileText)
{
    while (!fileText.empty()) {
        const std::size_t end = std::min(fileText.find('\n'), fileText.size());
        const std::string_view line = trimmed(fileText.substr(0, end));
        fileText.remove_prefix(std::min(end + 1, fileText.size()));
        const std::size_t equals = line.find('=');
        if (line.empty() || line.front() == '#' || equals == std::string_view::npos)
            continue;
        const std::string_view key = trimmed(line.substr(0, equals));
        if (!key.empty())
            mFile[std::string(key)] = trimmed(line.substr(equals + 1));
    }
}

std::optional<std::string> UserDefaults::stringForKey(const std::string& key) const
{
    if (const auto set = mSet.find(key); set != mSet.end())
        return set->second;
    if (const char* value = std::getenv(key.c_str()))
        return value;
    if (const auto read = mFile.find(key); read != mFile.end())
        return read->second;
    return std::nullopt;
}

int UserDefaults::integerForKey(const std::string& key) const
{
    const std::string value = stringForKey(key).value_or("");
    std::string_view digits = trimmed(value);
    if (digits.starts_with('+'))
        digits.remove_prefix(1);
    int number = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return number;
}

bool UserDefaults::boolForKey(const std::string& key) const
{
    const std::string value = stringForKey(key).value_or("");
    const std::string_view text = trimmed(value);
    if (!text.empty() && std::string_view("YyTt").find(text.front()) != std::string_view::npos)
        return true;
    return integerForKey(key) != 0;
}

void UserDefaults::setObjectForKey(std::string value, const std::string& key)
{
    mSet[key] = std::move(value);
}

void UserDefaults::removeObjectForKey(const std::string& key) { mSet.erase(key); }

} // namespace vxr
