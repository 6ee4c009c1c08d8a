// SPDX-License-Identifier: Apache-2.0
// One refresh cycle's own work, as the daemon does it minus the status
// collector and the pause: load the configuration, load the status, and
// DiscoverableServices::Update into an output directory. The inputs (8
// network devices, 32 outputs) are generated into a temporary directory.
//
// Cycle_Unchanged loads the same files every time, so nothing is written; its
// floor parses the two files with pugixml and does nothing else.
// Cycle_Changed alternates between two status files that differ in one
// address, so every Update rewrites the description; its floor parses the
// two files and writes the same description bytes atomically (temporary
// file, write, fsync, rename, directory fsync).
// Both are timed on the wall clock, which is what the fsync waits cost.
// scripts/bench pairs the runs by name: <figure>_Project against
// <figure>_<anchor>.
#include <KivConfig/DiscoverableServices.h>
#include <KivPlr/core/LinuxPlatform.h>
#include <KivPlr/core/Platform.h>
#include <KivPlr/core/SmartPtr.h>
#include <VpCfg/CConfig.h>
#include <VpSts/CStatus.h>

#include <benchmark/benchmark.h>
#include <pugixml.hpp>

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <chrono>
#include <unistd.h>

namespace {

const unsigned int DeviceCount = 8;
const unsigned int OutputCount = 32;

void WriteText(const std::string& path, const std::string& text)
{
    std::ofstream(path, std::ios::binary | std::ios::trunc) << text;
}

std::string ReadText(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

std::string ConfigurationXml()
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<configuration>\n"
           "  <description>Control room wall</description>\n"
           "  <timeZone>Europe/Zurich</timeZone>\n"
           "  <computerName>wall-controller-01</computerName>\n"
           "  <services>\n"
           "    <service kind=\"0\" port=\"8080\"/>\n"
           "    <service kind=\"2\" port=\"554\"/>\n"
           "  </services>\n"
           "</configuration>\n";
}

// A status with DeviceCount devices (every text present) and OutputCount
// outputs; \p lastOctet varies the first device's address.
std::string StatusXml(unsigned int lastOctet)
{
    std::ostringstream text;
    text << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<status>\n"
         << "  <modelCode>3</modelCode>\n  <networkDevices>\n";
    for (unsigned int device = 1; device <= DeviceCount; ++device) {
        unsigned int octet = device == 1 ? lastOctet : 10 + device;
        text << "    <networkDevice number=\"" << device << "\">\n"
             << "      <name>eth" << device - 1 << "</name>\n"
             << "      <mac>00:11:22:33:44:" << 50 + device << "</mac>\n"
             << "      <ipv4>192.0.2." << octet << "</ipv4>\n"
             << "      <ipv6>2001:db8::" << octet << "</ipv6>\n"
             << "      <gateway>192.0.2.1</gateway>\n"
             << "      <subnet>255.255.255.0</subnet>\n"
             << "    </networkDevice>\n";
    }
    text << "  </networkDevices>\n  <outputs>\n";
    for (unsigned int output = 1; output <= OutputCount; ++output)
        text << "    <output number=\"" << output << "\" kind=\"" << output % 2
             << "\" rows=\"2\" columns=\"4\"/>\n";
    text << "  </outputs>\n</status>\n";
    return text.str();
}

// The generated inputs and the records and publisher over them, made once
// per process; the directory is removed at exit.
class Fixture
{
public:
    Fixture()
    {
        char pattern[] = "/tmp/kiv-bench-XXXXXX";
        directory = mkdtemp(pattern);
        configurationDirectory = directory + "/configuration";
        outputDirectory = directory + "/output";
        mkdir(configurationDirectory.c_str(), 0755);
        mkdir(outputDirectory.c_str(), 0755);
        configurationFile = configurationDirectory + "/configuration.xml";
        statusFiles[0] = directory + "/status-a.xml";
        statusFiles[1] = directory + "/status-b.xml";
        WriteText(configurationFile, ConfigurationXml());
        WriteText(statusFiles[0], StatusXml(10));
        WriteText(statusFiles[1], StatusXml(20));
        // On a running unit the configuration has not been written for a
        // long time. The loaders trust a file's stamps only when its change
        // time is three seconds old (a write within the same clock tick could
        // leave them as they were); until then they read it and compare the
        // bytes. Let the inputs settle so that the steady state is measured.
        std::this_thread::sleep_for(std::chrono::milliseconds(3500));
        KivPlr::Platform::SetInstance(new KivPlr::LinuxPlatform);
        services = KivPlr::SmartPtr<KivConfig::DiscoverableServices>(
            new KivConfig::DiscoverableServices(config, status, outputDirectory));
        // The description bytes each status gives, for the atomic-write floor.
        for (int which = 0; which < 2; ++which) {
            Cycle(statusFiles[which]);
            description[which] = ReadText(outputDirectory + "/Management.xml");
            // An empty text would make the anchor's write far cheaper than
            // the project's (no data block to flush or free).
            if (description[which].empty()) {
                std::fprintf(stderr, "CycleBench: the cycle wrote no Management.xml in %s\n",
                             outputDirectory.c_str());
                std::exit(1);
            }
        }
    }

