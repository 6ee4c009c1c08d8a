// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/InterfaceIdentifiers.h>

// The constants hold a vector and so are built at run time, while the library
// is loaded. init_priority puts their construction ahead of every static
// object of default priority in this library (and so their destruction
// after them); programs and libraries that link this one are initialised
// after it by the dynamic loader. Any static constructor may thus read them.
#define KIVPLR_EARLY_CONSTANT __attribute__((init_priority(101)))

namespace KivPlr {

namespace {

const unsigned char ObjectInterfaceBytes[Uuid::Size] = {
    0x76, 0xb5, 0x5f, 0x90, 0x3d, 0x41, 0x4f, 0xc3,
    0x9c, 0xb1, 0x73, 0xab, 0x2e, 0x7e, 0x2f, 0x59};

const unsigned char ClockInterfaceBytes[Uuid::Size] = {
    0xd1, 0x68, 0xb7, 0xa4, 0x17, 0x27, 0x40, 0xeb,
    0xac, 0x9a, 0xe1, 0xf2, 0x82, 0x93, 0x65, 0xf0};

const unsigned char PlatformInterfaceBytes[Uuid::Size] = {
    0xd1, 0x68, 0xb7, 0xa5, 0x17, 0x27, 0x40, 0xeb,
    0xac, 0x9a, 0xe1, 0xf2, 0x82, 0x93, 0x65, 0xf0};

} // namespace

const Uuid ObjectInterfaceId KIVPLR_EARLY_CONSTANT(ObjectInterfaceBytes);
const Uuid ClockInterfaceId KIVPLR_EARLY_CONSTANT(ClockInterfaceBytes);
const Uuid PlatformInterfaceId KIVPLR_EARLY_CONSTANT(PlatformInterfaceBytes);

} // namespace KivPlr
