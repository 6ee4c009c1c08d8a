// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/accounts/PamConversation.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <map>
#include <security/pam_appl.h>
#include <string>
#include <vector>

using namespace KivPlr;

namespace {

// What the recording memory functions saw; reset by each test's fixture.
struct MemoryRecord
{
    int duplicates = 0;
    int failOnDuplicate = 0;                    ///< 1-based call that fails; 0: none
    std::map<void*, std::size_t> copies;        ///< copy -> length of the text
    std::vector<void*> released;                ///< in order
    std::map<void*, bool> zeroedWhenReleased;   ///< for released copies
};

MemoryRecord record;

char* RecordingDuplicate(const char* text)
{
    ++record.duplicates;
    if (record.duplicates == record.failOnDuplicate)
        return nullptr;
    char* copy = strdup(text);
    record.copies[copy] = std::strlen(text);
    return copy;
}

void RecordingRelease(void* memory)
{
    auto copy = record.copies.find(memory);
    if (copy != record.copies.end()) {
        const char* bytes = static_cast<const char*>(memory);
        bool zeroed = true;
        for (std::size_t index = 0; index < copy->second; ++index)
            zeroed = zeroed && bytes[index] == '\0';
        record.zeroedWhenReleased[memory] = zeroed;
    }
    record.released.push_back(memory);
    std::free(memory);
}

void* FailingAllocate(std::size_t, std::size_t)
{
    return nullptr;
}

void* ZeroedAllocate(std::size_t count, std::size_t size)
{
    return std::calloc(count, size);
}

// A list of messages with the given styles, as PAM hands them over.
class Messages
{
public:
    explicit Messages(const std::vector<int>& styles) : storage(styles.size())
    {
        for (std::size_t index = 0; index < styles.size(); ++index) {
            storage[index].msg_style = styles[index];
            storage[index].msg = "Password: ";
            pointers.push_back(&storage[index]);
        }
    }

    const struct pam_message** Get() { return pointers.data(); }
    int Count() const { return static_cast<int>(storage.size()); }

private:
    std::vector<struct pam_message> storage;
    std::vector<const struct pam_message*> pointers;
};

void FreeResponses(struct pam_response* responses, int count)
{
    if (responses == nullptr)
        return;
    for (int index = 0; index < count; ++index)
        std::free(responses[index].resp);
    std::free(responses);
}

class PamConversationTest : public ::testing::Test
{
protected:
    void SetUp() override { record = MemoryRecord(); }
};

} // namespace

TEST_F(PamConversationTest, ZeroMessagesAnswerConversationError)
{
    PamConversation conversation("secret");
    Messages messages({PAM_PROMPT_ECHO_OFF});
    struct pam_response* responses = nullptr;
    EXPECT_EQ(PamConversation::Converse(0, messages.Get(), &responses, &conversation), PAM_CONV_ERR);
    EXPECT_EQ(responses, nullptr);
}

TEST_F(PamConversationTest, NegativeCountAnswersConversationError)
{
    PamConversation conversation("secret");
    Messages messages({PAM_PROMPT_ECHO_OFF});
    struct pam_response* responses = nullptr;
    EXPECT_EQ(PamConversation::Converse(-1, messages.Get(), &responses, &conversation), PAM_CONV_ERR);
}

TEST_F(PamConversationTest, ThirtyThreeMessagesAnswerConversationError)
{
    PamConversation conversation("secret", ZeroedAllocate, RecordingDuplicate, RecordingRelease);
    Messages messages(std::vector<int>(33, PAM_PROMPT_ECHO_OFF));
    struct pam_response* responses = nullptr;
    EXPECT_EQ(PamConversation::Converse(messages.Count(), messages.Get(), &responses, &conversation),
              PAM_CONV_ERR);
    EXPECT_EQ(responses, nullptr);
    EXPECT_EQ(record.duplicates, 0);
}

