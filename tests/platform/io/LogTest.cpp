// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/core/SmartPtr.h>
#include <KivPlr/io/Log.h>
#include <KivPlr/io/LogManager.h>
#include <KivTest/ChildProcess.h>
#include <KivTest/FakeSyslogSocket.h>
#include <KivTest/FatalMessage.h>
#include <KivTest/NullReference.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <unistd.h>
#include <vector>

using namespace KivPlr;
using KivTest::CaptureSyslog;
using KivTest::ChildOutcome;
using KivTest::ParsedMessages;
using KivTest::SyslogCapture;
using KivTest::SyslogMessage;

namespace {

KIV_NULL_REFERENCE(NullResult, _Result)

constexpr int User = 8;
constexpr int Information = 6;
constexpr int Warning = 4;
constexpr int Error = 3;

// The identities must outlive the channel: the C library keeps the pointer.
const std::string FirstIdentity = "kiv-first-log";
const std::string SecondIdentity = "kiv-second-log";

// Every operation of a log handed a null result, with the message it must
// end the process with.
struct NullResultCase
{
    std::function<void(ILog&)> call;
    const wchar_t* message;
};

const std::vector<NullResultCase>& NullResultCases()
{
    static const std::vector<NullResultCase> cases = {
        {[](ILog& log) { log.Write(LogLevelInformation, std::string("dropped"), NullResult()); },
         L"Log: result NULL reference."},
        {[](ILog& log) { log.Write(LogLevelInformation, "dropped too", NullResult()); }, L"ILog: result NULL reference."},
        {[](ILog& log) { log.Close(NullResult()); }, L"Log: result NULL reference."},
    };
    return cases;
}

// In a test child of its own: true when \p call ends that child silently
// with exit status 1 through the fatal-error routine with \p message.
bool EndsFatallyWith(const std::function<void()>& call, const wchar_t* message)
{
    ChildOutcome outcome = KivTest::RunInChild(call);
    return outcome.exited && outcome.exitStatus == 1 && outcome.standardOutput.empty() &&
           outcome.standardError.empty() && KivTest::FatalMessageOf(call) == message;
}

// A log on the user facility with \p identity.
SmartPtr<ILog> OpenLog(const std::string& identity)
{
    SmartPtr<ILogManager> logs(new LogManager);
    SmartPtr<ILog> log;
    _Result result = ResultFail;
    logs->Open(Path(), identity, LogFacilityUser, log, result);
    return log;
}

} // namespace

TEST(LogTest, NewLogHasCountZero)
{
    Log* log = new Log;
    ILog* asInterface = log;
    EXPECT_EQ(asInterface->GetReferenceCount(), 0u);
    SmartPtr<ILog> owner(log);
}

TEST(LogTest, LevelsMapToSyslogPriorities)
{
    const std::vector<std::pair<std::uint32_t, int>> levels = {
        {0, Information}, {1, Warning}, {2, Error}, {3, Information}, {7, Information}, {0xFFFFFFFFu, Information}};
    SyslogCapture capture = CaptureSyslog([&levels] {
        SmartPtr<ILog> log = OpenLog(FirstIdentity);
        for (std::size_t index = 0; index < levels.size(); ++index) {
            _Result result = ResultFail;
            log->Write(levels[index].first, "level " + std::to_string(levels[index].first), result);
            if (result != ResultPass)
                return; // no datagram: the count below fails
        }
    });
    KIV_SKIP_OR_FAIL_UNLESS_CAPTURED(capture);
    std::vector<SyslogMessage> messages = ParsedMessages(capture);
    ASSERT_EQ(messages.size(), levels.size());
    for (std::size_t index = 0; index < levels.size(); ++index) {
        SCOPED_TRACE(levels[index].first);
        EXPECT_EQ(messages[index].priority, User + levels[index].second);
        EXPECT_EQ(messages[index].identity, FirstIdentity);
        EXPECT_EQ(messages[index].text, "level " + std::to_string(levels[index].first));
    }
}

TEST(LogTest, PercentInMessageIsReadAsConversion)
{
    SyslogCapture capture = CaptureSyslog([] {
        SmartPtr<ILog> log = OpenLog(FirstIdentity);
        _Result result = ResultFail;
        log->Write(LogLevelInformation, "100%% sure", result);
        errno = ENOENT;
        log->Write(LogLevelInformation, "because %m", result);
        log->Write(LogLevelInformation, "100%d", result);
    });
    KIV_SKIP_OR_FAIL_UNLESS_CAPTURED(capture);
    std::vector<SyslogMessage> messages = ParsedMessages(capture);
    ASSERT_EQ(messages.size(), 3u);
    EXPECT_EQ(messages[0].text, "100% sure");
    EXPECT_EQ(messages[1].text, "because No such file or directory");
    EXPECT_NE(messages[2].text, "100%d"); // some number took the place of %d
    EXPECT_EQ(messages[2].text.compare(0, 3, "100"), 0);
    EXPECT_EQ(messages[2].text.find('%'), std::string::npos);
}

