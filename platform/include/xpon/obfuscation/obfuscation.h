#pragma once

/* Turns a text into a form that a glance does not read, and back. It is deterministic (equal texts give equal forms)
   and no protection: anyone with this library reads it. */

#include <stddef.h> // NOLINT(modernize-deprecated-headers): the interface is C

#ifdef __cplusplus
extern "C" {
#endif

/* Bytes, with the terminating NUL, of the buffer that text_obfuscate needs for `text`; 0 for a null argument. */
size_t calculate_valid_size(const char* text);

/* Writes the obfuscated form of `text` (at most 1024 bytes) to `output`, a buffer of calculate_valid_size(text) bytes.
   Returns 0, or -1 with errno EMSGSIZE for a longer text and EINVAL for a null argument. */
int text_obfuscate(const char* text, char* output);

/* Writes the plain text of the obfuscated form `text` to `output`. The plain text and its NUL are shorter than the
   form, so a buffer of strlen(text) bytes is enough; "" gives "" and needs one byte.
   Returns 0, or -1 with errno EINVAL for a text that is no such form, ENOTSUP for a form of another version, EBADMSG
   for a wrong checksum and EMSGSIZE for a form of more than 1024 bytes of text. */
int text_deobfuscate(const char* text, char* output);

#ifdef __cplusplus
}
#endif
