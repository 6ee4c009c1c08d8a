// SPDX-License-Identifier: Apache-2.0
// OpenDescriptors.h - what the kernel says about this process's open files:
// which descriptors refer to a path, and the flags an open descriptor has.
//
// Tests of streams use it to see a stream's descriptor without asking the
// stream, and to check that a released stream really closed it:
//
// Example:
//   #include <gtest/gtest.h>
//   #include <fcntl.h>
//   std::string file = "/var/lib/discovery/Management.xml";
//   std::vector<int> open = KivTest::DescriptorsOpenOn(file);
//   ASSERT_EQ(open.size(), 1u);
//   EXPECT_EQ(KivTest::DescriptorFlags(open[0]) & O_ACCMODE, O_RDWR);
//
// Reads /proc/self; safe from any thread, but only a snapshot.
#ifndef KIV_TESTS_OPENDESCRIPTORS_H
#define KIV_TESTS_OPENDESCRIPTORS_H

#include <string>
#include <vector>

namespace KivTest {

/// The descriptors of this process that refer to \p path (compared after
/// resolving symbolic links in it), in ascending order.
std::vector<int> DescriptorsOpenOn(const std::string& path);

/// The "flags:" value of /proc/self/fdinfo/<descriptor> (the file status
/// flags and access mode; creation flags such as O_CREAT are not kept by the
/// kernel), or -1 when the descriptor is not open.
int DescriptorFlags(int descriptor);

} // namespace KivTest

#endif
