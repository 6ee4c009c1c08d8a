// SPDX-License-Identifier: Apache-2.0
// Fuzz target of KivWsd::WsdReader: any bytes as a received datagram.
// Checks that an accepted message respects the reader's bounds, that the
// writer turns it back into a datagram the reader accepts with the same
// content, and runs the probe matcher on every accepted probe.

#include <KivWsd/ProbeMatcher.h>
#include <KivWsd/WsdLimits.h>
#include <KivWsd/WsdNamespaces.h>
#include <KivWsd/WsdReader.h>
#include <KivWsd/WsdWriter.h>
#include "FuzzWorkspace.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace {

using namespace KivWsd;

// Written messages may grow by escaping ('>' becomes "&gt;"); what matters
// here is that they read back, not the size rule.
constexpr std::size_t RereadLimit = 65536;

void CheckBounds(const WsdMessage& message)
{
    FUZZ_CHECK(!message.messageId.empty());
    FUZZ_CHECK(message.messageId.size() <= WsdLimits::MaximumUriLength);
    FUZZ_CHECK(message.types.size() <= WsdLimits::MaximumListEntries);
    FUZZ_CHECK(message.scopes.size() <= WsdLimits::MaximumListEntries);
    FUZZ_CHECK(message.targets.size() <= WsdLimits::MaximumTargets);
    for (const TargetService& target : message.targets) {
        FUZZ_CHECK(!target.endpointAddress.empty());
        FUZZ_CHECK(target.types.size() <= WsdLimits::MaximumListEntries);
        FUZZ_CHECK(target.scopes.size() <= WsdLimits::MaximumListEntries);
        FUZZ_CHECK(target.xaddrs.size() <= WsdLimits::MaximumListEntries);
    }
}

WsdMessage Reread(const std::string& datagram)
{
    WsdMessage message;
    std::string error;
    bool accepted = WsdReader::Read(datagram.data(), datagram.size(), RereadLimit, message, error);
    if (!accepted)
        std::fprintf(stderr, "written datagram refused: %s\n%s\n", error.c_str(), datagram.c_str());
    FUZZ_CHECK(accepted);
    return message;
}

void CheckTargets(const std::vector<TargetService>& read, const std::vector<TargetService>& written)
{
    FUZZ_CHECK(read.size() == written.size());
    for (std::size_t index = 0; index < read.size(); ++index) {
        FUZZ_CHECK(read[index].endpointAddress == written[index].endpointAddress);
        FUZZ_CHECK(read[index].types == written[index].types);
        FUZZ_CHECK(read[index].scopes == written[index].scopes);
        FUZZ_CHECK(read[index].xaddrs == written[index].xaddrs);
        FUZZ_CHECK(read[index].metadataVersion == written[index].metadataVersion);
        // The writer leaves out metadata that would make the answer too big.
        FUZZ_CHECK(!read[index].hasMetadata || read[index].metadata == written[index].metadata);
        FUZZ_CHECK(!read[index].hasMetadata || written[index].hasMetadata);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    WsdMessage message;
    std::string error;
    if (!WsdReader::Read(reinterpret_cast<const char*>(data), size, message, error)) {
        FUZZ_CHECK(!error.empty() && error.find('\n') == std::string::npos);
        return 0;
    }
    CheckBounds(message);
    const AppSequence sequence{1, 2};
    const std::string relatesTo = message.relatesTo.empty() ? "urn:uuid:r" : message.relatesTo;
    switch (message.action) {
    case WsdAction::Probe: {
        WsdMessage again =
            Reread(WsdWriter::Probe(message.version, message.messageId, message.types, message.scopes, message.matchBy));
        FUZZ_CHECK(again.action == WsdAction::Probe && again.version == message.version);
        FUZZ_CHECK(again.messageId == message.messageId);
        FUZZ_CHECK(again.types == message.types);
        FUZZ_CHECK(again.scopes == message.scopes);
        FUZZ_CHECK(again.matchBy == message.matchBy);
        TargetService target;
        target.types = message.types;
        target.scopes = message.scopes;
        // A target that offers exactly the probe's types and scopes matches
        // by exact comparison; the URI-prefix rule runs on any text.
        bool matched = ProbeMatcher::Matches(message, target);
        if (message.matchBy == WsdNamespaces::Of(message.version).matchByStrcmp0)
            FUZZ_CHECK(matched);
        break;
    }
    case WsdAction::Resolve: {
        WsdMessage again = Reread(WsdWriter::Resolve(message.version, message.messageId, message.endpointAddress));
        FUZZ_CHECK(again.endpointAddress == message.endpointAddress);
        break;
    }
    case WsdAction::Bye: {
        WsdMessage again = Reread(WsdWriter::Bye(message.version, message.messageId, sequence, message.targets.at(0)));
        FUZZ_CHECK(again.targets.at(0).endpointAddress == message.targets.at(0).endpointAddress);
        break;
    }
    case WsdAction::Hello:
    case WsdAction::ProbeMatches:
    case WsdAction::ResolveMatches: {
        WsdMessage again =
            Reread(WsdWriter::ProbeMatches(message.version, message.messageId, relatesTo, sequence, message.targets));
        FUZZ_CHECK(again.relatesTo == relatesTo);
        CheckTargets(again.targets, message.targets);
        break;
    }
    }
    return 0;
}
