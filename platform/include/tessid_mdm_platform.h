#ifndef TESSID_MDM_PLATFORM_H
#define TESSID_MDM_PLATFORM_H

#include <stdbool.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The security platform's answer on whether the USB debugging setting may be changed.
 * Returns 0 and writes the answer on success. */
int tessid_mdm_platform_is_usb_debugging_change_allowed(bool *allowed);

#ifdef __cplusplus
}
#endif

#endif
