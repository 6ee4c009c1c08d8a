// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/SmartPtr.h>
#include <KivPlr/io/Log.h>
#include <KivPlr/io/LogManager.h>
#include <KivTest/FakeSyslogSocket.h>
#include <KivTest/FatalMessage.h>
#include <KivTest/NullReference.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

using namespace KivPlr;
using KivTest::CaptureSyslog;
using KivTest::ParsedMessages;
using KivTest::SyslogCapture;
using KivTest::SyslogMessage;

namespace {

KIV_NULL_REFERENCE(NullResult, _Result)
KIV_NULL_REFERENCE(NullLog, SmartPtr<ILog>)
KIV_NULL_REFERENCE(NullIdentity, const std::string)

// Syslog facility codes as they appear in the priority number (facility * 8).
constexpr int User = 8;
constexpr int Daemon = 24;
constexpr int Kernel = 0;
constexpr int Error = 3;

// The identity must outlive the channel: the C library keeps the pointer.
const std::string Identity = "kiv-manager-test";

} // namespace

TEST(LogManagerTest, NewManagerHasCountZero)
{
    LogManager* manager = new LogManager;
    ILogManager* asInterface = manager;
    EXPECT_EQ(asInterface->GetReferenceCount(), 0u);
    SmartPtr<ILogManager> owner(manager);
}

TEST(LogManagerTest, OpenMapsEveryFacility)
{
    // Facility 2 is the kernel's: <0 + 3> for an error.
    const std::vector<std::pair<std::uint32_t, int>> facilities = {
        {0, User}, {1, Daemon}, {2, Kernel}, {3, User}, {9, User}, {0xFFFFFFFFu, User}, {2, Kernel}, {0, User}};
    SyslogCapture capture = CaptureSyslog([&facilities] {
        SmartPtr<ILogManager> logs(new LogManager);
        for (const auto& entry : facilities) {
            SmartPtr<ILog> log;
            _Result result = ResultFail;
            logs->Open(Path("ignored"), Identity, entry.first, log, result);
            if (result != ResultPass || !log)
                return;
            log->Write(LogLevelError, "facility " + std::to_string(entry.first), result);
        } // each log closes the channel as it goes; the next Open opens it again

    });
    KIV_SKIP_OR_FAIL_UNLESS_CAPTURED(capture);
    std::vector<SyslogMessage> messages = ParsedMessages(capture);
    ASSERT_EQ(messages.size(), facilities.size());
    for (std::size_t index = 0; index < facilities.size(); ++index) {
        SCOPED_TRACE(facilities[index].first);
        EXPECT_EQ(messages[index].priority, facilities[index].second + Error);
        EXPECT_EQ(messages[index].identity, Identity);
        EXPECT_EQ(messages[index].text, "facility " + std::to_string(facilities[index].first));
    }
}

TEST(LogManagerTest, OpenWithKernelFacilityWritesEveryLevelAsKernelMessage)
{
    SyslogCapture capture = CaptureSyslog([] {
        SmartPtr<ILogManager> logs(new LogManager);
        SmartPtr<ILog> log;
        _Result result = ResultFail;
        logs->Open(Path(), Identity, LogFacilityKernel, log, result);
        for (std::uint32_t level : {LogLevelInformation, LogLevelWarning, LogLevelError})
            log->Write(level, "kernel", result);
    });
    KIV_SKIP_OR_FAIL_UNLESS_CAPTURED(capture);
    std::vector<SyslogMessage> messages = ParsedMessages(capture);
    ASSERT_EQ(messages.size(), 3u);
    EXPECT_EQ(messages[0].priority, 6);
    EXPECT_EQ(messages[1].priority, 4);
    EXPECT_EQ(messages[2].priority, 3);
}

TEST(LogManagerTest, OpenSetsTheIdentityWithoutProcessId)
{
    SyslogCapture capture = CaptureSyslog([] {
        SmartPtr<ILogManager> logs(new LogManager);
        SmartPtr<ILog> log;
        _Result result = ResultFail;
        logs->Open(Path("/var/log/anything"), Identity, LogFacilityDaemon, log, result);
        log->Write(LogLevelWarning, "hello", result);
    });
    KIV_SKIP_OR_FAIL_UNLESS_CAPTURED(capture);
    std::vector<SyslogMessage> messages = ParsedMessages(capture);
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].priority, Daemon + 4);
    EXPECT_EQ(messages[0].identity, Identity);
    EXPECT_FALSE(messages[0].hasProcessId);
    EXPECT_EQ(messages[0].text, "hello");
}

TEST(LogManagerTest, OpenGivesANewLogAndPass)
{
    // Opening sends nothing (no immediate connection), so this runs here.
    SmartPtr<ILogManager> logs(new LogManager);
    SmartPtr<ILog> log;
    _Result result = ResultFail;
    logs->Open(Path(), Identity, 5, log, result);
    EXPECT_EQ(result, ResultPass);
    ASSERT_TRUE(log);
    EXPECT_EQ(log->GetReferenceCount(), 1u);
    EXPECT_NE(dynamic_cast<Log*>(log.Get()), nullptr);
}

TEST(LogManagerTest, OpenIntoAPointerHoldingALogClosesTheChannelAgain)
{
    // The old log goes after the new openlog, and its closelog ends the
    // channel just opened: the next write carries the C library's defaults.
    SyslogCapture capture = CaptureSyslog([] {
        SmartPtr<ILogManager> logs(new LogManager);
        SmartPtr<ILog> log;
        _Result result = ResultFail;
        logs->Open(Path(), Identity, LogFacilityUser, log, result);
        ILog* first = log.Get();
        logs->Open(Path(), Identity, LogFacilityUser, log, result);
        if (log.Get() == first)
            return;
        log->Write(LogLevelInformation, "after reopening", result);
    });
    KIV_SKIP_OR_FAIL_UNLESS_CAPTURED(capture);
    std::vector<SyslogMessage> messages = ParsedMessages(capture);
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_NE(messages[0].identity, Identity);
    EXPECT_EQ(messages[0].text, "after reopening");
}

TEST(LogManagerTest, NullReferencesAreFatal)
{
    SmartPtr<ILogManager> logs(new LogManager);
    SmartPtr<ILog> log;
    _Result result = ResultFail;
    EXPECT_FATAL_MESSAGE(logs->Open(Path(), Identity, LogFacilityUser, log, NullResult()),
                         L"LogManager: result NULL reference.");
    EXPECT_FATAL_MESSAGE(logs->Open(Path(), NullIdentity(), LogFacilityUser, log, result),
                         L"LogManager: identity NULL reference.");
    EXPECT_FATAL_MESSAGE(logs->Open(Path(), Identity, LogFacilityUser, NullLog(), result),
                         L"LogManager: log NULL reference.");
}
