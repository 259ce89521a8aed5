#ifndef _ST_INFO_DEFINES_H_
#define _ST_INFO_DEFINES_H_

#define ST_INFO_PACKAGE "com.nerova.quillset"
#define ST_INFO_TEXT_DOMAIN "quillset"
#define ST_INFO_WINDOW_NAME "StKestaInfo"

// Key namespaces of the platform and of the vendor.
#define ST_PLATFORM_KEY(path) "http://tizen.org/" path
#define ST_VENDOR_KEY(path) "http://developer.nerova.com/" path

#define ST_UNKNOWN_TEXT "WDS_LOGS_MBODY_UNKNOWN_ABB"

#endif
