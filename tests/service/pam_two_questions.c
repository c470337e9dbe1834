/* A PAM module that asks two questions in one conversation call, as one-time-password stacks do. */

#include <security/pam_appl.h>
#include <security/pam_modules.h>
#include <stddef.h>
#include <stdlib.h>

int pam_sm_authenticate(pam_handle_t* handle, int flags, int argc, const char** argv) {
    const struct pam_conv* conversation = NULL;
    const struct pam_message password = {PAM_PROMPT_ECHO_OFF, "Password: "};
    const struct pam_message token = {PAM_PROMPT_ECHO_OFF, "Token: "};
    const struct pam_message* messages[] = {&password, &token};
    struct pam_response* responses = NULL;
    (void)flags;
    (void)argc;
    (void)argv;
    if (pam_get_item(handle, PAM_CONV, (const void**)&conversation) != PAM_SUCCESS) {
        return PAM_SYSTEM_ERR;
    }
    return conversation->conv(2, messages, &responses, conversation->appdata_ptr);
}

int pam_sm_setcred(pam_handle_t* handle, int flags, int argc, const char** argv) {
    (void)handle;
    (void)flags;
    (void)argc;
    (void)argv;
    return PAM_SUCCESS;
}
