// 32-bit programs under qemu-arm get the 64-bit directory offsets of the
// host kernel; without large-file readdir glibc fails on them (EOVERFLOW) and
// the listing comes back empty.
#define _FILE_OFFSET_BITS 64

#include "DirectoryListing.h"

#include <algorithm>
#include <dirent.h>

namespace KivTest {

std::vector<std::string> ListDirectory(const std::string& directory)
{
    std::vector<std::string> names;
    if (DIR* listing = opendir(directory.c_str())) {
        // The 64-bit entry: a 32-bit build must not stop at directory offsets
        // beyond 32 bits (ext4 hands them out to 64-bit callers such as qemu-arm).
        while (const struct dirent64* entry = readdir64(listing)) {
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
