/* Assertion facility of the provider client. */
#ifndef KELVO_PLATFORM_FCASSERT_H
#define KELVO_PLATFORM_FCASSERT_H

#ifdef __cplusplus
extern "C" {
#endif

void _FCAssert(const char *expression, const char *file, int line);

#ifdef __cplusplus
}
#endif

#endif
