#ifndef _ST_LOG_H_
#define _ST_LOG_H_

#include <dlog.h>

// Every line of the settings suite goes to the platform log under one tag, prefixed with the
// source file, function and line. Failures are red "Critical" lines.
#define ST_LOG_TAG "W-SETTING"

// __FILE_NAME__ comes with GCC 12 and Clang 9; older compilers cut __FILE__ at its last slash.
#ifdef __FILE_NAME__
#define ST_LOG_FILE_NAME __FILE_NAME__
#else
#define ST_LOG_FILE_NAME \
    (__builtin_strrchr(__FILE__, '/') ? __builtin_strrchr(__FILE__, '/') + 1 : __FILE__)
#endif

#define ST_LOG_(prio, fmt, ...)                                                             \
    dlog_print(prio, ST_LOG_TAG, "%s: %s(%d) > " fmt, ST_LOG_FILE_NAME, __func__, __LINE__, \
               ##__VA_ARGS__)

#define ST_ERR(fmt, ...) \
    ST_LOG_(DLOG_ERROR, "\033[0;31m* Critical * " fmt "\033[0;m", ##__VA_ARGS__)
#define ST_WARN(fmt, ...) ST_LOG_(DLOG_WARN, "\033[0;35m" fmt "\033[0;m", ##__VA_ARGS__)
#define ST_INFO(fmt, ...) ST_LOG_(DLOG_INFO, "\033[0;32m" fmt "\033[0;m", ##__VA_ARGS__)
#define ST_DEBUG(fmt, ...) ST_LOG_(DLOG_DEBUG, fmt, ##__VA_ARGS__)

#endif
