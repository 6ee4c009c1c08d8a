// SPDX-License-Identifier: Apache-2.0
// PamConversation.h - the PAM conversation that answers every hidden prompt
// with one password.
//
// User makes one on the stack for each PAM transaction and hands Converse
// with the object as its data pointer to pam_start; PAM calls Converse from
// the same thread while the transaction runs. The memory functions can be
// replaced (tests make a copy fail on purpose); PAM frees the responses it
// is given with free(), so real callers keep the defaults.
//
// Example:
//   #include <security/pam_appl.h>
//   PamConversation conversation("Secret12");
//   struct pam_conv pamConversation = {PamConversation::Converse, &conversation};
//   pam_handle_t* handle = nullptr;
//   pam_start(PamConversation::ServiceName, "operator", &pamConversation, &handle);
#ifndef KIVPLR_PAMCONVERSATION_H
#define KIVPLR_PAMCONVERSATION_H

#include <cstddef>

struct pam_message;
struct pam_response;

namespace KivPlr {

class PamConversation
{
public:
    /// Makes the zeroed response array: calloc-like.
    typedef void* (*AllocateFunction)(std::size_t count, std::size_t size);
    /// Copies the password for one response: strdup-like, null on failure.
    typedef char* (*DuplicateFunction)(const char* text);
    /// Frees a response or the array: free-like.
    typedef void (*ReleaseFunction)(void* memory);

    /// The PAM service of every account operation.
    static constexpr const char* ServiceName = "check_user";
    /// The most messages one call answers.
    static constexpr int MaximumMessages = 32;

    /// Answers with copies of \p password (not copied here: it must outlive
    /// the transaction), made with calloc, strdup and free.
    explicit PamConversation(const char* password);
    /// The same with other memory functions.
    PamConversation(const char* password, AllocateFunction allocate, DuplicateFunction duplicate,
                    ReleaseFunction release);

    /// The conversation function; \p data is a PamConversation. Fewer than 1
    /// or more than MaximumMessages messages give PAM_CONV_ERR; a failed
    /// array allocation PAM_BUF_ERR. Each PAM_PROMPT_ECHO_OFF message gets a
    /// copy of the password, every other message no response. If a copy
    /// fails, each copy made so far is overwritten with zero bytes and freed
    /// with the array, \p responses is set to null and the answer is
    /// PAM_CONV_ERR (a null password counts as a failed copy). Otherwise
    /// \p responses takes the array and the answer is PAM_SUCCESS. Null
    /// \p messages, \p responses or \p data give PAM_CONV_ERR.
    static int Converse(int count, const struct pam_message** messages, struct pam_response** responses,
                        void* data);

private:
    int Answer(int count, const struct pam_message** messages, struct pam_response** responses) const;

    const char* password;
    AllocateFunction allocate;
    DuplicateFunction duplicate;
    ReleaseFunction release;
};

} // namespace KivPlr

#endif
