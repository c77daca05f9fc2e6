/* Android system properties, as the tool calls them. */
#ifndef RLK_PLATFORM_CUTILS_PROPERTIES_H
#define RLK_PLATFORM_CUTILS_PROPERTIES_H

#ifdef __cplusplus
extern "C" {
#endif

#define PROPERTY_KEY_MAX 32
#define PROPERTY_VALUE_MAX 92

/* Copies the value of `key` (or `default_value` when the property is unset
 * or empty; nothing when that is null) into `value`, a buffer of
 * PROPERTY_VALUE_MAX bytes, and returns the length copied. */
int property_get(const char *key, char *value, const char *default_value);

/* Sets `key` to `value`; 0 on success, negative on failure. */
int property_set(const char *key, const char *value);

#ifdef __cplusplus
}
#endif
#endif
