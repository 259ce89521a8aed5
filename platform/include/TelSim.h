#ifndef _TEL_SIM_H_
#define _TEL_SIM_H_

#ifdef __cplusplus
extern "C" {
#endif

#define TAPI_SIM_MSISDN_DIALING_NUMBER_LEN 26
#define TAPI_SIM_MSISDN_ALPHA_ID_MAX_LEN 30
#define TAPI_SIM_MSISDN_LIST_MAX 3
#define TAPI_SIM_ICCID_TEXT_LEN 5120

/* The subscriber numbers of the SIM, as tel_get_sim_msisdn answers them. */
typedef struct {
    char num[TAPI_SIM_MSISDN_DIALING_NUMBER_LEN + 1];
    char name[TAPI_SIM_MSISDN_ALPHA_ID_MAX_LEN + 1];
} TelSimSubscriberInfo_t;

typedef struct {
    int count;
    TelSimSubscriberInfo_t list[TAPI_SIM_MSISDN_LIST_MAX];
} TelSimMsisdnList_t;

/* Synchronous SIM requests (tel_request_sim_sync), a vendor extension. */
typedef enum {
    TAPI_SIM_REQ_GET_ICCID = 5,
} TelSimSyncRequest_t;

/* The answer to TAPI_SIM_REQ_GET_ICCID: the caller hands in a zeroed record of this size. */
typedef struct {
    int icc_length;
    char icc_num[TAPI_SIM_ICCID_TEXT_LEN];
} TelSimIccIdRecord_t;

#ifdef __cplusplus
}
#endif

#endif
