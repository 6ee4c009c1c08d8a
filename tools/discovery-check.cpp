// SPDX-License-Identifier: Apache-2.0
// discovery-check - loads one of the discovery files with our libraries and
// prints everything it holds, or every fault with file, line and column.
//
//   discovery-check config DIR          DIR/configuration.xml
//   discovery-check status FILE         a status snapshot
//   discovery-check description FILE    a service description file
//   discovery-check summary FILE        what a description publishes, decoded
//   discovery-check --help | --version  usage or version on standard output
//
// Exit status: 0 when the file loaded (or for --help and --version), 1 when
// it did not (the faults go to standard error), 2 on a wrong command line.
// A summary whose metadata does not follow the publisher's layout shows what
// it could read and exits with 1.

#include <DiscoveryCheck/MetadataSummary.h>
#include <DiscoveryCheck/PublishedMetadata.h>
#include <KivClosed/Quote.h>
#include <KivDiscoveryClient/DescriptionReader.h>
#include <VpCfg/CConfig.h>
#include <VpSts/CStatus.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace {

using KivClosed::Quote;

const int ExitLoaded = 0;
const int ExitFaults = 1;
const int ExitUsage = 2;

/// A text that may be missing: "(absent)" for a null pointer.
std::string QuoteOrAbsent(const char* text)
{
    return text == nullptr ? std::string("(absent)") : Quote(text);
}

void Field(const char* name, const std::string& value, const char* indent = "  ")
{
    std::printf("%s%s: %s\n", indent, name, value.c_str());
}

int ReportFaults(const std::vector<std::string>& messages)
{
    for (const std::string& message : messages)
        std::fprintf(stderr, "%s\n", message.c_str());
    return ExitFaults;
}

int CheckConfiguration(const char* directory)
{
    VpCfg::CConfig config;
    if (!config.LoadResources(directory))
        return ReportFaults(config.ErrorMessages());
    std::printf("configuration %s/configuration.xml\n", directory);
    Field("description", Quote(config.descriptionText));
    Field("timeZone", Quote(config.timeZoneName));
    Field("computerName", Quote(config.computerName));
    Field("formatVersion", Quote(config.formatVersion));
    Field("owner", Quote(config.owner));
    Field("siteLocation", Quote(config.siteLocation));
    Field("domainName", Quote(config.domainName));
    Field("thresholdLow", std::to_string(config.thresholdLow));
    Field("thresholdHigh", std::to_string(config.thresholdHigh));
    Field("productPrefix", Quote(config.productPrefix));
    Field("services", std::to_string(config.serviceList.Count()));
    for (unsigned int index = 0; config.serviceList[index] != nullptr; ++index) {
        const VpCfg::CServiceEntry* entry = config.serviceList[index];
        std::printf("    service %u: kind %u, port %u\n", index + 1, static_cast<unsigned>(entry->serviceKind),
                    static_cast<unsigned>(entry->servicePort));
    }
    return ExitLoaded;
}

int CheckStatus(const char* file)
{
    VpSts::CStatus status;
    if (!status.Load(file))
        return ReportFaults(status.ErrorMessages());
    std::printf("status %s\n", file);
    Field("modelCode", std::to_string(status.modelCode));
    Field("dateTime", Quote(status.dateTime));
    Field("upTime", Quote(status.upTime));
    Field("identifier", Quote(status.identifier));
    Field("networkDevices", std::to_string(status.networkDeviceList.Count()));
    for (unsigned int index = 0; status.networkDeviceList[index] != nullptr; ++index) {
        const VpSts::CNetworkDevice* device = status.networkDeviceList[index];
        std::printf("    networkDevice %u: number %u\n", index + 1, static_cast<unsigned>(device->deviceNumber));
        const char* indent = "      ";
        Field("name", QuoteOrAbsent(device->name), indent);
        Field("mac", QuoteOrAbsent(device->macAddress), indent);
        Field("ipv4", QuoteOrAbsent(device->ipv4Address), indent);
        Field("ipv6", QuoteOrAbsent(device->ipv6Address), indent);
        Field("gateway", QuoteOrAbsent(device->gateway), indent);
        Field("subnet", QuoteOrAbsent(device->subnet), indent);
    }
    Field("outputs", std::to_string(status.outputList.Count()));
    for (unsigned int index = 0; status.outputList[index] != nullptr; ++index) {
        const VpSts::COutput* output = status.outputList[index];
        std::printf("    output %u: number %u, kind %u, rows %u, columns %u\n", index + 1,
                    static_cast<unsigned>(output->outputNumber), static_cast<unsigned>(output->outputKind),
                    static_cast<unsigned>(output->translationRows),
                    static_cast<unsigned>(output->translationColumns));
    }
    return ExitLoaded;
}

int CheckDescription(const char* file)
{
    KivDiscoveryClient::DescriptionReader reader;
    if (!reader.Load(file))
        return ReportFaults(reader.ErrorMessages());
    std::printf("description %s\n", file);
    Field("name", Quote(reader.Name()));
    Field("types", std::to_string(reader.Types().size()));
    for (std::size_t index = 0; index < reader.Types().size(); ++index)
        std::printf("    type %zu: %s\n", index + 1, Quote(reader.Types()[index]).c_str());
    Field("scopes", std::to_string(reader.Scopes().size()));
    for (std::size_t index = 0; index < reader.Scopes().size(); ++index)
        std::printf("    scope %zu: %s\n", index + 1, Quote(reader.Scopes()[index]).c_str());
    Field("port", std::to_string(reader.Port()));
    Field("metadata", Quote(reader.MetaData()));
    return ExitLoaded;
}

int SummariseDescription(const char* file)
{
    KivDiscoveryClient::DescriptionReader reader;
    if (!reader.Load(file))
        return ReportFaults(reader.ErrorMessages());
    KivCheck::PublishedMetadata metadata = KivCheck::PublishedMetadata::Decode(reader.MetaData());
    std::printf("summary of %s\n", file);
    Field("management port", std::to_string(reader.Port()));
    std::fputs(KivCheck::MetadataSummary::Lines(metadata).c_str(), stdout);
    if (!metadata.problem.empty()) {
        std::fprintf(stderr, "%s: metadata not in the publisher's layout at %s\n", file, metadata.problem.c_str());
        return ExitFaults;
    }
    return ExitLoaded;
}

void PrintUsage(FILE* stream)
{
    std::fprintf(stream,
                 "usage: discovery-check config DIR\n"
                 "       discovery-check status FILE\n"
                 "       discovery-check description FILE\n"
                 "       discovery-check summary FILE\n"
                 "       discovery-check --help | --version\n");
}

int Usage()
{
    PrintUsage(stderr);
    return ExitUsage;
}

} // namespace

int main(int argc, char** argv)
{
    // Asked for, the usage and the version go to standard output.
    if (argc == 2 && std::strcmp(argv[1], "--help") == 0) {
        PrintUsage(stdout);
        return ExitLoaded;
    }
    if (argc == 2 && std::strcmp(argv[1], "--version") == 0) {
        std::printf("discovery-check %s\n", KIV_VERSION);
        return ExitLoaded;
    }
    if (argc != 3)
        return Usage();
    if (std::strcmp(argv[1], "config") == 0)
        return CheckConfiguration(argv[2]);
    if (std::strcmp(argv[1], "status") == 0)
        return CheckStatus(argv[2]);
    if (std::strcmp(argv[1], "description") == 0)
        return CheckDescription(argv[2]);
    if (std::strcmp(argv[1], "summary") == 0)
        return SummariseDescription(argv[2]);
    return Usage();
}
