#ifndef __TAPI_COMMON_H__
#define __TAPI_COMMON_H__

#include <TapiUtility.h>
#include <tapi_event.h>
#include <tapi_type.h>

#ifdef __cplusplus
extern "C" {
#endif

/* cp_name NULL opens the default modem; NULL when there is none. */
TapiHandle *tel_init(const char *cp_name);
int tel_deinit(TapiHandle *handle);

int tel_register_noti_event(TapiHandle *handle, const char *noti_id, tapi_notification_cb callback,
                            void *user_data);
int tel_deregister_noti_event(TapiHandle *handle, const char *noti_id);

int tel_get_property_int(TapiHandle *handle, const char *property, int *result);

#ifdef __cplusplus
}
#endif

#endif
