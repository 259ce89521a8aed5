#ifndef ESIM_H
#define ESIM_H

#ifdef __cplusplus
extern "C" {
#endif

/* Client of the eSIM service: the downloaded profiles and the EID. Answers and events arrive
 * on the caller's main loop. */
typedef struct esim_s *esim_h;

#define ESIM_ERROR_NONE 0
#define ESIM_ERROR_INVALID_PARAMETER (-22)
#define ESIM_ERROR_NOT_SUPPORTED (-1073741822)
#define ESIM_ERROR_OPERATION_FAILED (-1073741823)

/* The list counts its profiles in a byte; the service allocates just the entries it counts. */
#define ESIM_PROFILE_MAX 255

/* Event types: 0 the service's state, 1 a change of the profiles (data: an int). */
#define ESIM_EVENT_STATE 0
#define ESIM_EVENT_PROFILE_CHANGED 1

typedef struct {
    char *name;
    int kind;  /* 2: an operational profile */
    int state; /* 1: enabled */
    char reserved[16];
} esim_profile_s;

typedef struct {
    unsigned char count;
    char reserved[15];
    esim_profile_s profiles[ESIM_PROFILE_MAX];
} esim_profile_list_s;

typedef void (*esim_noti_cb)(esim_h handle, int event_type, void *event_data, void *user_data);
typedef void (*esim_profile_list_cb)(esim_h handle, int result, esim_profile_list_s *list,
                                     void *user_data);
typedef void (*esim_eid_cb)(esim_h handle, int result, const char *eid, void *user_data);

/* NULL when the device has no eSIM or the service cannot be reached. */
esim_h esim_init(void);
int esim_deinit(esim_h handle);

int esim_register_noti_event(esim_h handle, int event_type, esim_noti_cb callback, void *user_data);
int esim_deregister_noti_event(esim_h handle, int event_type);

/* Requests: 0 when sent; the answer comes later through callback (result 0 = success). The
 * list and the text belong to the service and are valid during the callback only. */
int esim_get_profile_list(esim_h handle, esim_profile_list_cb callback, void *user_data);
int esim_get_eid(esim_h handle, esim_eid_cb callback, void *user_data);

#ifdef __cplusplus
}
#endif

#endif