TEST(LogTest, CStringFormWritesTheSameMessage)
{
    SyslogCapture capture = CaptureSyslog([] {
        SmartPtr<ILog> log = OpenLog(FirstIdentity);
        _Result result = ResultFail;
        log->Write(LogLevelWarning, static_cast<const char*>("from a C string"), result);
        if (result != ResultPass)
            return;
        log->Write(LogLevelError, static_cast<const char*>(nullptr), result);
    });
    KIV_SKIP_OR_FAIL_UNLESS_CAPTURED(capture);
    std::vector<SyslogMessage> messages = ParsedMessages(capture);
    ASSERT_EQ(messages.size(), 2u);
    EXPECT_EQ(messages[0].priority, User + Warning);
    EXPECT_EQ(messages[0].text, "from a C string");
    EXPECT_EQ(messages[1].priority, User + Error);
    EXPECT_EQ(messages[1].text, "");
}

TEST(LogTest, TheLastOpenDecidesTheIdentityOfEveryLog)
{
    SyslogCapture capture = CaptureSyslog([] {
        SmartPtr<ILog> first = OpenLog(FirstIdentity);
        SmartPtr<ILog> second = OpenLog(SecondIdentity);
        _Result result = ResultFail;
        first->Write(LogLevelInformation, "through the first", result);
    });
    KIV_SKIP_OR_FAIL_UNLESS_CAPTURED(capture);
    std::vector<SyslogMessage> messages = ParsedMessages(capture);
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].identity, SecondIdentity);
}

TEST(LogTest, DestroyingOneOfTwoLogsClosesTheChannelForBoth)
{
    SyslogCapture capture = CaptureSyslog([] {
        SmartPtr<ILog> first = OpenLog(FirstIdentity);
        SmartPtr<ILog> second = OpenLog(SecondIdentity);
        _Result result = ResultFail;
        first->Write(LogLevelInformation, "before", result);
        second.Reset();
        first->Write(LogLevelInformation, "after", result);
    });
    KIV_SKIP_OR_FAIL_UNLESS_CAPTURED(capture);
    std::vector<SyslogMessage> messages = ParsedMessages(capture);
    ASSERT_EQ(messages.size(), 2u);
    EXPECT_EQ(messages[0].identity, SecondIdentity);
    EXPECT_EQ(messages[1].text, "after");
    // Reopened implicitly with the C library's own identity, the program's name.
    EXPECT_NE(messages[1].identity, FirstIdentity);
    EXPECT_NE(messages[1].identity, SecondIdentity);
    EXPECT_EQ(messages[1].identity, program_invocation_short_name);
    EXPECT_EQ(messages[1].priority, User + Information);
}

TEST(LogTest, CloseClosesTheChannelAndLaterWritesUseTheDefaults)
{
    SyslogCapture capture = CaptureSyslog([] {
        SmartPtr<ILog> log = OpenLog(FirstIdentity);
        _Result result = ResultFail;
        log->Close(result);
        if (result != ResultPass)
            return;
        log->Write(LogLevelInformation, "after close", result);
    });
    KIV_SKIP_OR_FAIL_UNLESS_CAPTURED(capture);
    std::vector<SyslogMessage> messages = ParsedMessages(capture);
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_NE(messages[0].identity, FirstIdentity);
    EXPECT_EQ(messages[0].text, "after close");
}

TEST(LogTest, NullResultIsFatal)
{
    SmartPtr<ILog> log(new Log);
    for (const NullResultCase& entry : NullResultCases())
        EXPECT_FATAL_MESSAGE(entry.call(*log), entry.message);
}

TEST(LogTest, NullResultWritesNothing)
{
    SyslogCapture capture = CaptureSyslog([] {
        SmartPtr<ILog> log = OpenLog(FirstIdentity);
        // Assertions do not reach the test from here: a wrong ending fails
        // the capture instead.
        for (const NullResultCase& entry : NullResultCases()) {
            if (!EndsFatallyWith([&] { entry.call(*log); }, entry.message))
                _exit(3);
        }
        _Result result = ResultFail;
        log->Write(LogLevelInformation, "kept", result);
    });
    KIV_SKIP_OR_FAIL_UNLESS_CAPTURED(capture);
    std::vector<SyslogMessage> messages = ParsedMessages(capture);
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].text, "kept");
    EXPECT_EQ(messages[0].identity, FirstIdentity);
}
