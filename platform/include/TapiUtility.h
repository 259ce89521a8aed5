#ifndef _TAPI_UTILITY_H_
#define _TAPI_UTILITY_H_

#ifdef __cplusplus
extern "C" {
#endif

typedef enum {
    TAPI_API_SUCCESS = 0,
    TAPI_API_INVALID_INPUT = -1,
    TAPI_API_INVALID_PTR = -2,
    TAPI_API_NOT_SUPPORTED = -3,
    TAPI_API_OPERATION_FAILED = -17,
    TAPI_API_SIM_NOT_FOUND = -501,
} TapiResult_t;

#ifdef __cplusplus
}
#endif

#endif
