// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/io/DirectoryManager.h>

#include <KivPlr/core/FatalError.h>
#include <KivPlr/core/LinuxResultConverter.h>
#include <KivPlr/io/LinuxDirectoryPosition.h>

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <dirent.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

namespace KivPlr {

namespace {

// Every directory made here: rwxrwxr-- before the umask.
constexpr mode_t NewDirectoryMode = 0774;

// getcwd is tried with these buffer sizes, in turn, while it answers ERANGE.
constexpr std::size_t CurrentDirectoryBufferSizes[] = {256, 512, 1024};

constexpr std::size_t ExecutablePathBufferSize = 4096;

constexpr const wchar_t* NullResultMessage = L"DirectoryManager: result NULL reference.";

// Ends the process, with \p message naming the argument, when the reference
// parameter at \p address is bound to address 0.
void RequireReference(const void* address, const wchar_t* message)
{
    if (IsNullReference(address))
        FatalError(message);
}

// The answer of a Linux result converter made for this one call.
void Convert(int nativeResult, _Result& result)
{
    SmartPtr<IResultConverter> converter(new LinuxResultConverter);
    converter->Convert(nativeResult, result);
}

bool IsDotOrDotDot(const char* name)
{
    return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
}

bool RemoveTree(const std::string& directory);

// Removes one entry of a tree: a directory by recursion, a regular file by
// unlink. Anything else is left where it is, and counts as success here: the
// final rmdir of its parent is what fails.
bool RemoveEntry(const std::string& child, unsigned char type)
{
    if (type == DT_UNKNOWN) {
        struct stat status;
        if (stat(child.c_str(), &status) != 0)
            return true; // gone or unreadable: skipped
        if (S_ISDIR(status.st_mode))
            type = DT_DIR;
        else if (S_ISREG(status.st_mode))
            type = DT_REG;
        else
            return true;
    }
    if (type == DT_DIR)
        return RemoveTree(child);
    if (type == DT_REG)
        return unlink(child.c_str()) == 0;
    return true; // symbolic links, FIFOs, sockets and devices stay
}

// The recursive removal of \p directory: true when it is gone.
bool RemoveTree(const std::string& directory)
{
    DIR* handle = opendir(directory.c_str());
    if (handle == nullptr)
        return false;
    while (struct dirent* entry = readdir(handle)) {
        if (IsDotOrDotDot(entry->d_name))
            continue;
        if (!RemoveEntry(directory + "/" + entry->d_name, entry->d_type)) {
            closedir(handle);
            return false;
        }
    }
    closedir(handle);
    return rmdir(directory.c_str()) == 0;
}

// The enumeration behind \p position, found through its interface query,
// while its stream is open; null with \p result set otherwise (not one of
// ours, or already released through another holder).
LinuxDirectoryPosition* OpenEnumeration(SmartPtr<IDirectoryPosition>& position, _Result& result)
{
    void* raw = nullptr;
    // An empty position ends the process here (SmartPtr's null check).
    if (!position->QueryInterface(&LinuxDirectoryPosition::ClassId(), &raw, result) || !Succeeded(result))
        return nullptr;
    LinuxDirectoryPosition* enumeration = static_cast<LinuxDirectoryPosition*>(raw);
    if (enumeration->GetHandle() == nullptr) {
        result = ResultFail;
        return nullptr;
    }
    return enumeration;
}

} // namespace

void DirectoryManager::Create(const Path& path, _Result& result)
{
    // A null result ends the process in the converter, after mkdir.
    Convert(mkdir(path.GetPath(), NewDirectoryMode), result);
}

void DirectoryManager::Remove(const Path& path, bool recursive, _Result& result)
{
    if (!recursive) {
        Convert(rmdir(path.GetPath()), result); // a null result ends it after rmdir
        return;
    }
    RequireReference(&result, NullResultMessage);
    Path tree;
    if (!Absolute(path, tree)) {
        result = ResultFail;
        return;
    }
    result = RemoveTree(tree.GetPath()) ? ResultPass : ResultFail;
}

void DirectoryManager::Exists(const Path& path, _Result& result)
{
    RequireReference(&result, NullResultMessage);
    struct stat status;
    result = stat(path.GetPath(), &status) == 0 ? ResultPass : ResultFail;
}

void DirectoryManager::GetDirectories(const Path& path, std::vector<std::string>& names, _Result& result)
{
    List(path, true, names, result);
}

void DirectoryManager::GetFiles(const Path& path, std::vector<std::string>& names, _Result& result)
{
    List(path, false, names, result);
}

void DirectoryManager::List(const Path& path, bool wantDirectories, std::vector<std::string>& names,
                            _Result& result)
{
    RequireReference(&result, NullResultMessage);
    RequireReference(&names, L"DirectoryManager: names NULL reference.");
    Path directory;
    if (!Absolute(path, directory)) {
        result = ResultFail; // whatever the vector already holds
        return;
    }
    // Names are appended to what the caller's vector already holds.
    if (names.capacity() < 5)
        names.reserve(5);
    SmartPtr<IDirectoryPosition> position;
    std::string name;
    _Result step = ResultFail;
    FindFirst(directory, position, name, step);
    if (step == ResultPass) {
        while (step == ResultPass) {
            // The bare entry name is deliberately classified against the
            // process's current directory, not the listed one; callers list
            // their current directory, where the two agree.
            _Result kind = ResultFail;
            IsDirectory(Path(name), kind);
            if ((kind == ResultPass) == wantDirectories) {
                if (names.size() == names.capacity())
                    names.reserve(names.capacity() * 2);
                names.push_back(name);
            }
            FindNext(position, name, step);
        }
        _Result released = ResultFail;
        FindRelease(position, released);
    }
    result = names.empty() ? ResultFail : ResultPass;
}

void DirectoryManager::FindFirst(const Path& path, SmartPtr<IDirectoryPosition>& position, std::string& name,
                                 _Result& result) const
{
    RequireReference(&result, NullResultMessage);
    RequireReference(&position, L"DirectoryManager: position NULL reference.");
    RequireReference(&name, L"DirectoryManager: name NULL reference.");
    Path absolute;
    if (!Absolute(path, absolute)) {
        result = ResultFail;
        return;
    }
    std::string directory = absolute.GetPath();
    // "dir/*" enumerates dir; no other wildcard is understood.
    if (!directory.empty() && directory.back() == '*')
        directory.pop_back();
    DIR* handle = opendir(directory.c_str());
    if (handle == nullptr) {
        result = ResultFail;
        return;
    }
    struct dirent* entry = readdir(handle);
    if (entry == nullptr) {
        closedir(handle);
        result = ResultFail;
        return;
    }
    name = entry->d_name;
    position = new LinuxDirectoryPosition(handle, Path(directory));
    result = ResultPass;
}

void DirectoryManager::FindNext(SmartPtr<IDirectoryPosition>& position, std::string& name, _Result& result) const
{
    RequireReference(&result, NullResultMessage);
    RequireReference(&position, L"DirectoryManager: position NULL reference.");
    RequireReference(&name, L"DirectoryManager: name NULL reference.");
    LinuxDirectoryPosition* enumeration = OpenEnumeration(position, result);
    if (enumeration == nullptr)
        return;
    struct dirent* entry = readdir(enumeration->GetHandle());
    if (entry == nullptr) {
        result = ResultFail;
        return;
    }
    name = entry->d_name;
    result = ResultPass;
}

void DirectoryManager::FindRelease(SmartPtr<IDirectoryPosition>& position, _Result& result) const
{
    RequireReference(&result, NullResultMessage);
    RequireReference(&position, L"DirectoryManager: position NULL reference.");
    LinuxDirectoryPosition* enumeration = OpenEnumeration(position, result);
    if (enumeration == nullptr)
        return;
    DIR* handle = enumeration->GetHandle();
    // closedir frees the stream whatever it answers, so the position never
    // touches it again; only success empties the caller's pointer.
    enumeration->ForgetHandle();
    if (closedir(handle) != 0) {
        result = ResultFail;
        return;
    }
    position.Reset();
    result = ResultPass;
}

void DirectoryManager::IsDirectory(const Path& path, _Result& result) const
{
    struct stat status;
    int answer = stat(path.GetPath(), &status);
    if (answer != 0) {
        Convert(answer, result); // a null result ends it here
        return;
    }
    RequireReference(&result, NullResultMessage);
    result = S_ISDIR(status.st_mode) ? ResultPass : ResultFail;
}

void DirectoryManager::GetCurrent(std::string& current, _Result& result) const
{
    RequireReference(&result, NullResultMessage);
    RequireReference(&current, L"DirectoryManager: current NULL reference.");
    for (std::size_t size : CurrentDirectoryBufferSizes) {
        std::vector<char> buffer(size);
        if (getcwd(buffer.data(), buffer.size()) != nullptr) {
            current = buffer.data();
            result = ResultPass;
            return;
        }
        if (errno != ERANGE)
            break;
    }
    result = ResultFail;
}

void DirectoryManager::SetCurrent(const Path& path, _Result& result)
{
    // A null result ends the process in the converter, after chdir.
    Convert(chdir(path.GetPath()), result);
}

void DirectoryManager::GetExecutablePath(Path& path, _Result& result)
{
    RequireReference(&path, L"DirectoryManager: path NULL reference.");
    std::vector<char> buffer(ExecutablePathBufferSize);
    ssize_t length = readlink("/proc/self/exe", buffer.data(), buffer.size());
    if (length < 0) {
        Convert(errno, result); // a null result ends it here
        return;
    }
    RequireReference(&result, NullResultMessage);
    path.SetPath(buffer.data(), static_cast<std::size_t>(length));
    result = ResultPass;
}

void DirectoryManager::Reserved1(_Result& result)
{
    RequireReference(&result, NullResultMessage);
    result = ResultNotSupported;
}

bool DirectoryManager::Absolute(const Path& path, Path& absolute) const
{
    absolute = path;
    if (path.IsAbsolute())
        return true;
    // Without a current directory there is nothing to read a relative path
    // against: an empty base would turn "tmp/x" into "/tmp/x", a different
    // directory altogether, so the caller gives up instead.
    std::string current;
    _Result read = ResultFail;
    GetCurrent(current, read);
    if (!Succeeded(read))
        return false;
    absolute.MakeAbsolute(current);
    return true;
}

} // namespace KivPlr
