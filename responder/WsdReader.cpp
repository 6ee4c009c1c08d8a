// SPDX-License-Identifier: Apache-2.0
#include <KivWsd/WsdReader.h>

#include <KivWsd/WsdLimits.h>

namespace KivWsd {

bool WsdReader::Read(const char* data, std::size_t size, WsdMessage& message, std::string& error)
{
    return Read(data, size, WsdLimits::MaximumIncomingDatagram, message, error);
}

bool WsdReader::Read(const char*, std::size_t, std::size_t, WsdMessage&, std::string& error)
{
    error = "not implemented yet";
    return false;
}

} // namespace KivWsd
