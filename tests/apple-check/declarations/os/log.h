// The unified logging system's os_log (Apple's <os/log.h>): the format must be
// a string literal and is checked against its arguments as the SDK's macro
// does, through clang's os_log builtins.
#pragma once

#include <os/availability.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct os_log_s* os_log_t;
extern struct os_log_s _os_log_default;
#define OS_LOG_DEFAULT (&_os_log_default)

typedef enum os_log_type_t : uint8_t {
    OS_LOG_TYPE_DEFAULT = 0x00,
    OS_LOG_TYPE_INFO = 0x01,
    OS_LOG_TYPE_DEBUG = 0x02,
    OS_LOG_TYPE_ERROR = 0x10,
    OS_LOG_TYPE_FAULT = 0x11,
} os_log_type_t;

void _os_log_impl(void* dso, os_log_t log, os_log_type_t type, const char* format, uint8_t* buf, uint32_t size);
extern struct mach_header __dso_handle;

#define os_log_with_type(log, type, format, ...)                                                              \
    __extension__({                                                                                           \
        os_log_t _log_tmp = (log);                                                                            \
        __attribute__((uninitialized, aligned(16))) uint8_t                                                   \
            _os_log_buf[__builtin_os_log_format_buffer_size(format, ##__VA_ARGS__)];                          \
        _os_log_impl(&__dso_handle, _log_tmp, (type), format,                                                 \
                     (uint8_t*)__builtin_os_log_format(_os_log_buf, format, ##__VA_ARGS__),                   \
                     (uint32_t)sizeof(_os_log_buf));                                                          \
    })
#define os_log(log, format, ...) os_log_with_type(log, OS_LOG_TYPE_DEFAULT, format, ##__VA_ARGS__)

#ifdef __cplusplus
}
#endif
