// SPDX-License-Identifier: Apache-2.0
#include <KivTest/ChildProcess.h>

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

extern "C" void __lsan_disable() __attribute__((weak));

namespace KivTest {

namespace {

void ReadAll(int outputPipe, int errorPipe, std::string& output, std::string& error)
{
    struct pollfd descriptors[2] = {{outputPipe, POLLIN, 0}, {errorPipe, POLLIN, 0}};
    std::string* targets[2] = {&output, &error};
    int open = 2;
    while (open > 0) {
        if (poll(descriptors, 2, -1) < 0) {
            if (errno == EINTR)
                continue;
            break;
        }
        for (int index = 0; index < 2; ++index) {
            if (descriptors[index].fd < 0 || descriptors[index].revents == 0)
                continue;
            char buffer[4096];
            ssize_t count = read(descriptors[index].fd, buffer, sizeof buffer);
            if (count > 0) {
                targets[index]->append(buffer, static_cast<std::size_t>(count));
            } else if (count == 0 || errno != EINTR) {
                close(descriptors[index].fd);
                descriptors[index].fd = -1;
                --open;
            }
        }
    }
}

} // namespace

ChildOutcome RunInChild(const std::function<void()>& body)
{
    ChildOutcome outcome;
    int outputPipe[2];
    int errorPipe[2];
    if (pipe(outputPipe) != 0 || pipe(errorPipe) != 0) {
        outcome.standardError = std::string("pipe: ") + std::strerror(errno);
        return outcome;
    }
    std::fflush(nullptr);
    pid_t child = fork();
    if (child < 0) {
        outcome.standardError = std::string("fork: ") + std::strerror(errno);
        return outcome;
    }
    if (child == 0) {
        if (__lsan_disable != nullptr)
            __lsan_disable();
        dup2(outputPipe[1], STDOUT_FILENO);
        dup2(errorPipe[1], STDERR_FILENO);
        close(outputPipe[0]);
        close(outputPipe[1]);
        close(errorPipe[0]);
        close(errorPipe[1]);
        body();
        std::fflush(nullptr);
        _exit(0);
    }
    close(outputPipe[1]);
    close(errorPipe[1]);
    ReadAll(outputPipe[0], errorPipe[0], outcome.standardOutput, outcome.standardError);
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    if (WIFEXITED(status)) {
        outcome.exited = true;
        outcome.exitStatus = WEXITSTATUS(status);
    } else if (WIFSIGNALED(status)) {
        outcome.signalNumber = WTERMSIG(status);
    }
    return outcome;
}

std::string Describe(const ChildOutcome& outcome)
{
    std::string text = outcome.exited ? "exited with " + std::to_string(outcome.exitStatus)
                                      : "killed by signal " + std::to_string(outcome.signalNumber);
    text += "; stdout: \"" + outcome.standardOutput + "\"; stderr: \"" + outcome.standardError + "\"";
    return text;
}

} // namespace KivTest
