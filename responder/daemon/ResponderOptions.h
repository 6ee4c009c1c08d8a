// SPDX-License-Identifier: Apache-2.0
// ResponderOptions.h - the command line of discovery-responder.
//
// Usage:
//   discovery-responder [--descriptions-dir DIR] [--state-dir DIR] [--interface NAME]...
//   discovery-responder --help | --version
//
// Options take their value as the next argument or after "=". Made by
// main() from argv; a plain value used by one thread.
//
// Example:
//   #include <cstdio>
//   auto start = [](int argc, const char* const* argv) {   // main()'s first steps
//       ResponderOptions options;
//       if (!options.Parse(argc, argv)) {
//           std::fprintf(stderr, "discovery-responder: %s\n%s\n", options.Problem().c_str(), ResponderOptions::Usage);
//           return ResponderOptions::UsageExitStatus;
//       }
//       return 0;   // run with options
//   };
#ifndef KIV_RESPONDER_RESPONDEROPTIONS_H
#define KIV_RESPONDER_RESPONDEROPTIONS_H

#include <string>
#include <vector>

namespace KivResponder {

class ResponderOptions
{
public:
    /// Where discoveryd publishes its descriptions.
    static constexpr const char* DefaultDescriptionsDirectory = "/var/lib/discovery";
    /// The unit's StateDirectory.
    static constexpr const char* DefaultStateDirectory = "/var/lib/discovery-responder";
    /// Exit status for a command line that does not parse.
    static constexpr int UsageExitStatus = 2;
    /// One line describing the command line, without a line feed.
    static constexpr const char* Usage =
        "usage: discovery-responder [--descriptions-dir DIR] [--state-dir DIR] [--interface NAME]...";

    /// What the command line asks for.
    enum class Request { Run, Help, Version };

    /// Reads the arguments after argv[0]. "--descriptions-dir" and
    /// "--state-dir" may be repeated (the last wins); every "--interface"
    /// adds a name. False for an unknown argument, an option without its
    /// value or with an empty one; Problem() then says which. The first
    /// "--help" or "--version" anywhere decides the request, and the other
    /// arguments are then not looked at.
    bool Parse(int argc, const char* const* argv);

    Request Asked() const { return request; }
    /// The text a Help or Version request prints, ending in a line feed;
    /// empty for Run.
    std::string Answer() const;
    const std::string& DescriptionsDirectory() const { return descriptionsDirectory; }
    const std::string& StateDirectory() const { return stateDirectory; }
    /// The interfaces to serve; empty: every multicast-capable one.
    const std::vector<std::string>& Interfaces() const { return interfaces; }
    /// What was wrong with the command line; empty after a good parse.
    const std::string& Problem() const { return problem; }

private:
    Request request = Request::Run;
    std::string descriptionsDirectory = DefaultDescriptionsDirectory;
    std::string stateDirectory = DefaultStateDirectory;
    std::vector<std::string> interfaces;
    std::string problem;
};

} // namespace KivResponder

#endif
