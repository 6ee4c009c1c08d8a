// SPDX-License-Identifier: Apache-2.0
#include <KivClosed/Quote.h>

#include <cstdio>

namespace KivClosed {

std::string Quote(const std::string& text, std::size_t longest)
{
    std::string quoted = "\"";
    for (std::size_t index = 0; index < text.size() && index < longest; ++index) {
        char current = text[index];
        unsigned char byte = static_cast<unsigned char>(current);
        if (current == '"' || current == '\\') {
            quoted += '\\';
            quoted += current;
        } else if (current == '\n') {
            quoted += "\\n";
        } else if (current == '\r') {
            quoted += "\\r";
        } else if (current == '\t') {
            quoted += "\\t";
        } else if (byte < 0x20 || byte == 0x7F) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\x%02X", static_cast<unsigned>(byte));
            quoted += escape;
        } else {
            quoted += current;
        }
    }
    if (text.size() > longest)
        quoted += "...";
    return quoted + "\"";
}

} // namespace KivClosed
