/* ktclr: symbol export and the shared base types of the C interface. */
#ifndef KTCLR_EXPORT_H
#define KTCLR_EXPORT_H

#include <stdint.h>

#if defined(_WIN32)
#  if defined(KTCLR_BUILDING)
#    define KTCLR_API __declspec(dllexport)
#  else
#    define KTCLR_API __declspec(dllimport)
#  endif
#elif defined(__GNUC__)
#  define KTCLR_API __attribute__((visibility("default")))
#else
#  define KTCLR_API
#endif

#ifdef __cplusplus
#  define KTCLR_EXTERN_C_BEGIN extern "C" {
#  define KTCLR_EXTERN_C_END }
/* UTF-16 code unit. In C it is the same type as <uchar.h>'s char16_t. */
typedef char16_t KtChar16;
#else
#  define KTCLR_EXTERN_C_BEGIN
#  define KTCLR_EXTERN_C_END
typedef uint_least16_t KtChar16;
#endif

/* Every exported function returns one of the status values of status.h. */
typedef int32_t KtStatus;

#endif
