#ifndef _ST_INFO_MODULE_ENTRIES_H_
#define _ST_INFO_MODULE_ENTRIES_H_

// Entry points of the application's libraries that are loaded on first use (StInfoModule).

#define ST_INFO_PHONENUMBER_MODULE "libquillset-info-phonenumber.so"
#define ST_INFO_FORMAT_AS_YOU_TYPE_ENTRY "quillset_info_format_as_you_type"
#define ST_INFO_PHONENUMBER_WARM_UP_ENTRY "quillset_info_phonenumber_warm_up"

#define ST_INFO_LOGPROVIDER_MODULE "libquillset-info-logprovider.so"
#define ST_INFO_NOTIFY_ENTRY "quillset_info_notify_log_provider"

extern "C" {
// The number typed digit by digit into the region's as-you-type formatter; malloc'd, or null.
typedef char *(*StInfoFormatAsYouTypeFn)(const char *region, const char *number);
char *quillset_info_format_as_you_type(const char *region, const char *number);
// Reads the numbering plans, which the first formatting would otherwise wait for.
void quillset_info_phonenumber_warm_up(void);

// Calls the log provider's "Select", one-way, over the system bus's GLib binding.
typedef void (*StInfoNotifyLogProviderFn)(void);
void quillset_info_notify_log_provider(void);
}

#endif
