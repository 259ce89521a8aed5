#ifndef _ITAPI_MODEM_H_
#define _ITAPI_MODEM_H_

#include <TelMisc.h>
#include <tapi_common.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Newly allocated records (free() them), or NULL. */
TelMiscVersionInformation *tel_get_misc_me_version_sync(TapiHandle *handle);
TelMiscSNInformation *tel_get_misc_me_sn_sync(TapiHandle *handle);

#ifdef __cplusplus
}
#endif

#endif
