// SPDX-License-Identifier: Apache-2.0
#include <KivResponder/ResponderState.h>

#include <KivPlr/core/Result.h>
#include <KivPlr/core/StringAlgorithms.h>
#include <KivPlr/core/Uuid.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <dirent.h>
#include <exception>
#include <fcntl.h>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

using KivPlr::IUuidGenerator;
using KivPlr::SmartPtr;

namespace KivResponder {

namespace {

const char FirstLine[] = "# discovery-responder state: instance count, then per description name its endpoint";
const char SecondLine[] = "# UUID, metadata version and content fingerprint. Written by the daemon; do not edit.";

std::string SystemError(const std::string& what, const std::string& path)
{
    return "cannot " + what + " " + path + ": " + std::strerror(errno);
}

/// Names are kept on one line, last: bytes that would end or split the line
/// (controls, space) and "%" are written as %XX.
std::string EncodeName(const std::string& name)
{
    static const char digits[] = "0123456789ABCDEF";
    std::string encoded;
    for (unsigned char character : name) {
        if (character <= 0x20 || character == '%' || character == 0x7f) {
            encoded += '%';
            encoded += digits[character >> 4];
            encoded += digits[character & 0x0f];
        } else {
            encoded += static_cast<char>(character);
        }
    }
    return encoded;
}

bool IsHexDigit(char character)
{
    return std::isxdigit(static_cast<unsigned char>(character)) != 0;
}

bool DecodeName(const std::string& encoded, std::string& name)
{
    name.clear();
    for (std::size_t index = 0; index < encoded.size(); ++index) {
        if (encoded[index] != '%') {
            name += encoded[index];
            continue;
        }
        if (index + 2 >= encoded.size())
            return false;
        if (!IsHexDigit(encoded[index + 1]) || !IsHexDigit(encoded[index + 2]))
            return false;
        name += static_cast<char>(std::stoi(encoded.substr(index + 1, 2), nullptr, 16));
        index += 2;
    }
    return !name.empty();
}

bool IsUuidText(const std::string& text)
{
    if (text.size() != 36)
        return false;
    for (std::size_t index = 0; index < text.size(); ++index) {
        bool dash = index == 8 || index == 13 || index == 18 || index == 23;
        if (dash ? text[index] != '-' : !IsHexDigit(text[index]))
            return false;
    }
    return true;
}

/// A decimal number without sign, at most \p highest; false for anything else.
bool ReadNumber(const std::string& text, std::uint64_t highest, std::uint64_t& value)
{
    if (text.empty() || text.size() > 20)
        return false;
    value = 0;
    for (char character : text) {
        if (character < '0' || character > '9')
            return false;
        std::uint64_t digit = static_cast<std::uint64_t>(character - '0');
        if (value > (highest - digit) / 10)
            return false;
        value = value * 10 + digit;
    }
    return true;
}

std::string FormatUuid(const unsigned char (&bytes)[16])
{
    std::string text;
    KivPlr::StringAlgorithms::FromPackedU8(std::vector<unsigned char>(bytes, bytes + 16), text);
    for (std::size_t dash : {8, 13, 18, 23})
        text.insert(dash, 1, '-');
    return text;
}

bool ReadRandom(unsigned char* bytes, std::size_t size)
{
    int descriptor = ::open("/dev/urandom", O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    std::size_t done = 0;
    while (done < size) {
        ssize_t count = ::read(descriptor, bytes + done, size - done);
        if (count <= 0 && errno != EINTR)
            break;
        if (count > 0)
            done += static_cast<std::size_t>(count);
    }
    ::close(descriptor);
    return done == size;
}

bool WriteAll(int descriptor, const std::string& text)
{
    std::size_t done = 0;
    while (done < text.size()) {
        ssize_t count = ::write(descriptor, text.data() + done, text.size() - done);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;
        done += static_cast<std::size_t>(count);
    }
    return true;
}

} // namespace

ResponderState::ResponderState(std::string stateDirectory, SmartPtr<IUuidGenerator> uuidGenerator)
    : directory(std::move(stateDirectory)), generator(std::move(uuidGenerator))
{
}

std::string ResponderState::FilePath() const
{
    return directory + "/" + FileName;
}

void ResponderState::Load(std::vector<std::string>& warnings)
{
    instanceId = 0;
    entries.clear();
    std::string path = FilePath();
    std::FILE* file = std::fopen(path.c_str(), "rbe");
    if (file == nullptr) {
        if (errno != ENOENT) {
            warnings.push_back(SystemError("read", path) + "; going on with a fresh state and the clock as instance count");
            instanceId = static_cast<std::uint32_t>(std::time(nullptr));
        }
        return;
    }
    std::string text(MaximumFileSize + 1, '\0');
    std::size_t size = std::fread(&text[0], 1, text.size(), file);
    std::fclose(file);
    text.resize(size);
    if (size > MaximumFileSize) {
        warnings.push_back(path + ": longer than " + std::to_string(MaximumFileSize) + " bytes; only the start is read");
        text.resize(MaximumFileSize);
    }

    bool instanceRead = false;
    std::istringstream lines(text);
    std::string line;
    for (int number = 1; std::getline(lines, line); ++number) {
        std::string where = std::string(FileName) + ":" + std::to_string(number) + ": ";
        if (line.empty() || line[0] == '#')
            continue;
        std::size_t space = line.find(' ');
        std::string keyword = line.substr(0, space);
        std::string rest = space == std::string::npos ? "" : line.substr(space + 1);
        std::uint64_t value = 0;
        if (keyword == "instance" && ReadNumber(rest, UINT32_MAX, value)) {
            instanceId = std::max(instanceId, value);
            instanceRead = true;
        } else if (keyword == "target") {
            ReadEntry(rest, where, warnings);
        } else {
            warnings.push_back(where + "unreadable line, ignored");
        }
    }
    if (!instanceRead) {
        warnings.push_back(std::string(FileName) + ": no readable instance count; going on from the clock");
        instanceId = std::max<std::uint64_t>(instanceId, static_cast<std::uint32_t>(std::time(nullptr)));
    }
}

void ResponderState::ReadEntry(const std::string& rest, const std::string& where, std::vector<std::string>& warnings)
{
    std::istringstream fields(rest);
    std::string uuid, version, fingerprint, encodedName, extra;
    fields >> uuid >> version >> fingerprint >> encodedName;
    std::uint64_t versionValue = 0;
    std::string name;
    if (!IsUuidText(uuid) || !ReadNumber(version, UINT32_MAX, versionValue) || versionValue == 0 ||
        fingerprint.empty() || !DecodeName(encodedName, name) || (fields >> extra)) {
        warnings.push_back(where + "unreadable target entry, forgotten");
        return;
    }
    if (entries.size() >= MaximumEntries && entries.count(name) == 0) {
        warnings.push_back(where + "more than " + std::to_string(MaximumEntries) + " target entries, the rest ignored");
        return;
    }
    Entry& entry = entries[name];
    // Two lines for one name (only by hand): the higher version wins, so no
    // version goes out twice.
    if (versionValue >= entry.metadataVersion) {
        KivPlr::StringAlgorithms::ToLower(uuid);
        entry.endpointUuid = uuid;
        entry.metadataVersion = static_cast<std::uint32_t>(versionValue);
        entry.fingerprint = fingerprint;
    }
}

bool ResponderState::Start(std::string& error)
{
    // Temporaries of a run that died between creating and renaming one.
    if (DIR* listing = ::opendir(directory.c_str())) {
        static const std::string prefix = ".state.";
        while (dirent* entry = ::readdir(listing)) {
            std::string name = entry->d_name;
            if (name.size() == prefix.size() + 6 && name.compare(0, prefix.size(), prefix) == 0)
                ::unlinkat(::dirfd(listing), name.c_str(), 0);
        }
        ::closedir(listing);
    }
    ++instanceId;
    return Save(error);
}

std::string ResponderState::NewUuid()
{
    KivPlr::Uuid uuid;
    KivPlr::_Result result = KivPlr::ResultFail;
    try {
        if (generator)
            generator->Generate(uuid, result);
    } catch (const std::exception&) {
        result = KivPlr::ResultFail;
    }
    unsigned char bytes[16] = {};
    if (KivPlr::Succeeded(result) && uuid.bytes.size() == 16) {
        std::memcpy(bytes, uuid.bytes.data(), 16);
    } else if (!ReadRandom(bytes, sizeof bytes)) {
        // Neither source answered: the time and process make a value that at
        // least differs between units started at different moments.
        std::uint64_t seed = static_cast<std::uint64_t>(std::time(nullptr)) * 1000003u ^
                             static_cast<std::uint64_t>(::getpid());
        for (unsigned char& byte : bytes) {
            seed = seed * 6364136223846793005ull + 1442695040888963407ull;
            byte = static_cast<unsigned char>(seed >> 56);
        }
    }
    bytes[6] = static_cast<unsigned char>((bytes[6] & 0x0f) | 0x40);
    bytes[8] = static_cast<unsigned char>((bytes[8] & 0x3f) | 0x80);
    return FormatUuid(bytes);
}

const ResponderState::Entry& ResponderState::Record(const std::string& name, const std::string& fingerprint,
                                                    bool& changed)
{
    changed = false;
    Entry& entry = entries[name];
    if (entry.endpointUuid.empty()) {
        entry.endpointUuid = NewUuid();
        entry.metadataVersion = 1;
        entry.fingerprint = fingerprint;
        changed = true;
    } else if (entry.fingerprint != fingerprint) {
        if (entry.metadataVersion < UINT32_MAX)
            ++entry.metadataVersion;
        entry.fingerprint = fingerprint;
        changed = true;
    }
    return entry;
}

const ResponderState::Entry* ResponderState::Find(const std::string& name) const
{
    auto found = entries.find(name);
    return found == entries.end() ? nullptr : &found->second;
}

void ResponderState::Prune(const std::set<std::string>& inUse)
{
    for (auto entry = entries.begin(); entry != entries.end() && entries.size() > MaximumEntries;) {
        if (inUse.count(entry->first) == 0)
            entry = entries.erase(entry);
        else
            ++entry;
    }
}

bool ResponderState::Save(std::string& error) const
{
    std::string text = std::string(FirstLine) + "\n" + SecondLine + "\n";
    text += "instance " + std::to_string(instanceId) + "\n";
    for (const auto& entry : entries) {
        text += "target " + entry.second.endpointUuid + " " + std::to_string(entry.second.metadataVersion) + " " +
                entry.second.fingerprint + " " + EncodeName(entry.first) + "\n";
    }
    std::string path = FilePath();
    std::string temporary = directory + "/.state.XXXXXX";
    int descriptor = ::mkostemp(&temporary[0], O_CLOEXEC);
    if (descriptor < 0) {
        error = SystemError("create a file in", directory);
        return false;
    }
    bool written = WriteAll(descriptor, text) && ::fchmod(descriptor, 0644) == 0 && ::fsync(descriptor) == 0;
    int savedErrno = errno;
    if (::close(descriptor) != 0 && written) {
        written = false;
        savedErrno = errno;
    }
    if (!written || ::rename(temporary.c_str(), path.c_str()) != 0) {
        if (written)
            savedErrno = errno;
        ::unlink(temporary.c_str());
        errno = savedErrno;
        error = SystemError("write", path);
        return false;
    }
    int directoryDescriptor = ::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (directoryDescriptor < 0 || ::fsync(directoryDescriptor) != 0) {
        error = SystemError("flush the directory", directory);
        if (directoryDescriptor >= 0)
            ::close(directoryDescriptor);
        return false;
    }
    ::close(directoryDescriptor);
    return true;
}

} // namespace KivResponder
