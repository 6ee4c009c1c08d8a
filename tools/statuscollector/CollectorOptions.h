// SPDX-License-Identifier: Apache-2.0
// CollectorOptions.h - the command line of the status collector.
//
// Usage:
//   statuscollector [-nolog] [-output FILE]
//   statuscollector --help | --version
//
// "-nolog" silences the collector's own diagnostics; "-output FILE" writes
// the snapshot to FILE instead of /dev/shm/status.xml; "--help" and
// "--version" ask for a text on standard output instead of a snapshot. Made
// by main() from argv; a plain value used by one thread.
//
// Example:
//   #include <cstdio>
//   auto run = [](int argc, const char* const* argv) {  // main()'s first steps
//       CollectorOptions options;
//       if (!options.Parse(argc, argv)) {
//           std::fprintf(stderr, "%s\n%s\n", options.Problem().c_str(), CollectorOptions::Usage);
//           return CollectorOptions::UsageExitStatus;
//       }
//       if (options.Asked() != CollectorOptions::Request::Collect) {
//           std::fputs(options.Answer().c_str(), stdout);
//           return 0;
//       }
//       return 0;  // collect into options.OutputFile()
//   };
#ifndef KIV_TOOLS_COLLECTOROPTIONS_H
#define KIV_TOOLS_COLLECTOROPTIONS_H

#include <string>

namespace KivCollector {

class CollectorOptions
{
public:
    /// Where the daemon reads the snapshot.
    static constexpr const char* DefaultOutputFile = "/dev/shm/status.xml";
    /// Exit status for a command line that does not parse.
    static constexpr int UsageExitStatus = 2;
    /// One line describing the command line, without a line feed.
    static constexpr const char* Usage = "usage: statuscollector [-nolog] [-output FILE]";

    /// What the command line asks for.
    enum class Request { Collect, Help, Version };

    /// Reads the arguments after argv[0]. Each option may be given more than
    /// once (the last "-output" wins). False for an unknown argument, an
    /// "-output" without a file or with an empty one; Problem() then says
    /// which. "-nolog" counts even when a later argument is wrong, so that a
    /// silenced caller stays silent. The first "--help" or "--version"
    /// anywhere on the line decides the request, and the other arguments are
    /// then not looked at.
    bool Parse(int argc, const char* const* argv);

    Request Asked() const { return request; }
    /// The text a Help or Version request prints, ending in a line feed;
    /// empty for Collect.
    std::string Answer() const;
    bool Quiet() const { return quiet; }
    const std::string& OutputFile() const { return outputFile; }
    /// What was wrong with the command line; empty after a good parse.
    const std::string& Problem() const { return problem; }

private:
    Request request = Request::Collect;
    bool quiet = false;
    std::string outputFile = DefaultOutputFile;
    std::string problem;
};

} // namespace KivCollector

#endif
