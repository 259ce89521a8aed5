#ifndef __TAPI_TYPE_H__
#define __TAPI_TYPE_H__

#ifdef __cplusplus
extern "C" {
#endif

/* Client of the telephony service (the modem). Asynchronous answers and notifications arrive
 * on the caller's main loop. */
typedef struct tapi_handle TapiHandle;

typedef void (*tapi_response_cb)(TapiHandle *handle, int result, void *data, void *user_data);
typedef void (*tapi_notification_cb)(TapiHandle *handle, const char *evt_id, void *data,
                                     void *user_data);

#ifdef __cplusplus
}
#endif

#endif