TEST_F(PamConversationTest, ThirtyTwoMessagesAreAllAnswered)
{
    PamConversation conversation("secret");
    Messages messages(std::vector<int>(32, PAM_PROMPT_ECHO_OFF));
    struct pam_response* responses = nullptr;
    ASSERT_EQ(PamConversation::Converse(messages.Count(), messages.Get(), &responses, &conversation),
              PAM_SUCCESS);
    ASSERT_NE(responses, nullptr);
    for (int index = 0; index < 32; ++index)
        EXPECT_STREQ(responses[index].resp, "secret") << index;
    FreeResponses(responses, 32);
}

TEST_F(PamConversationTest, OnlyHiddenPromptsReceiveThePassword)
{
    const char* password = "s3cret";
    PamConversation conversation(password);
    Messages messages({PAM_PROMPT_ECHO_OFF, PAM_PROMPT_ECHO_ON, PAM_ERROR_MSG, PAM_TEXT_INFO, PAM_PROMPT_ECHO_OFF});
    struct pam_response* responses = nullptr;
    ASSERT_EQ(PamConversation::Converse(messages.Count(), messages.Get(), &responses, &conversation),
              PAM_SUCCESS);
    ASSERT_NE(responses, nullptr);
    EXPECT_STREQ(responses[0].resp, "s3cret");
    EXPECT_NE(responses[0].resp, password) << "the response must be a copy PAM can free";
    EXPECT_EQ(responses[1].resp, nullptr);
    EXPECT_EQ(responses[2].resp, nullptr);
    EXPECT_EQ(responses[3].resp, nullptr);
    EXPECT_STREQ(responses[4].resp, "s3cret");
    EXPECT_NE(responses[0].resp, responses[4].resp);
    for (int index = 0; index < messages.Count(); ++index)
        EXPECT_EQ(responses[index].resp_retcode, 0);
    FreeResponses(responses, messages.Count());
}

TEST_F(PamConversationTest, EveryHiddenPromptGetsTheSameString)
{
    // Old, new and retyped password prompts of a password change alike.
    PamConversation conversation("new-one");
    Messages messages({PAM_PROMPT_ECHO_OFF, PAM_PROMPT_ECHO_OFF, PAM_PROMPT_ECHO_OFF});
    struct pam_response* responses = nullptr;
    ASSERT_EQ(PamConversation::Converse(messages.Count(), messages.Get(), &responses, &conversation),
              PAM_SUCCESS);
    for (int index = 0; index < messages.Count(); ++index)
        EXPECT_STREQ(responses[index].resp, "new-one");
    FreeResponses(responses, messages.Count());
}

TEST_F(PamConversationTest, FailedCopyWipesAndFreesWhatWasMade)
{
    record.failOnDuplicate = 2;
    PamConversation conversation("hunter22", ZeroedAllocate, RecordingDuplicate, RecordingRelease);
    Messages messages({PAM_PROMPT_ECHO_OFF, PAM_TEXT_INFO, PAM_PROMPT_ECHO_OFF, PAM_PROMPT_ECHO_OFF});
    struct pam_response* responses = reinterpret_cast<struct pam_response*>(&record);
    EXPECT_EQ(PamConversation::Converse(messages.Count(), messages.Get(), &responses, &conversation),
              PAM_CONV_ERR);
    EXPECT_EQ(responses, nullptr);
    EXPECT_EQ(record.duplicates, 2) << "copying stops at the failed copy";
    ASSERT_EQ(record.copies.size(), 1u);
    void* firstCopy = record.copies.begin()->first;
    ASSERT_EQ(record.released.size(), 2u) << "the one copy and the array";
    EXPECT_EQ(record.released[0], firstCopy);
    EXPECT_TRUE(record.zeroedWhenReleased[firstCopy]) << "the copy was freed with the password still in it";
    EXPECT_EQ(record.copies.count(record.released[1]), 0u) << "the array goes last";
}

