#ifndef MDM_H
#define MDM_H

#ifdef __cplusplus
extern "C" {
#endif

/* Device-management policy client. */
#define MDM_RESULT_SUCCESS 0
#define MDM_RESULT_SERVICE_NOT_ENABLED -1
#define MDM_RESULT_FAIL -2
#define MDM_RESULT_INVALID_PARAMETER -3

/* Policy numbers for mdm_register_policy_receiver. */
#define MDM_POLICY_USB_DEBUGGING 17

/* Status of a policy: 1 restricted, 0 allowed. */
typedef void (*mdm_policy_receiver_cb)(int status, void *user_data);

int mdm_get_service(void);
int mdm_release_service(void);
/* 1 when USB debugging is restricted, 0 when allowed, negative on failure. */
int mdm_get_allow_usb_debugging(void);
/* Returns a non-zero handle, or 0 on failure. The callback runs on the main loop. */
int mdm_register_policy_receiver(int policy, void *user_data, mdm_policy_receiver_cb callback);
int mdm_deregister_policy_receiver(int handle);

#ifdef __cplusplus
}
#endif

#endif
