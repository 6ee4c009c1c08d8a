// SPDX-License-Identifier: Apache-2.0
// BadRecordFiles.h - configuration and status files that are wrong in one
// way each, with the message the loaders must give for them.
//
// Shared by the library tests (tests/closed) and the discovery-check tests
// (tests/tools), which must report the same faults at the same positions.
//
// Example:
//   #include <KivTest/TemporaryDirectory.h>
//   TemporaryDirectory directory;
//   for (const BadRecordFile& sample : BadRecordFiles()) {
//       std::string file = WriteBadRecordFile(directory.Path(), sample);
//       std::string message = file + ":" + sample.expected;  // what the loader must report
//   }
#ifndef KIV_TESTS_BADRECORDFILES_H
#define KIV_TESTS_BADRECORDFILES_H

#include <string>
#include <vector>

namespace KivTest {

struct BadRecordFile
{
    enum Kind { Configuration, Status };

    const char* fault;     ///< what is wrong, for test output
    Kind kind;             ///< which loader reads it
    std::string content;   ///< the whole file
    std::string expected;  ///< the message after "<path>:": "line:column: description"
};

/// Every sample, each wrong in exactly one way.
const std::vector<BadRecordFile>& BadRecordFiles();

/// Writes \p sample into \p directory as configuration.xml or status.xml
/// and answers the path of the file.
std::string WriteBadRecordFile(const std::string& directory, const BadRecordFile& sample);

} // namespace KivTest

#endif
