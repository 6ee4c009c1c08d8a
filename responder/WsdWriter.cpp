// SPDX-License-Identifier: Apache-2.0
#include <KivWsd/WsdWriter.h>

namespace KivWsd {

std::string WsdWriter::Probe(WsdVersion, const std::string&, const std::vector<QualifiedName>&,
                             const std::vector<std::string>&, const std::string&)
{
    return {};
}

std::string WsdWriter::Resolve(WsdVersion, const std::string&, const std::string&)
{
    return {};
}

std::string WsdWriter::Hello(WsdVersion, const std::string&, const AppSequence&, const TargetService&)
{
    return {};
}

std::string WsdWriter::Bye(WsdVersion, const std::string&, const AppSequence&, const TargetService&)
{
    return {};
}

std::string WsdWriter::ProbeMatches(WsdVersion, const std::string&, const std::string&, const AppSequence&,
                                    const std::vector<TargetService>&)
{
    return {};
}

std::string WsdWriter::ResolveMatches(WsdVersion, const std::string&, const std::string&, const AppSequence&,
                                      const TargetService&)
{
    return {};
}

} // namespace KivWsd
