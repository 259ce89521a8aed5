#ifndef _TEL_MISC_H_
#define _TEL_MISC_H_

#ifdef __cplusplus
extern "C" {
#endif

#define TAPI_MISC_ME_VERSION_LEN 32
#define TAPI_MISC_PRODUCT_CODE_LEN_MAX 32
#define TAPI_MISC_MODEL_ID_LEN_MAX 17
#define TAPI_MISC_PRL_ERI_VER_LEN_MAX 17
#define TAPI_MISC_ME_SN_LEN_MAX 32

/* The modem's version texts, each NUL-terminated within its field unless it fills it. */
typedef struct {
    unsigned char ver_mask;
    unsigned char szSwVersion[TAPI_MISC_ME_VERSION_LEN];
    unsigned char szHwVersion[TAPI_MISC_ME_VERSION_LEN];
    unsigned char szRfCalDate[TAPI_MISC_ME_VERSION_LEN];
    unsigned char szProductCode[TAPI_MISC_PRODUCT_CODE_LEN_MAX];
    unsigned char szModelId[TAPI_MISC_MODEL_ID_LEN_MAX];
    unsigned char prl_nam_num;
    unsigned char szPrlVersion[TAPI_MISC_PRL_ERI_VER_LEN_MAX * 3];
    unsigned char eri_nam_num;
    unsigned char szEriVersion[TAPI_MISC_PRL_ERI_VER_LEN_MAX * 3];
} TelMiscVersionInformation;

/* The device's serial numbers, each NUL-terminated within its field unless it fills it. */
typedef struct {
    unsigned char szEsn[TAPI_MISC_ME_SN_LEN_MAX];
    unsigned char szMeid[TAPI_MISC_ME_SN_LEN_MAX];
    unsigned char szImei[TAPI_MISC_ME_SN_LEN_MAX];
    unsigned char szImeiSv[TAPI_MISC_ME_SN_LEN_MAX];
} TelMiscSNInformation;

#ifdef __cplusplus
}
#endif

#endif
