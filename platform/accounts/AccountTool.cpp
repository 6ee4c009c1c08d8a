// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/accounts/AccountTool.h>

#include <KivPlr/core/FatalError.h>

#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/wait.h>

namespace KivPlr {

char* AccountTool::Format(const char* format, ...)
{
    if (format == nullptr)
        return nullptr;
    va_list arguments;
    va_start(arguments, format);
    int length = std::vsnprintf(nullptr, 0, format, arguments);
    va_end(arguments);
    if (length < 0)
        return nullptr;
    std::size_t size = static_cast<std::size_t>(length) + 1;
    char* buffer = static_cast<char*>(std::malloc(size));
    if (buffer == nullptr)
        return nullptr;
    va_start(arguments, format);
    int written = std::vsnprintf(buffer, size, format, arguments);
    va_end(arguments);
    if (written != length) {
        WipeAndRelease(buffer);
        return nullptr;
    }
    return buffer;
}

_Result AccountTool::Run(const char* commandLine)
{
    // system(NULL) only asks whether a shell exists; it runs nothing.
    if (commandLine == nullptr)
        return ResultFail;
    return ResultOfStatus(std::system(commandLine));
}

_Result AccountTool::ResultOfStatus(int status)
{
    if (status == -1)
        return ResultFail;
    return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? ResultPass : ResultFail;
}

void AccountTool::ReadOutput(const char* commandLine, std::string& output)
{
    if (IsNullReference(&output))
        FatalError(L"AccountTool: output NULL reference.");
    if (commandLine == nullptr)
        return;
    FILE* pipe = popen(commandLine, "r");
    if (pipe == nullptr)
        return;
    char piece[OutputPieceSize] = {};
    while (std::fgets(piece, OutputPieceSize, pipe) != nullptr) {
        output.append(piece);
        std::memset(piece, 0, sizeof piece);
    }
    pclose(pipe);
}

void AccountTool::Wipe(char* buffer)
{
    if (buffer != nullptr)
        explicit_bzero(buffer, std::strlen(buffer));
}

void AccountTool::Release(char* buffer)
{
    std::free(buffer);
}

void AccountTool::WipeAndRelease(char* buffer)
{
    Wipe(buffer);
    Release(buffer);
}

} // namespace KivPlr