    ~Fixture()
    {
        std::string command = "rm -rf '" + directory + "'";
        int ignored = std::system(command.c_str());
        (void)ignored;
    }

    void Cycle(const std::string& statusFile)
    {
        config.LoadResources(configurationDirectory.c_str());
        status.Load(statusFile.c_str());
        services->Update();
    }

    std::string directory;
    std::string configurationDirectory;
    std::string outputDirectory;
    std::string configurationFile;
    std::string statusFiles[2];
    std::string description[2];
    VpCfg::CConfig config;
    VpSts::CStatus status;
    KivPlr::SmartPtr<KivConfig::DiscoverableServices> services;
};

Fixture& Inputs()
{
    static Fixture fixture;
    return fixture;
}

void ParseBoth(const Fixture& inputs, int which)
{
    pugi::xml_document configuration;
    pugi::xml_document status;
    benchmark::DoNotOptimize(configuration.load_file(inputs.configurationFile.c_str()));
    benchmark::DoNotOptimize(status.load_file(inputs.statusFiles[which].c_str()));
}

void WriteAtomically(const std::string& directory, const std::string& bytes)
{
    std::string temporary = directory + "/.Management.tmp";
    std::string target = directory + "/Management.floor";
    int file = open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (file < 0)
        return;
    benchmark::DoNotOptimize(write(file, bytes.data(), bytes.size()));
    fsync(file);
    close(file);
    rename(temporary.c_str(), target.c_str());
    int folder = open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder >= 0) {
        fsync(folder);
        close(folder);
    }
}

void CycleUnchanged_Project(benchmark::State& state)
{
    Fixture& inputs = Inputs();
    for (auto _ : state)
        inputs.Cycle(inputs.statusFiles[0]);
}
BENCHMARK(CycleUnchanged_Project)->UseRealTime();

void CycleUnchanged_PugixmlParse(benchmark::State& state)
{
    Fixture& inputs = Inputs();
    for (auto _ : state)
        ParseBoth(inputs, 0);
}
BENCHMARK(CycleUnchanged_PugixmlParse)->UseRealTime();

// Runs \p step with the other status file (0 or 1) at every iteration.
template <typename Step>
void Alternating(benchmark::State& state, Step step)
{
    int which = 0;
    for (auto _ : state) {
        which = 1 - which;
        step(which);
    }
}

void CycleChanged_Project(benchmark::State& state)
{
    Fixture& inputs = Inputs();
    Alternating(state, [&inputs](int which) { inputs.Cycle(inputs.statusFiles[which]); });
}
BENCHMARK(CycleChanged_Project)->UseRealTime();

void CycleChanged_PugixmlParseAtomicWrite(benchmark::State& state)
{
    Fixture& inputs = Inputs();
    Alternating(state, [&inputs](int which) {
        ParseBoth(inputs, which);
        WriteAtomically(inputs.outputDirectory, inputs.description[which]);
    });
}
BENCHMARK(CycleChanged_PugixmlParseAtomicWrite)->UseRealTime();

} // namespace
