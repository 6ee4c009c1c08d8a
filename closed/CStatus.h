// SPDX-License-Identifier: Apache-2.0
// CStatus.h - the unit's status record, loaded from the status snapshot that
// the status collector writes.
//
// The daemon owns one process-wide instance (gStatus), reloads it once per
// cycle after the collector has run, and lets the metadata providers read its
// fields directly. A load replaces the record whole or, when the file is bad
// in any way, not at all. Not synchronised: load and read on one thread.
//
// Example:
//   VpSts::CStatus status;                         // defaults, empty lists
//   if (!status.Load("/dev/shm/status.xml"))
//       std::fprintf(stderr, "%s\n", status.ErrorMessage().c_str());
//   const VpSts::CNetworkDevice* first = status.networkDeviceList[0u];
#ifndef KIV_CLOSED_CSTATUS_H
#define KIV_CLOSED_CSTATUS_H

#include <VpSts/CNetworkDeviceList.h>
#include <VpSts/COutputList.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace KivClosed {
class LastGoodFile;
}

namespace VpSts {

class CStatus
{
public:
    /// Largest status file accepted, in bytes (4 MiB).
    static constexpr std::size_t MaximumFileBytes = 4194304;
    /// Most networkDevice elements accepted.
    static constexpr std::size_t MaximumNetworkDevices = 1024;
    /// Most output elements accepted.
    static constexpr std::size_t MaximumOutputs = 1024;
    /// Longest text of one element, in bytes.
    static constexpr std::size_t MaximumTextBytes = 4096;
    /// The model code of a unit whose model is not known.
    static constexpr std::uint32_t UnknownModel = 4294967295u;

    /// A record with every field at its default: model code 4294967295,
    /// empty lists, date-time "2000-01-01T00:00:00", up-time "P0S",
    /// identifier "0x0000000000000000".
    CStatus();
    ~CStatus();

    // The text fields point into the record's own storage.
    CStatus(const CStatus&) = delete;
    CStatus& operator=(const CStatus&) = delete;

    /// Reloads the record from the status file \p path. Answers true when
    /// the file was valid in every respect and now makes up the whole record
    /// (absent elements at their defaults); answers false and leaves every
    /// field as it was when the file is missing, unreadable or wrong in any
    /// way, with the reasons in ErrorMessages(). A null \p path fails too.
    /// A file that is byte for byte the one of the last good load is not
    /// parsed again: true, and the record and its entries stay as they are.
    bool Load(const char* path);

    /// The faults of the last load, one message each ("<file>:<line>:<column>:
    /// <what>"); empty after a successful load and before the first one.
    const std::vector<std::string>& ErrorMessages() const;

    /// The faults of the last load joined by line feeds; empty after success.
    std::string ErrorMessage() const;

    /// Element modelCode (unsigned 32-bit decimal); 4294967295 by default.
    std::uint32_t modelCode;

    /// The network interfaces, in file order; entries stay valid until the
    /// next successful load.
    CNetworkDeviceList networkDeviceList;

    /// The video outputs, in file order; entries stay valid until the next
    /// successful load.
    COutputList outputList;

    // The text fields below are zero-terminated, never null, owned by the
    // record and valid until the next successful load. Read them; do not
    // assign them.

    /// Element dateTime; "2000-01-01T00:00:00" by default.
    const char* dateTime;
    /// Element upTime; "P0S" by default.
    const char* upTime;
    /// Element identifier; "0x0000000000000000" by default.
    const char* identifier;

private:
    /// The record's texts, in the order of the text fields above.
    using Texts = std::array<std::string, 3>;

    void Adopt(Texts& newTexts, std::uint32_t model, CNetworkDeviceList& devices, COutputList& outputs);

    Texts texts;
    std::vector<std::string> errors;
    /// The bytes and stamps of the last good file: the same bytes again
    /// keep the record without a parse. Nothing before the first good load.
    std::unique_ptr<KivClosed::LastGoodFile> lastGoodFile;
};

} // namespace VpSts

#endif
