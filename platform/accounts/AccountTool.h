// SPDX-License-Identifier: Apache-2.0
// AccountTool.h - how the account classes run the system's shadow tools.
//
// User and UserGroup format a command line into a heap buffer sized for it,
// hand it to the shell with system() and judge it by the exit status; the
// group listing reads a command's output through popen(). The helpers are
// stateless and may be called from any thread; each call blocks until the
// shell it started has ended.
//
// Example:
//   const char* groupName = "video";
//   char* line = AccountTool::Format("groupadd %s", groupName);
//   _Result result = line != nullptr ? AccountTool::Run(line) : ResultFail;
//   AccountTool::Release(line);
#ifndef KIVPLR_ACCOUNTTOOL_H
#define KIVPLR_ACCOUNTTOOL_H

#include <KivPlr/core/Result.h>

#include <string>

namespace KivPlr {

class AccountTool
{
public:
    /// Size of the pieces in which ReadOutput collects a command's output.
    static constexpr int OutputPieceSize = 512;

    /// A command line made with the C formatting rules in a malloc'd buffer
    /// of exactly the size it needs; null when formatting or allocation
    /// fails. Release it with Release or WipeAndRelease.
    static char* Format(const char* format, ...) __attribute__((format(printf, 1, 2)));

    /// Runs \p commandLine with system(): 200 when the shell ends normally
    /// with exit status 0; 500 for any other status, a command ended by a
    /// signal, a shell that could not be started, or a null line.
    static _Result Run(const char* commandLine);

    /// The result that a status returned by system() stands for (see Run).
    static _Result ResultOfStatus(int status);

    /// Runs \p commandLine with popen(..., "r") and appends everything it
    /// prints to \p output, read with fgets in pieces of at most
    /// OutputPieceSize bytes (a NUL byte inside a piece ends what is kept of
    /// it). Nothing is appended when the command cannot be started. A null
    /// \p output reference is fatal, before anything runs.
    static void ReadOutput(const char* commandLine, std::string& output);

    /// Overwrites \p buffer with zero bytes over its length, in a way the
    /// optimiser cannot drop. A null buffer is left alone.
    static void Wipe(char* buffer);

    /// Frees a buffer from Format; null is accepted.
    static void Release(char* buffer);

    /// Wipe, then Release: for command lines that carry secrets.
    static void WipeAndRelease(char* buffer);
};

} // namespace KivPlr

#endif
