// SPDX-License-Identifier: Apache-2.0
#include <StatusCollector/DrmOutputScanner.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <dirent.h>
#include <fstream>
#include <utility>

namespace KivCollector {

namespace {

const char ConnectedStatus[] = "connected";

/// The first line of \p file without its line feed; empty when unreadable.
std::string FirstLine(const std::string& file)
{
    std::ifstream input(file, std::ios::binary);
    std::string line;
    if (input)
        std::getline(input, line);
    return line;
}

} // namespace

DrmOutputScanner::DrmOutputScanner(std::string directoryPath) : directory(std::move(directoryPath))
{
}

bool DrmOutputScanner::IsConnectorName(const std::string& name)
{
    const std::string prefix = "card";
    if (name.compare(0, prefix.size(), prefix) != 0)
        return false;
    std::string::size_type position = prefix.size();
    std::string::size_type digitsStart = position;
    while (position < name.size() && name[position] >= '0' && name[position] <= '9')
        ++position;
    return position > digitsStart && position + 1 < name.size() && name[position] == '-';
}

bool DrmOutputScanner::Scan(std::vector<CollectedStatus::Output>& outputs, std::string& fault) const
{
    outputs.clear();
    DIR* listing = opendir(directory.c_str());
    if (listing == nullptr) {
        if (errno == ENOENT)
            return true;
        fault = "cannot read " + directory + ": " + std::strerror(errno);
        return false;
    }
    std::vector<std::string> connectors;
    errno = 0;
    while (const struct dirent* entry = readdir(listing)) {
        if (IsConnectorName(entry->d_name))
            connectors.emplace_back(entry->d_name);
        errno = 0;
    }
    int readError = errno;
    closedir(listing);
    if (readError != 0) {
        fault = "cannot read " + directory + ": " + std::strerror(readError);
        return false;
    }
    std::sort(connectors.begin(), connectors.end());
    std::uint32_t number = 0;
    for (const std::string& connector : connectors) {
        CollectedStatus::Output output;
        output.number = ++number;
        bool connected = FirstLine(directory + "/" + connector + "/status") == ConnectedStatus;
        output.kind = connected ? CollectedStatus::ConnectedKind : CollectedStatus::DisconnectedKind;
        outputs.push_back(output);
    }
    return true;
}

} // namespace KivCollector
