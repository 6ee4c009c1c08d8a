// SPDX-License-Identifier: Apache-2.0
#include <KivResponder/DescriptionWatcher.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <dirent.h>
#include <sys/inotify.h>
#include <unistd.h>
#include <utility>

namespace KivResponder {

namespace {

const std::uint32_t DirectoryEvents = IN_CLOSE_WRITE | IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE | IN_CREATE |
                                      IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;
const std::uint32_t ParentEvents = IN_CREATE | IN_MOVED_TO | IN_ONLYDIR;

std::string Parent(const std::string& path)
{
    std::string trimmed = path;
    while (trimmed.size() > 1 && trimmed.back() == '/')
        trimmed.pop_back();
    std::size_t slash = trimmed.rfind('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : trimmed.substr(0, slash);
}

std::string LastPart(const std::string& path)
{
    std::string trimmed = path;
    while (trimmed.size() > 1 && trimmed.back() == '/')
        trimmed.pop_back();
    std::size_t slash = trimmed.rfind('/');
    return slash == std::string::npos ? trimmed : trimmed.substr(slash + 1);
}

} // namespace

DescriptionWatcher::DescriptionWatcher(std::string watchedDirectory) : directory(std::move(watchedDirectory)) {}

DescriptionWatcher::~DescriptionWatcher()
{
    if (descriptor >= 0)
        ::close(descriptor);
}

bool DescriptionWatcher::IsDescriptionName(const std::string& name)
{
    static const std::string suffix = ".xml";
    return name.size() > suffix.size() && name[0] != '.' &&
           name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0;
}

std::vector<std::string> DescriptionWatcher::List(const std::string& path)
{
    std::vector<std::string> names;
    DIR* listing = ::opendir(path.c_str());
    if (listing == nullptr)
        return names;
    while (dirent* entry = ::readdir(listing)) {
        std::string name = entry->d_name;
        if (IsDescriptionName(name))
            names.push_back(name);
    }
    ::closedir(listing);
    std::sort(names.begin(), names.end());
    return names;
}

bool DescriptionWatcher::Start(std::string& error)
{
    descriptor = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (descriptor < 0) {
        error = std::string("cannot use inotify: ") + std::strerror(errno);
        return false;
    }
    return WatchDirectoryOrParent(error);
}

bool DescriptionWatcher::WatchDirectoryOrParent(std::string& error)
{
    directoryWatch = ::inotify_add_watch(descriptor, directory.c_str(), DirectoryEvents);
    if (directoryWatch >= 0) {
        if (parentWatch >= 0)
            ::inotify_rm_watch(descriptor, parentWatch);
        parentWatch = -1;
        return true;
    }
    int directoryErrno = errno;
    if (parentWatch < 0)
        parentWatch = ::inotify_add_watch(descriptor, Parent(directory).c_str(), ParentEvents);
    if (parentWatch < 0) {
        error = "cannot watch " + directory + " (" + std::strerror(directoryErrno) + ") nor its parent (" +
                std::strerror(errno) + ")";
        return false;
    }
    // The directory may have appeared between the two calls.
    directoryWatch = ::inotify_add_watch(descriptor, directory.c_str(), DirectoryEvents);
    return true;
}

void DescriptionWatcher::ReadEvents(std::set<std::string>& names, bool& rescan)
{
    alignas(inotify_event) char buffer[4096];
    bool rewatch = false;
    for (;;) {
        ssize_t size = ::read(descriptor, buffer, sizeof buffer);
        if (size < 0 && errno == EINTR)
            continue;
        if (size <= 0)
            break;
        for (ssize_t offset = 0; offset + static_cast<ssize_t>(sizeof(inotify_event)) <= size;) {
            inotify_event event;
            std::memcpy(&event, buffer + offset, sizeof event);
            std::string name;
            if (event.len > 0)
                name.assign(buffer + offset + sizeof event, strnlen(buffer + offset + sizeof event, event.len));
            offset += static_cast<ssize_t>(sizeof event + event.len);
            if ((event.mask & IN_Q_OVERFLOW) != 0) {
                rescan = true;
            } else if (event.wd == directoryWatch && directoryWatch >= 0) {
                if ((event.mask & (IN_DELETE_SELF | IN_MOVE_SELF | IN_IGNORED)) != 0) {
                    rewatch = true;
                } else if (IsDescriptionName(name)) {
                    if (names.size() < MaximumNames || names.count(name) != 0)
                        names.insert(name);
                    else
                        rescan = true;
                }
            } else if (event.wd == parentWatch && parentWatch >= 0 && name == LastPart(directory)) {
                rewatch = true;
            }
        }
    }
    if (rewatch) {
        // The directory went (every description with it) or came: watch
        // whichever is there now and let the caller list it afresh.
        if (directoryWatch >= 0)
            ::inotify_rm_watch(descriptor, directoryWatch);
        directoryWatch = -1;
        std::string ignored;
        WatchDirectoryOrParent(ignored);
        rescan = true;
    }
}

} // namespace KivResponder
