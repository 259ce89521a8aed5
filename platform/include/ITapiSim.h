#ifndef _ITAPI_SIM_H_
#define _ITAPI_SIM_H_

#include <TelSim.h>
#include <tapi_common.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Answers callback with a TelSimMsisdnList_t (or no data) once the SIM replied. */
int tel_get_sim_msisdn(TapiHandle *handle, tapi_response_cb callback, void *user_data);

/* Fills out_data with the answer to request (see TelSimSyncRequest_t); in_data may be NULL. */
int tel_request_sim_sync(TapiHandle *handle, int request, void *in_data, void *out_data);

#ifdef __cplusplus
}
#endif

#endif
