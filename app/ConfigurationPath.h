// SPDX-License-Identifier: Apache-2.0
// ConfigurationPath.h - the directory the daemon loads its configuration
// from: the target of the settings link followed by
// "/syscontrol/1.0/configuration".
//
// Built once by the entry point on its stack and read for the life of the
// process; a plain value, not shared between threads.
//
// Example:
//   #include <Discoveryd/Globals.h>
//   ConfigurationPath configurationPath(ConfigurationPath::SettingsLink);
//   gConfig.LoadResources(configurationPath.Get());
#ifndef KIV_APP_CONFIGURATIONPATH_H
#define KIV_APP_CONFIGURATIONPATH_H

#include <cstddef>

class ConfigurationPath
{
public:
    /// The settings link of the unit; its target is the settings directory.
    static const char* const SettingsLink;
    /// Appended to the link target.
    static const char* const Suffix;
    /// At most this many bytes of the link target are read.
    static constexpr std::size_t LinkTargetCapacity = 200;
    /// The suffix with its terminating zero.
    static constexpr std::size_t SuffixSize = 30;

    /// Reads the target of the symbolic link \p settingsLink (at most
    /// LinkTargetCapacity bytes; a longer target is cut there) and appends
    /// Suffix. A missing or unreadable link gives the suffix alone:
    /// "/syscontrol/1.0/configuration". Nothing is reported.
    explicit ConfigurationPath(const char* settingsLink);

    /// The zero-terminated path; valid while this object lives.
    const char* Get() const;

private:
    // Room for the longest link target read plus the whole suffix.
    char text[LinkTargetCapacity + SuffixSize];
};

#endif
