#ifndef CSC_SVC_CONFIG_H
#define CSC_SVC_CONFIG_H

#ifdef __cplusplus
extern "C" {
#endif

/* The approval version of the customer-specific configuration: the text that stands for the
 * software version on some carriers' devices. */
#define CSC_SVC_CONFIG_APPROVAL_VERSION_MAX 64

/* 1 when the configuration holds an approval version. */
int csc_svc_config_chk_approval_version_exist(void);
/* Copies the version into buffer (at least CSC_SVC_CONFIG_APPROVAL_VERSION_MAX bytes); 1 on
 * success. */
int csc_svc_config_get_approval_version(char *buffer);

#ifdef __cplusplus
}
#endif

#endif
