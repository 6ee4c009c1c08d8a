// SPDX-License-Identifier: Apache-2.0
// discovery-responder: makes every description in the descriptions
// directory discoverable with WS-Discovery until SIGTERM or SIGINT. Exit
// status 0 after a signal, 1 when it cannot start, 2 for a command line it
// does not understand.

#include <KivResponder/ResponderLoop.h>
#include <KivResponder/ResponderOptions.h>

#include <cstdio>

using namespace KivResponder;

int main(int argc, char** argv)
{
    ResponderOptions options;
    if (!options.Parse(argc, argv)) {
        std::fprintf(stderr, "discovery-responder: %s\n%s\n", options.Problem().c_str(), ResponderOptions::Usage);
        return ResponderOptions::UsageExitStatus;
    }
    if (options.Asked() != ResponderOptions::Request::Run) {
        std::fputs(options.Answer().c_str(), stdout);
        return 0;
    }
    ResponderLoop loop(options);
    return loop.Run();
}
