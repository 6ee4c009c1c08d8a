// SPDX-License-Identifier: Apache-2.0
// 32-bit programs under qemu-arm get the 64-bit directory offsets of the
// host kernel; without large-file readdir glibc fails on them (EOVERFLOW) and
// the listing comes back empty.
#define _FILE_OFFSET_BITS 64

#include <KivTest/DirectoryListing.h>

#include <algorithm>
#include <dirent.h>

namespace KivTest {

std::vector<std::string> ListDirectory(const std::string& directory)
{
    std::vector<std::string> names;
    if (DIR* listing = opendir(directory.c_str())) {
        while (const struct dirent* entry = readdir(listing)) {
            std::string name = entry->d_name;
            if (name != "." && name != "..")
                names.push_back(name);
        }
        closedir(listing);
    }
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace KivTest
