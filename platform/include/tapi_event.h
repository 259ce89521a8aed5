#ifndef __TAPI_EVENT_H__
#define __TAPI_EVENT_H__

#ifdef __cplusplus
extern "C" {
#endif

#define TAPI_NOTI_SIM_REFRESHED "org.tizen.telephony.Sim:Refreshed"
#define TAPI_PROP_NETWORK_VOLTE_ENABLE "org.tizen.telephony.Network:volte_enable"

#ifdef __cplusplus
}
#endif

#endif
