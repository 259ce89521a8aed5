#ifndef _APP_ASSIST_WDEFINE_H_
#define _APP_ASSIST_WDEFINE_H_

#include <dlog.h>

// The framework logs under its own tag, in the same line shape as the applications.
#define WAPP_LOG_TAG "WAPP"
#define WERROR(fmt, ...)                                                                         \
    dlog_print(DLOG_ERROR, WAPP_LOG_TAG, "%s: %s(%d) > " fmt, __FILE_NAME__, __func__, __LINE__, \
               ##__VA_ARGS__)
#define WDEBUG(fmt, ...)                                                                         \
    dlog_print(DLOG_DEBUG, WAPP_LOG_TAG, "%s: %s(%d) > " fmt, __FILE_NAME__, __func__, __LINE__, \
               ##__VA_ARGS__)

#endif
