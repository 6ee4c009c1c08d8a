// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/UuidGenerator.h>

#include <KivPlr/core/FatalError.h>

#include <boost/random/mersenne_twister.hpp>
#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/uuid.hpp>

#include <algorithm>

namespace KivPlr {

UuidGenerator::UuidGenerator() = default;

UuidGenerator::~UuidGenerator() = default;

void UuidGenerator::Generate(Uuid& uuid, _Result& result)
{
    if (IsNullReference(&result))
        FatalError(L"UuidGenerator: result NULL reference.");
    if (IsNullReference(&uuid))
        FatalError(L"UuidGenerator: uuid NULL reference.");

    unsigned char drawn[Uuid::Size] = {};
    Draw(drawn);
    const bool allZero =
        std::all_of(drawn, drawn + Uuid::Size, [](unsigned char byte) { return byte == 0; });
    if (allZero) {
        result = ResultFail;
        return;
    }
    uuid.bytes.assign(drawn, drawn + Uuid::Size);
    result = ResultPass;
}

void UuidGenerator::Draw(unsigned char (&value)[Uuid::Size])
{
    static_assert(boost::uuids::uuid::static_size() == Uuid::Size,
                  "a Boost UUID and a Uuid hold the same number of bytes");
    // A new engine and a new seeding on every call: slower than keeping one
    // engine, but no call shares state with another, so there is nothing to
    // lock and nothing that a fork could duplicate.
    boost::uuids::basic_random_generator<boost::random::mt19937> generator;
    const boost::uuids::uuid drawn = generator();
    std::copy(drawn.begin(), drawn.end(), value);
}

} // namespace KivPlr
