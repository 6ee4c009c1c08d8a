// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/io/LinuxDirectoryPosition.h>

#include <KivPlr/core/FatalError.h>

#include <cstring>

namespace KivPlr {

LinuxDirectoryPosition::LinuxDirectoryPosition(DIR* openHandle, const Path& directory)
    : handle(openHandle), path(directory)
{
}

// The stream deliberately stays open: only FindRelease closes it. Callers
// end every enumeration with FindRelease; one abandoned without it leaks.
LinuxDirectoryPosition::~LinuxDirectoryPosition() = default;

void LinuxDirectoryPosition::GetPath(Path& out, _Result& result)
{
    if (IsNullReference(&result))
        FatalError(L"LinuxDirectoryPosition: result NULL reference.");
    if (IsNullReference(&out))
        FatalError(L"LinuxDirectoryPosition: path NULL reference.");
    out = path;
    result = ResultPass;
}

const Uuid& LinuxDirectoryPosition::ClassId()
{
    static const Uuid identity = [] {
        static const unsigned char value[16] = {0xd1, 0x68, 0xb7, 0xa6, 0x17, 0x27, 0x40, 0xeb,
                                                0xac, 0x9a, 0xe1, 0xf2, 0x82, 0x93, 0x65, 0xf0};
        Uuid made;
        made.bytes.assign(value, value + sizeof value);
        return made;
    }();
    return identity;
}

DIR* LinuxDirectoryPosition::GetHandle() const
{
    return handle;
}

void LinuxDirectoryPosition::ForgetHandle()
{
    handle = nullptr;
}

bool LinuxDirectoryPosition::QueryInterfaceImpl(const Uuid* interfaceId, void** object, _Result& result)
{
    if (IsNullReference(&result))
        FatalError(L"LinuxDirectoryPosition: result NULL reference.");
    const std::vector<unsigned char>& own = ClassId().bytes;
    bool matches = interfaceId != nullptr && interfaceId->bytes.size() >= own.size() &&
                   std::memcmp(interfaceId->bytes.data(), own.data(), own.size()) == 0;
    if (!matches || object == nullptr) {
        result = ResultFail;
        return false;
    }
    *object = this;
    result = ResultPass;
    return true;
}

} // namespace KivPlr
