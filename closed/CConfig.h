// SPDX-License-Identifier: Apache-2.0
// CConfig.h - the unit's configuration record, loaded from the file
// configuration.xml of the configuration directory.
//
// The daemon owns one process-wide instance (gConfig), reloads it once per
// cycle and lets the publisher read its fields directly. A load replaces the
// record whole or, when the file is bad in any way, not at all. Not
// synchronised: load and read on one thread.
//
// Example:
//   VpCfg::CConfig config;                        // every field at its default
//   if (!config.LoadResources("/x/syscontrol/1.0/configuration"))
//       std::fprintf(stderr, "%s\n", config.ErrorMessage().c_str());
//   std::printf("%s\n", config.computerName);     // "trxDefault" until a file names one
#ifndef KIV_CLOSED_CCONFIG_H
#define KIV_CLOSED_CCONFIG_H

#include <VpCfg/CServiceList.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace KivClosed {
class LastGoodFile;
}

namespace VpCfg {

class CConfig
{
public:
    /// Largest configuration.xml accepted, in bytes (1 MiB).
    static constexpr std::size_t MaximumFileBytes = 1048576;
    /// Most service elements accepted.
    static constexpr std::size_t MaximumServices = 256;
    /// Longest text of one element, in bytes.
    static constexpr std::size_t MaximumTextBytes = 4096;

    /// A record with every field at its default: empty description, time
    /// zone "Europe/Zurich", computer name "trxDefault", no services, format
    /// version "1.0", owner "nil", site location "unspecified", domain name
    /// "localdomain", thresholds 40 and 55, product prefix "TRX".
    CConfig();
    ~CConfig();

    // The text fields point into the record's own storage.
    CConfig(const CConfig&) = delete;
    CConfig& operator=(const CConfig&) = delete;

    /// Reloads the record from the file configuration.xml in the directory
    /// \p path. Answers true when the file was valid in every respect and now
    /// makes up the whole record (absent elements at their defaults); answers
    /// false and leaves every field as it was when the file is missing,
    /// unreadable or wrong in any way, with the reasons in ErrorMessages().
    /// A null \p path fails the same way. A file that is byte for byte the
    /// one of the last good load is not parsed again: true, and the record
    /// and the pointers it handed out stay as they are.
    bool LoadResources(const char* path);

    /// The faults of the last load, one message each ("<file>:<line>:<column>:
    /// <what>"); empty after a successful load and before the first one.
    const std::vector<std::string>& ErrorMessages() const;

    /// The faults of the last load joined by line feeds; empty after success.
    std::string ErrorMessage() const;

    /// The services, in file order. Pointers it hands out stay valid until
    /// the next successful load.
    CServiceList serviceList;

    // The text fields below are zero-terminated UTF-8, never null, owned by
    // the record and valid until the next successful load. Read them; do not
    // assign them.

    /// Element description; "" by default.
    const char* descriptionText;
    /// Element timeZone; "Europe/Zurich" by default.
    const char* timeZoneName;
    /// Element computerName; "trxDefault" by default.
    const char* computerName;
    /// Element formatVersion; "1.0" by default.
    const char* formatVersion;
    /// Element owner; "nil" by default.
    const char* owner;
    /// Element siteLocation; "unspecified" by default.
    const char* siteLocation;
    /// Element domainName; "localdomain" by default.
    const char* domainName;
    /// Element thresholdLow (unsigned 32-bit decimal); 40 by default.
    std::uint32_t thresholdLow;
    /// Element thresholdHigh (unsigned 32-bit decimal); 55 by default.
    std::uint32_t thresholdHigh;
    /// Element productPrefix; "TRX" by default.
    const char* productPrefix;

private:
    /// The record's texts, in the order of the text fields above.
    using Texts = std::array<std::string, 8>;

    void Adopt(Texts& newTexts, std::uint32_t low, std::uint32_t high, CServiceList& services);

    Texts texts;
    std::vector<std::string> errors;
    /// The bytes and stamps of the last good file: the same bytes again
    /// keep the record without a parse. Nothing before the first good load.
    std::unique_ptr<KivClosed::LastGoodFile> lastGoodFile;
};

} // namespace VpCfg

#endif
