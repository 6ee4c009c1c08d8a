// SPDX-License-Identifier: Apache-2.0
#include <KivTest/OpenDescriptors.h>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdlib>
#include <dirent.h>
#include <fstream>
#include <unistd.h>

namespace KivTest {

namespace {

std::string ResolvedPath(const std::string& path)
{
    char resolved[PATH_MAX];
    return realpath(path.c_str(), resolved) != nullptr ? std::string(resolved) : path;
}

} // namespace

std::vector<int> DescriptorsOpenOn(const std::string& path)
{
    std::vector<int> found;
    std::string wanted = ResolvedPath(path);
    DIR* directory = opendir("/proc/self/fd");
    if (directory == nullptr)
        return found;
    int own = dirfd(directory);
    while (struct dirent* entry = readdir(directory)) {
        std::string name = entry->d_name;
        if (name.empty() || name.find_first_not_of("0123456789") != std::string::npos)
            continue;
        int descriptor = std::atoi(name.c_str());
        if (descriptor == own)
            continue;
        char target[PATH_MAX];
        ssize_t length = readlink(("/proc/self/fd/" + name).c_str(), target, sizeof target);
        if (length > 0 && std::string(target, static_cast<std::size_t>(length)) == wanted)
            found.push_back(descriptor);
    }
    closedir(directory);
    std::sort(found.begin(), found.end());
    return found;
}

int DescriptorFlags(int descriptor)
{
    std::ifstream info("/proc/self/fdinfo/" + std::to_string(descriptor));
    std::string key;
    while (info >> key) {
        if (key == "flags:") {
            std::string octal;
            info >> octal;
            return static_cast<int>(std::strtol(octal.c_str(), nullptr, 8));
        }
    }
    return -1;
}

} // namespace KivTest
