// SPDX-License-Identifier: Apache-2.0
#include <StatusCollector/StatusCollector.h>

#include <KivClosed/AtomicFileWriter.h>
#include <StatusCollector/DefaultGatewayTable.h>
#include <StatusCollector/DrmOutputScanner.h>
#include <StatusCollector/ModelCodeSetting.h>
#include <StatusCollector/NetworkDeviceScanner.h>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace KivCollector {

namespace {

const mode_t SnapshotMode = 0644;

/// What a file of \p mode is, with its article, for a message.
const char* KindOfFile(mode_t mode)
{
    if (S_ISDIR(mode))
        return "a directory";
    if (S_ISLNK(mode))
        return "a symbolic link";
    if (S_ISFIFO(mode))
        return "a named pipe";
    if (S_ISSOCK(mode))
        return "a socket";
    if (S_ISCHR(mode))
        return "a character device";
    if (S_ISBLK(mode))
        return "a block device";
    return "something other than a file";
}

} // namespace

StatusCollector::StatusCollector()
    : StatusCollector(DefaultGatewayTable::KernelRouteFile, DrmOutputScanner::KernelDrmDirectory)
{
}

StatusCollector::StatusCollector(std::string routeFilePath, std::string drmDirectoryPath)
    : routeFile(std::move(routeFilePath)), drmDirectory(std::move(drmDirectoryPath))
{
}

bool StatusCollector::Collect(CollectedStatus& status, std::vector<std::string>& warnings,
                              std::string& fault) const
{
    CollectedStatus collected;
    std::string warning;
    collected.modelCode = ModelCodeSetting::Read(warning);
    if (!warning.empty())
        warnings.push_back(warning);

    DefaultGatewayTable gateways;
    if (!gateways.Load(routeFile, fault))
        return false;
    if (!NetworkDeviceScanner().Scan(gateways, collected.networkDevices, fault))
        return false;
    if (!DrmOutputScanner(drmDirectory).Scan(collected.outputs, fault))
        return false;
    status = std::move(collected);
    return true;
}

bool StatusCollector::CheckOutputPath(const std::string& file, std::string& fault)
{
    struct stat information;
    if (::lstat(file.c_str(), &information) != 0 || S_ISREG(information.st_mode))
        return true;
    fault = file + " is " + KindOfFile(information.st_mode) + ", not a regular file: not replaced, left as it is";
    return false;
}

bool StatusCollector::Publish(const std::string& text, const std::string& file, std::string& fault)
{
    std::string::size_type slash = file.rfind('/');
    std::string directory = slash == std::string::npos ? "." : slash == 0 ? "/" : file.substr(0, slash);
    std::string name = slash == std::string::npos ? file : file.substr(slash + 1);
    if (name.empty() || name == "." || name == "..") {
        fault = file + ": not a file name";
        return false;
    }
    if (!CheckOutputPath(file, fault))
        return false;
    int previousDirectory = ::open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (previousDirectory < 0) {
        fault = std::string("cannot open the working directory: ") + std::strerror(errno);
        return false;
    }
    bool written = false;
    if (::chdir(directory.c_str()) != 0)
        fault = file + ": cannot enter " + directory + ": " + std::strerror(errno);
    else
        written = KivClosed::AtomicFileWriter::Replace(name, text, SnapshotMode, fault);
    if (::fchdir(previousDirectory) != 0 && written) {
        fault = std::string("cannot return to the working directory: ") + std::strerror(errno);
        written = false;
    }
    ::close(previousDirectory);
    return written;
}

} // namespace KivCollector
