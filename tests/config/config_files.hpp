// What the configuration tests expect to find in the files a save writes.
#pragma once

#include <string>

namespace config_test {

/// The bytes a save writes for `text`, given with LF line ends: the XML file is written in the
/// runtime's text mode, which makes every line end CR LF on Windows.
inline std::string saved_bytes(const std::string& text) {
#if defined(_WIN32)
    std::string bytes;
    for (const char c : text) {
        if (c == '\n') {
            bytes += '\r';
        }
        bytes += c;
    }
    return bytes;
#else
    return text;
#endif
}

} // namespace config_test
