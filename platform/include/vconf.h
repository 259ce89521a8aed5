#ifndef VCONF_H
#define VCONF_H

#ifdef __cplusplus
extern "C" {
#endif

#define VCONF_OK 0
#define VCONF_ERROR -1
#define VCONF_ERROR_WRONG_TYPE -3
#define VCONF_ERROR_FILE_NO_ENT -14

enum vconf_t {
    VCONF_TYPE_NONE = 0,
    VCONF_TYPE_STRING = 40,
    VCONF_TYPE_INT = 41,
    VCONF_TYPE_DOUBLE = 42,
    VCONF_TYPE_BOOL = 43,
    VCONF_TYPE_DIR
};

typedef struct _keynode_t keynode_t;
typedef void (*vconf_callback_fn)(keynode_t *node, void *user_data);

int vconf_get_int(const char *key, int *intval);
int vconf_get_bool(const char *key, int *boolval);
int vconf_get_dbl(const char *key, double *dblval);
/* Returns a copy the caller frees, or NULL when the key is missing, unreadable or not a string. */
char *vconf_get_str(const char *key);

int vconf_set_int(const char *key, int intval);
int vconf_set_bool(const char *key, int boolval);
int vconf_set_dbl(const char *key, double dblval);
int vconf_set_str(const char *key, const char *strval);

/* Change callbacks run on the main loop of the process that registered them, whichever
 * process made the change. */
int vconf_notify_key_changed(const char *key, vconf_callback_fn cb, void *user_data);
int vconf_ignore_key_changed(const char *key, vconf_callback_fn cb);

const char *vconf_keynode_get_name(keynode_t *keynode);
int vconf_keynode_get_type(keynode_t *keynode);
int vconf_keynode_get_int(keynode_t *keynode);
int vconf_keynode_get_bool(keynode_t *keynode);
double vconf_keynode_get_dbl(keynode_t *keynode);
char *vconf_keynode_get_str(keynode_t *keynode);

#ifdef __cplusplus
}
#endif

#endif
