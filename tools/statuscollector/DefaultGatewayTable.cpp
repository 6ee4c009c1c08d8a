// SPDX-License-Identifier: Apache-2.0
#include <StatusCollector/DefaultGatewayTable.h>

#include <arpa/inet.h>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <net/route.h>
#include <netinet/in.h>
#include <sstream>

namespace KivCollector {

namespace {

/// Parses one hexadecimal or decimal field of the route table; false when
/// the field is not all digits or does not fit 32 bits.
bool ParseField(const std::string& field, int base, std::uint32_t& value)
{
    if (field.empty() || field.size() > 10)
        return false;
    std::uint64_t result = 0;
    for (char character : field) {
        int digit;
        if (character >= '0' && character <= '9')
            digit = character - '0';
        else if (base == 16 && character >= 'a' && character <= 'f')
            digit = character - 'a' + 10;
        else if (base == 16 && character >= 'A' && character <= 'F')
            digit = character - 'A' + 10;
        else
            return false;
        result = result * static_cast<std::uint64_t>(base) + static_cast<std::uint64_t>(digit);
    }
    if (result > 0xFFFFFFFFull)
        return false;
    value = static_cast<std::uint32_t>(result);
    return true;
}

} // namespace

bool DefaultGatewayTable::Load(const std::string& routeFile, std::string& fault)
{
    routes.clear();
    std::ifstream input(routeFile, std::ios::binary);
    if (!input) {
        fault = "cannot open " + routeFile + ": " + std::strerror(errno);
        return false;
    }
    std::ostringstream text;
    text << input.rdbuf();
    Parse(text.str());
    return true;
}

void DefaultGatewayTable::Parse(const std::string& text)
{
    routes.clear();
    std::istringstream lines(text);
    std::string line;
    bool header = true;
    while (std::getline(lines, line)) {
        if (header) {
            header = false;
            continue;
        }
        std::istringstream fields(line);
        std::string interfaceName, destinationText, gatewayText, flagsText, referencesText, useText, metricText,
            maskText;
        if (!(fields >> interfaceName >> destinationText >> gatewayText >> flagsText >> referencesText >> useText >>
              metricText >> maskText))
            continue;
        std::uint32_t destination, gateway, flags, metric, mask;
        if (!ParseField(destinationText, 16, destination) || !ParseField(gatewayText, 16, gateway) ||
            !ParseField(flagsText, 16, flags) || !ParseField(metricText, 10, metric) ||
            !ParseField(maskText, 16, mask))
            continue;
        bool isDefault = destination == 0 && mask == 0;
        bool usable = (flags & RTF_UP) != 0 && (flags & RTF_GATEWAY) != 0 && gateway != 0;
        if (isDefault && usable)
            routes.push_back({interfaceName, gateway, metric});
    }
}

std::optional<std::string> DefaultGatewayTable::Find(const std::string& interfaceName) const
{
    const DefaultRoute* best = nullptr;
    for (const DefaultRoute& route : routes) {
        if (route.interfaceName == interfaceName && (best == nullptr || route.metric < best->metric))
            best = &route;
    }
    if (best == nullptr)
        return std::nullopt;
    // The kernel prints the address word as it lies in memory, so the same
    // bytes in an in_addr give the address on the machine that printed it.
    struct in_addr address;
    std::memcpy(&address.s_addr, &best->gateway, sizeof address.s_addr);
    char text[INET_ADDRSTRLEN];
    if (inet_ntop(AF_INET, &address, text, sizeof text) == nullptr)
        return std::nullopt;
    return std::string(text);
}

} // namespace KivCollector
