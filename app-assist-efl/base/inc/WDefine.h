#ifndef _APP_ASSIST_WDEFINE_H_
#define _APP_ASSIST_WDEFINE_H_

#include <dlog.h>

// The framework logs under its own tag, in the same line shape as the applications.
#define WAPP_LOG_TAG "WAPP"

// __FILE_NAME__ comes with GCC 12 and Clang 9; older compilers cut __FILE__ at its last slash.
#ifdef __FILE_NAME__
#define WAPP_FILE_NAME __FILE_NAME__
#else
#define WAPP_FILE_NAME \
    (__builtin_strrchr(__FILE__, '/') ? __builtin_strrchr(__FILE__, '/') + 1 : __FILE__)
#endif

#define WERROR(fmt, ...)                                                                          \
    dlog_print(DLOG_ERROR, WAPP_LOG_TAG, "%s: %s(%d) > " fmt, WAPP_FILE_NAME, __func__, __LINE__, \
               ##__VA_ARGS__)
#define WDEBUG(fmt, ...)                                                                          \
    dlog_print(DLOG_DEBUG, WAPP_LOG_TAG, "%s: %s(%d) > " fmt, WAPP_FILE_NAME, __func__, __LINE__, \
               ##__VA_ARGS__)

#endif
