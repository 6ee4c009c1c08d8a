// SPDX-License-Identifier: Apache-2.0
// StandardOutputCapture.h - collects everything the process writes to its
// standard output (file descriptor 1, stdio included) while it lives.
//
// For tests of code that prints with puts or printf. The output goes to an
// unlinked temporary file, so large outputs cannot block. One at a time, on
// the test's thread.
//
// Example:
//   #include <gtest/gtest.h>
//   #include <cstdio>
//   KivTest::StandardOutputCapture capture;
//   std::puts("saving ...\r");               // what DiscoverableServices::Update prints
//   EXPECT_EQ(capture.Finish(), "saving ...\r\n");
#ifndef KIV_TESTS_STANDARDOUTPUTCAPTURE_H
#define KIV_TESTS_STANDARDOUTPUTCAPTURE_H

#include <string>

namespace KivTest {

class StandardOutputCapture
{
public:
    /// Flushes stdout and sends file descriptor 1 to a fresh temporary file.
    StandardOutputCapture();
    /// Puts the original standard output back if Finish was not called.
    ~StandardOutputCapture();

    StandardOutputCapture(const StandardOutputCapture&) = delete;
    StandardOutputCapture& operator=(const StandardOutputCapture&) = delete;

    /// Flushes stdout, puts the original standard output back and returns
    /// every byte written meanwhile. Later calls return an empty text.
    std::string Finish();

private:
    int savedOutput;
    int captureFile;
};

} // namespace KivTest

#endif
