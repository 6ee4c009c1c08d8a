// SPDX-License-Identifier: Apache-2.0
#include <Discoveryd/ConfigurationPath.h>

#include <cstring>
#include <sys/types.h>
#include <unistd.h>

const char* const ConfigurationPath::SettingsLink = "/home/Kiv/.settings/kivotrel";
const char* const ConfigurationPath::Suffix = "/syscontrol/1.0/configuration";

ConfigurationPath::ConfigurationPath(const char* settingsLink)
{
    // readlink does not terminate the text: the cleared buffer does, and on
    // failure it simply stays empty.
    std::memset(text, 0, sizeof text);
    ssize_t ignored = readlink(settingsLink, text, LinkTargetCapacity);
    (void)ignored;
    std::strcat(text, Suffix);
}

const char* ConfigurationPath::Get() const
{
    return text;
}
