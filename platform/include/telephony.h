#ifndef TELEPHONY_H
#define TELEPHONY_H

#ifdef __cplusplus
extern "C" {
#endif

/* Client of the telephony service (the modem): device identifiers, properties, SIM requests
 * and notifications. Asynchronous answers arrive on the caller's main loop. */
typedef struct tapi_handle TapiHandle;

typedef enum {
    TAPI_API_SUCCESS = 0,
    TAPI_API_INVALID_INPUT = -1,
    TAPI_API_INVALID_PTR = -2,
    TAPI_API_NOT_SUPPORTED = -3,
    TAPI_API_OPERATION_FAILED = -5,
    TAPI_API_SIM_NOT_FOUND = -37,
} TapiResult_t;

#define TAPI_MISC_ME_VERSION_LEN 32
#define TAPI_MISC_PRODUCT_CODE_LEN_MAX 32
#define TAPI_MISC_MODEL_ID_LEN_MAX 17
#define TAPI_MISC_PRL_ERI_VER_LEN_MAX 17
#define TAPI_MISC_ME_SN_LEN_MAX 32
#define TAPI_SIM_MSISDN_DIALING_NUMBER_LEN 26
#define TAPI_SIM_MSISDN_ALPHA_ID_MAX_LEN 30
#define TAPI_SIM_MSISDN_LIST_MAX 3
#define TAPI_SIM_ICCID_TEXT_LEN 5120

/* The modem's version texts, each NUL-terminated within its field. */
typedef struct {
    unsigned char ver_mask;
    char szSwVersion[TAPI_MISC_ME_VERSION_LEN];
    char szHwVersion[TAPI_MISC_ME_VERSION_LEN];
    char szRfCalDate[TAPI_MISC_ME_VERSION_LEN];
    char szProductCode[TAPI_MISC_PRODUCT_CODE_LEN_MAX];
    char szModelId[TAPI_MISC_MODEL_ID_LEN_MAX];
    unsigned char prl_nam_num;
    char szPrlVersion[TAPI_MISC_PRL_ERI_VER_LEN_MAX * 3];
    unsigned char eri_nam_num;
    char szEriVersion[TAPI_MISC_PRL_ERI_VER_LEN_MAX * 3];
} TelMiscVersionInformation;

/* The device's serial numbers, each NUL-terminated within its field. */
typedef struct {
    char szEsn[TAPI_MISC_ME_SN_LEN_MAX];
    char szMeid[TAPI_MISC_ME_SN_LEN_MAX];
    char szImei[TAPI_MISC_ME_SN_LEN_MAX];
    char szImeiSv[TAPI_MISC_ME_SN_LEN_MAX];
} TelMiscSNInformation;

/* The subscriber numbers of the SIM, as tel_get_sim_msisdn answers them. */
typedef struct {
    char num[TAPI_SIM_MSISDN_DIALING_NUMBER_LEN + 1];
    char name[TAPI_SIM_MSISDN_ALPHA_ID_MAX_LEN + 1];
} TelSimSubscriberInfo_t;

typedef struct {
    int count;
    TelSimSubscriberInfo_t list[TAPI_SIM_MSISDN_LIST_MAX];
} TelSimMsisdnList_t;

/* Synchronous SIM requests (tel_request_sim_sync). */
typedef enum {
    TAPI_SIM_REQ_GET_ICCID = 5,
} TelSimSyncRequest_t;

/* The answer to TAPI_SIM_REQ_GET_ICCID: the caller hands in a zeroed record of this size. */
typedef struct {
    int icc_length;
    char icc_num[TAPI_SIM_ICCID_TEXT_LEN];
} TelSimIccIdRecord_t;

#define TAPI_NOTI_SIM_REFRESHED "org.tizen.telephony.Sim:Refreshed"
#define TAPI_PROP_NETWORK_VOLTE_ENABLE "org.tizen.telephony.Network:volte_enable"

typedef void (*tapi_response_cb)(TapiHandle *handle, int result, void *data, void *user_data);
typedef void (*tapi_notification_cb)(TapiHandle *handle, const char *evt_id, void *data,
                                     void *user_data);

/* cp_name NULL opens the default modem; NULL when there is none. */
TapiHandle *tel_init(const char *cp_name);
int tel_deinit(TapiHandle *handle);

int tel_register_noti_event(TapiHandle *handle, const char *noti_id, tapi_notification_cb callback,
                            void *user_data);
int tel_deregister_noti_event(TapiHandle *handle, const char *noti_id);

/* Newly allocated records (free() them), or NULL. */
TelMiscVersionInformation *tel_get_misc_me_version_sync(TapiHandle *handle);
TelMiscSNInformation *tel_get_misc_me_sn_sync(TapiHandle *handle);

int tel_get_property_int(TapiHandle *handle, const char *property, int *result);

/* Answers callback with a TelSimMsisdnList_t (or no data) once the SIM replied. */
int tel_get_sim_msisdn(TapiHandle *handle, tapi_response_cb callback, void *user_data);

/* Fills out_data with the answer to request (see TelSimSyncRequest_t); in_data may be NULL. */
int tel_request_sim_sync(TapiHandle *handle, int request, void *in_data, void *out_data);

#ifdef __cplusplus
}
#endif

#endif
