// SPDX-License-Identifier: Apache-2.0
#include <KivTest/Capabilities.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <linux/capability.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace KivTest {

namespace {

struct CapabilitySets
{
    struct __user_cap_header_struct header;
    struct __user_cap_data_struct data[_LINUX_CAPABILITY_U32S_3];
};

bool ReadSets(CapabilitySets& sets, std::string& why)
{
    std::memset(&sets, 0, sizeof sets);
    sets.header.version = _LINUX_CAPABILITY_VERSION_3;
    sets.header.pid = 0;
    if (syscall(SYS_capget, &sets.header, sets.data) != 0) {
        why = std::string("capget: ") + std::strerror(errno);
        return false;
    }
    return true;
}

std::uint32_t Mask(int capability)
{
    return static_cast<std::uint32_t>(1) << (capability % 32);
}

} // namespace

bool DropCapability(int capability, std::string& why)
{
    if (capability < 0 || capability >= 32 * _LINUX_CAPABILITY_U32S_3) {
        why = "capability number out of range";
        return false;
    }
    // The bounding set first: dropping from it needs CAP_SETPCAP, which the
    // capset below may not leave us.
    if (prctl(PR_CAPBSET_DROP, capability, 0, 0, 0) != 0) {
        why = std::string("prctl(PR_CAPBSET_DROP): ") + std::strerror(errno);
        return false;
    }
    CapabilitySets sets;
    if (!ReadSets(sets, why))
        return false;
    struct __user_cap_data_struct& word = sets.data[capability / 32];
    word.effective &= ~Mask(capability);
    word.permitted &= ~Mask(capability);
    word.inheritable &= ~Mask(capability);
    if (syscall(SYS_capset, &sets.header, sets.data) != 0) {
        why = std::string("capset: ") + std::strerror(errno);
        return false;
    }
    return true;
}

bool MayUseCapability(int capability, std::string& why)
{
    CapabilitySets sets;
    if (!ReadSets(sets, why))
        return true;
    const struct __user_cap_data_struct& word = sets.data[capability / 32];
    if ((word.effective & Mask(capability)) != 0) {
        why = "still in the effective set";
        return true;
    }
    if ((word.permitted & Mask(capability)) != 0) {
        why = "still in the permitted set";
        return true;
    }
    int bounding = prctl(PR_CAPBSET_READ, capability, 0, 0, 0);
    if (bounding != 0) {
        why = bounding < 0 ? std::string("prctl(PR_CAPBSET_READ): ") + std::strerror(errno)
                           : "still in the bounding set";
        return true;
    }
    return false;
}

} // namespace KivTest
