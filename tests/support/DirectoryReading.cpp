// SPDX-License-Identifier: Apache-2.0
#include <KivTest/DirectoryReading.h>

#include <KivTest/Emulation.h>

#include <cerrno>
#include <cstring>
#include <dirent.h>

namespace KivTest {

bool CanReadDirectory(const std::string& directory, std::string& reason)
{
    DIR* handle = opendir(directory.c_str());
    if (handle == nullptr) {
        reason = "cannot open " + directory + ": " + std::strerror(errno);
        return false;
    }
    errno = 0;
    bool listed = readdir(handle) != nullptr;
    int error = errno;
    closedir(handle);
    if (listed)
        return true;
    reason = "readdir fails in " + directory + " (" + std::strerror(error) + ")";
    if (RunningUnderEmulation())
        reason += ": under qemu-arm a 32-bit readdir cannot take this file system's 64-bit directory offsets;"
                  " set TMPDIR to a tmpfs to run this test";
    return false;
}

} // namespace KivTest
