#ifndef CSC_FEATURE_H
#define CSC_FEATURE_H

#ifdef __cplusplus
extern "C" {
#endif

/* Boolean features of the device's customer-specific configuration, by number: 1 on, 0 off,
 * negative when the service cannot answer. */
int csc_feature_get_bool(int feature);

#ifdef __cplusplus
}
#endif

#endif
