// SPDX-License-Identifier: Apache-2.0
// The kernel's own interface list, read only.
#include <KivResponder/LinuxInterfaceMonitor.h>

#include <gtest/gtest.h>

#include <net/if.h>
#include <string>

using KivResponder::InterfaceTable;
using KivResponder::LinuxInterfaceMonitor;

TEST(LinuxInterfaceMonitorTest, DumpListsTheLoopbackInterfaceWithItsFlags)
{
    LinuxInterfaceMonitor monitor;
    InterfaceTable table;
    std::string error;
    ASSERT_TRUE(monitor.Open(error)) << error;
    ASSERT_TRUE(monitor.Dump(table, error)) << error;
    const InterfaceTable::Interface* loopback = table.Find(static_cast<int>(if_nametoindex("lo")));
    ASSERT_NE(loopback, nullptr);
    EXPECT_EQ(loopback->name, "lo");
    EXPECT_TRUE(loopback->loopback);
    EXPECT_FALSE(table.IsServed(*loopback));
}

TEST(LinuxInterfaceMonitorTest, NoNotificationPendingChangesNothing)
{
    LinuxInterfaceMonitor monitor;
    InterfaceTable table;
    std::string error;
    ASSERT_TRUE(monitor.Open(error)) << error;
    ASSERT_TRUE(monitor.Dump(table, error)) << error;
    std::size_t count = table.Interfaces().size();
    monitor.ReadNotifications(table);
    EXPECT_EQ(table.Interfaces().size(), count);
}
