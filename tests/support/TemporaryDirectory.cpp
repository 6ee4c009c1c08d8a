// SPDX-License-Identifier: Apache-2.0
#include <KivTest/TemporaryDirectory.h>

#include <cstdlib>
#include <fstream>
#include <ftw.h>
#include <sstream>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace KivTest {

namespace {

int RemoveEntry(const char* path, const struct stat*, int, struct FTW*)
{
    // Make read-only directories writable again so that their entries can go.
    chmod(path, 0700);
    remove(path);
    return 0;
}

} // namespace

TemporaryDirectory::TemporaryDirectory()
{
    const char* base = std::getenv("TMPDIR");
    std::string pattern = std::string(base != nullptr && *base != '\0' ? base : "/tmp") + "/kiv-test-XXXXXX";
    std::vector<char> buffer(pattern.begin(), pattern.end());
    buffer.push_back('\0');
    if (mkdtemp(buffer.data()) == nullptr)
        throw std::runtime_error("cannot create a temporary directory from " + pattern);
    path = buffer.data();
}

TemporaryDirectory::~TemporaryDirectory()
{
    RemoveTree(path);
}

bool WriteFile(const std::string& file, const std::string& content)
{
    std::ofstream stream(file, std::ios::binary | std::ios::trunc);
    stream << content;
    stream.close();
    return !stream.fail();
}

std::string ReadFile(const std::string& file)
{
    std::ifstream stream(file, std::ios::binary);
    std::ostringstream content;
    content << stream.rdbuf();
    return content.str();
}

void RemoveTree(const std::string& path)
{
    nftw(path.c_str(), RemoveEntry, 16, FTW_DEPTH | FTW_PHYS);
}

} // namespace KivTest