TEST_F(PamConversationTest, FailedFirstCopyFreesOnlyTheArray)
{
    record.failOnDuplicate = 1;
    PamConversation conversation("hunter22", ZeroedAllocate, RecordingDuplicate, RecordingRelease);
    Messages messages({PAM_PROMPT_ECHO_OFF, PAM_PROMPT_ECHO_OFF});
    struct pam_response* responses = nullptr;
    EXPECT_EQ(PamConversation::Converse(messages.Count(), messages.Get(), &responses, &conversation),
              PAM_CONV_ERR);
    EXPECT_EQ(responses, nullptr);
    EXPECT_EQ(record.released.size(), 1u);
}

TEST_F(PamConversationTest, FailedArrayAllocationAnswersBufferError)
{
    PamConversation conversation("secret", FailingAllocate, RecordingDuplicate, RecordingRelease);
    Messages messages({PAM_PROMPT_ECHO_OFF});
    struct pam_response* responses = nullptr;
    EXPECT_EQ(PamConversation::Converse(messages.Count(), messages.Get(), &responses, &conversation),
              PAM_BUF_ERR);
    EXPECT_EQ(record.duplicates, 0);
}

TEST_F(PamConversationTest, NullPasswordCountsAsAFailedCopy)
{
    PamConversation conversation(nullptr, ZeroedAllocate, RecordingDuplicate, RecordingRelease);
    Messages messages({PAM_PROMPT_ECHO_OFF});
    struct pam_response* responses = nullptr;
    EXPECT_EQ(PamConversation::Converse(messages.Count(), messages.Get(), &responses, &conversation),
              PAM_CONV_ERR);
    EXPECT_EQ(responses, nullptr);
    EXPECT_EQ(record.duplicates, 0);
    EXPECT_EQ(record.released.size(), 1u);
}

TEST_F(PamConversationTest, NullPasswordWithoutHiddenPromptsSucceeds)
{
    PamConversation conversation(nullptr);
    Messages messages({PAM_TEXT_INFO});
    struct pam_response* responses = nullptr;
    EXPECT_EQ(PamConversation::Converse(messages.Count(), messages.Get(), &responses, &conversation),
              PAM_SUCCESS);
    ASSERT_NE(responses, nullptr);
    EXPECT_EQ(responses[0].resp, nullptr);
    FreeResponses(responses, messages.Count());
}

TEST_F(PamConversationTest, MissingDataOrPlacesAnswerConversationError)
{
    PamConversation conversation("secret");
    Messages messages({PAM_PROMPT_ECHO_OFF});
    struct pam_response* responses = nullptr;
    EXPECT_EQ(PamConversation::Converse(1, messages.Get(), &responses, nullptr), PAM_CONV_ERR);
    EXPECT_EQ(PamConversation::Converse(1, nullptr, &responses, &conversation), PAM_CONV_ERR);
    EXPECT_EQ(PamConversation::Converse(1, messages.Get(), nullptr, &conversation), PAM_CONV_ERR);
    EXPECT_EQ(responses, nullptr);
}

TEST_F(PamConversationTest, NullMessageGetsNoResponse)
{
    PamConversation conversation("secret");
    const struct pam_message* messages[2] = {nullptr, nullptr};
    struct pam_message hidden = {PAM_PROMPT_ECHO_OFF, "Password: "};
    messages[1] = &hidden;
    struct pam_response* responses = nullptr;
    ASSERT_EQ(PamConversation::Converse(2, messages, &responses, &conversation), PAM_SUCCESS);
    EXPECT_EQ(responses[0].resp, nullptr);
    EXPECT_STREQ(responses[1].resp, "secret");
    FreeResponses(responses, 2);
}

TEST_F(PamConversationTest, ServiceIsCheckUser)
{
    EXPECT_STREQ(PamConversation::ServiceName, "check_user");
}
