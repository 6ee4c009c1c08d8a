// SPDX-License-Identifier: Apache-2.0
#include <KivPlr/accounts/PamConversation.h>

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <security/pam_appl.h>

namespace KivPlr {

namespace {

void* AllocateZeroed(std::size_t count, std::size_t size)
{
    return std::calloc(count, size);
}

char* Duplicate(const char* text)
{
    return strdup(text);
}

void Release(void* memory)
{
    std::free(memory);
}

} // namespace

PamConversation::PamConversation(const char* password)
    : PamConversation(password, AllocateZeroed, Duplicate, Release)
{
}

PamConversation::PamConversation(const char* password, AllocateFunction allocate,
                                 DuplicateFunction duplicate, ReleaseFunction release)
    : password(password), allocate(allocate), duplicate(duplicate), release(release)
{
}

int PamConversation::Converse(int count, const struct pam_message** messages,
                              struct pam_response** responses, void* data)
{
    if (data == nullptr)
        return PAM_CONV_ERR;
    return static_cast<const PamConversation*>(data)->Answer(count, messages, responses);
}

int PamConversation::Answer(int count, const struct pam_message** messages,
                            struct pam_response** responses) const
{
    if (count < 1 || count > MaximumMessages || messages == nullptr || responses == nullptr)
        return PAM_CONV_ERR;
    std::size_t total = static_cast<std::size_t>(count);
    struct pam_response* answers =
        static_cast<struct pam_response*>(allocate(total, sizeof(struct pam_response)));
    if (answers == nullptr)
        return PAM_BUF_ERR;
    for (std::size_t index = 0; index < total; ++index) {
        const struct pam_message* message = messages[index];
        if (message == nullptr || message->msg_style != PAM_PROMPT_ECHO_OFF)
            continue;
        answers[index].resp = password != nullptr ? duplicate(password) : nullptr;
        if (answers[index].resp != nullptr)
            continue;
        // No password may stay behind in memory PAM never sees.
        for (std::size_t made = 0; made < index; ++made) {
            if (answers[made].resp == nullptr)
                continue;
            explicit_bzero(answers[made].resp, std::strlen(answers[made].resp));
            release(answers[made].resp);
        }
        release(answers);
        *responses = nullptr;
        return PAM_CONV_ERR;
    }
    *responses = answers;
    return PAM_SUCCESS;
}

} // namespace KivPlr
