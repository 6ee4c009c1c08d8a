// SPDX-License-Identifier: Apache-2.0
// ResponderState.h - what the responder keeps across restarts in its state
// directory: the count of its starts (the AppSequence instance) and, per
// description name, the endpoint UUID, the metadata version and a
// fingerprint of the content that version was given for.
//
// The file "state" is line-based text, replaced atomically (temporary file,
// fsync, rename, directory fsync). Owned by the responder's loop; one thread.
//
// Example:
//   ResponderState state("/var/lib/discovery-responder", new UuidGenerator);
//   std::vector<std::string> warnings;
//   state.Load(warnings);                       // missing file: a fresh state
//   std::string error;
//   if (!state.Start(error)) { /* cannot start: error says why */ }
//   std::string fingerprint = Responder::Fingerprint(KivWsd::TargetService(), 8080);
//   bool changed = false;
//   const ResponderState::Entry& entry = state.Record("Management", fingerprint, changed);
//   if (changed && !state.Save(error)) { /* log it */ }
#ifndef KIV_RESPONDER_RESPONDERSTATE_H
#define KIV_RESPONDER_RESPONDERSTATE_H

#include <KivPlr/core/IUuidGenerator.h>
#include <KivPlr/core/SmartPtr.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace KivResponder {

class ResponderState
{
public:
    struct Entry
    {
        /// Lower-case "xxxxxxxx-xxxx-4xxx-yxxx-xxxxxxxxxxxx", without "urn:uuid:".
        std::string endpointUuid;
        /// 1 for the first content seen, one more for each different one.
        std::uint32_t metadataVersion = 0;
        /// What the caller gave for that content (no spaces or line feeds).
        std::string fingerprint;
    };

    /// The file's name inside the state directory.
    static constexpr const char* FileName = "state";
    /// Entries kept at most; beyond it, entries of names not in use go first.
    static constexpr std::size_t MaximumEntries = 256;
    /// Bytes of the file read at most; a longer file counts as damaged.
    static constexpr std::size_t MaximumFileSize = 256 * 1024;

    /// A state for \p directory that draws endpoint UUIDs from \p generator
    /// (or from /dev/urandom when the generator fails). Nothing is read yet.
    ResponderState(std::string directory, KivPlr::SmartPtr<KivPlr::IUuidGenerator> generator);

    /// Reads the file. A missing file gives a fresh state and no warning.
    /// Anything unreadable is reported in \p warnings (one line each,
    /// "state:3: ...") and skipped: entries that can be read are kept. When
    /// the instance count cannot be read from a file that exists, it goes on
    /// from the current time in seconds since 1970, which is above any count
    /// of starts on a unit whose clock has been set, so an instance number is
    /// not used twice. A damaged entry is forgotten: its name gets a new
    /// endpoint UUID, under which version 1 repeats nothing a client saw.
    void Load(std::vector<std::string>& warnings);

    /// Counts this start (the instance number rises by one) and saves. False
    /// with \p error when the file cannot be written. Temporary files that
    /// an earlier run left when it died in the middle of a save
    /// (".state.XXXXXX") are removed first: one daemon owns the directory.
    bool Start(std::string& error);
    std::uint64_t InstanceId() const { return instanceId; }

    /// The entry of \p name for content with \p fingerprint: a new name gets
    /// a fresh UUID and version 1; a known name whose fingerprint differs
    /// gets version + 1 and the new fingerprint. \p changed tells whether the
    /// entry was made or changed (then Save it before announcing it).
    const Entry& Record(const std::string& name, const std::string& fingerprint, bool& changed);
    /// The entry of \p name, or null.
    const Entry* Find(const std::string& name) const;
    const std::map<std::string, Entry>& Entries() const { return entries; }

    /// Drops entries whose names are not in \p inUse while there are more
    /// than MaximumEntries.
    void Prune(const std::set<std::string>& inUse);

    /// Writes the file atomically; false with \p error ("cannot write
    /// /var/lib/discovery-responder/state: ...") when it fails, the old file
    /// then unchanged.
    bool Save(std::string& error) const;

    /// The state file's full path.
    std::string FilePath() const;

private:
    std::string NewUuid();
    void ReadEntry(const std::string& rest, const std::string& where, std::vector<std::string>& warnings);

    std::string directory;
    KivPlr::SmartPtr<KivPlr::IUuidGenerator> generator;
    std::uint64_t instanceId = 0;
    std::map<std::string, Entry> entries;
};

} // namespace KivResponder

#endif
