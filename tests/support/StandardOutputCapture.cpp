// SPDX-License-Identifier: Apache-2.0
#include <KivTest/StandardOutputCapture.h>

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace KivTest {

StandardOutputCapture::StandardOutputCapture() : savedOutput(-1), captureFile(-1)
{
    std::fflush(stdout);
    const char* base = std::getenv("TMPDIR");
    std::string pattern = std::string(base != nullptr && *base != '\0' ? base : "/tmp") +
                          "/stdout-capture-XXXXXX";
    captureFile = mkstemp(&pattern[0]);
    if (captureFile < 0)
        return;
    unlink(pattern.c_str());
    savedOutput = dup(STDOUT_FILENO);
    dup2(captureFile, STDOUT_FILENO);
}

StandardOutputCapture::~StandardOutputCapture()
{
    Finish();
}

std::string StandardOutputCapture::Finish()
{
    std::string captured;
    if (captureFile < 0)
        return captured;
    std::fflush(stdout);
    if (savedOutput >= 0) {
        dup2(savedOutput, STDOUT_FILENO);
        close(savedOutput);
        savedOutput = -1;
    }
    char buffer[4096];
    ssize_t count;
    off_t offset = 0;
    while ((count = pread(captureFile, buffer, sizeof buffer, offset)) > 0) {
        captured.append(buffer, static_cast<std::size_t>(count));
        offset += count;
    }
    close(captureFile);
    captureFile = -1;
    return captured;
}

} // namespace KivTest
