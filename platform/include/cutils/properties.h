// Android system properties (libcutils).
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

#define PROPERTY_KEY_MAX 32
#define PROPERTY_VALUE_MAX 92

// Copies the value of `key` (or `default_value` when unset or empty) into
// `value`, which must hold PROPERTY_VALUE_MAX bytes; returns the length.
int property_get(const char *key, char *value, const char *default_value);

// Returns 0 on success or a negative error.
int property_set(const char *key, const char *value);

#ifdef __cplusplus
}
#endif
