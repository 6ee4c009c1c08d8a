// SPDX-License-Identifier: Apache-2.0
// FuzzWorkspace.h - a private scratch directory for one fuzzing process,
// under /dev/shm when it exists (files there never reach a disk), removed
// with its contents when the process exits.
//
// Each fuzz target makes one on first use and keeps it for the whole run;
// libFuzzer runs the target on one thread.
//
//   static FuzzWorkspace workspace;
//   workspace.Write("configuration.xml", data, size);
//   config.LoadResources(workspace.Path().c_str());
#ifndef KIV_FUZZ_FUZZWORKSPACE_H
#define KIV_FUZZ_FUZZWORKSPACE_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstdio>
#include <dirent.h>
#include <string>
#include <unistd.h>
#include <vector>

class FuzzWorkspace
{
public:
    FuzzWorkspace()
    {
        std::string base = access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp";
        std::vector<char> pattern(base.begin(), base.end());
        const std::string suffix = "/kiv-fuzz-XXXXXX";
        pattern.insert(pattern.end(), suffix.begin(), suffix.end());
        pattern.push_back('\0');
        if (mkdtemp(pattern.data()) == nullptr) {
            std::perror("mkdtemp");
            std::abort();
        }
        path = pattern.data();
    }

    ~FuzzWorkspace()
    {
        for (const std::string& entry : Entries())
            unlink((path + "/" + entry).c_str());
        rmdir(path.c_str());
    }

    FuzzWorkspace(const FuzzWorkspace&) = delete;
    FuzzWorkspace& operator=(const FuzzWorkspace&) = delete;

    const std::string& Path() const { return path; }

    /// Replaces the file \p name in the workspace with \p size bytes of \p data.
    void Write(const std::string& name, const std::uint8_t* data, std::size_t size) const
    {
        std::string file = path + "/" + name;
        FILE* stream = std::fopen(file.c_str(), "wb");
        if (stream == nullptr || (size > 0 && std::fwrite(data, 1, size, stream) != size) || std::fclose(stream) != 0) {
            std::perror(file.c_str());
            std::abort();
        }
    }

    /// The names in the workspace, without "." and "..".
    std::vector<std::string> Entries() const
    {
        std::vector<std::string> names;
        DIR* directory = opendir(path.c_str());
        if (directory == nullptr)
            return names;
        while (struct dirent* entry = readdir(directory)) {
            std::string name = entry->d_name;
            if (name != "." && name != "..")
                names.push_back(name);
        }
        closedir(directory);
        return names;
    }

private:
    std::string path;
};

/// Stops the run with a message: libFuzzer then saves the input.
#define FUZZ_CHECK(condition)                                                                    \
    do {                                                                                         \
        if (!(condition)) {                                                                      \
            std::fprintf(stderr, "%s:%d: check failed: %s\n", __FILE__, __LINE__, #condition);  \
            std::abort();                                                                        \
        }                                                                                        \
    } while (0)

#endif
