#ifndef QUILLSET_PLATFORM_ELEMENTARY_H
#define QUILLSET_PLATFORM_ELEMENTARY_H

/* The watch's Elementary: upstream Elementary plus the accessibility calls that exist only in
 * the watch toolkit, provided here on top of upstream's efl_access API. */
#include_next <Elementary.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef Eo Elm_Interface_Atspi_Accessible;
typedef char *(*Elm_Atspi_Reading_Info_Cb)(void *data, Evas_Object *obj);

typedef enum {
    ELM_ACCESSIBLE_READING_INFO_TYPE_NAME = 1 << 0,
    ELM_ACCESSIBLE_READING_INFO_TYPE_ROLE = 1 << 1,
    ELM_ACCESSIBLE_READING_INFO_TYPE_DESCRIPTION = 1 << 2,
    ELM_ACCESSIBLE_READING_INFO_TYPE_STATE = 1 << 3,
} Elm_Accessible_Reading_Info_Type;
typedef unsigned int Elm_Atspi_Reading_Info_Type_Mask;

typedef enum {
    ELM_ATSPI_RELATION_NULL = 0,
    ELM_ATSPI_RELATION_LABEL_FOR,
    ELM_ATSPI_RELATION_LABELLED_BY,
    ELM_ATSPI_RELATION_CONTROLLER_FOR,
    ELM_ATSPI_RELATION_CONTROLLED_BY,
    ELM_ATSPI_RELATION_MEMBER_OF,
    ELM_ATSPI_RELATION_TOOLTIP_FOR,
    ELM_ATSPI_RELATION_NODE_CHILD_OF,
    ELM_ATSPI_RELATION_NODE_PARENT_OF,
    ELM_ATSPI_RELATION_EXTENDED,
    ELM_ATSPI_RELATION_FLOWS_TO,
    ELM_ATSPI_RELATION_FLOWS_FROM,
} Elm_Atspi_Relation_Type;

void elm_atspi_accessible_name_set(Elm_Interface_Atspi_Accessible *obj, const char *name);
/* The name as read: translated in the object's domain when one is set; owned by the object. */
const char *elm_atspi_accessible_name_get(const Elm_Interface_Atspi_Accessible *obj);
void elm_atspi_accessible_description_set(Elm_Interface_Atspi_Accessible *obj,
                                          const char *description);
/* The description as read: from the callback when one is set; owned by the object. */
const char *elm_atspi_accessible_description_get(const Elm_Interface_Atspi_Accessible *obj);
void elm_atspi_accessible_description_cb_set(Elm_Interface_Atspi_Accessible *obj,
                                             Elm_Atspi_Reading_Info_Cb func, const void *data);
void elm_atspi_accessible_translation_domain_set(Elm_Interface_Atspi_Accessible *obj,
                                                 const char *domain);
void elm_atspi_accessible_can_highlight_set(Elm_Interface_Atspi_Accessible *obj,
                                            Eina_Bool can_highlight);
Eina_Bool elm_atspi_accessible_can_highlight_get(const Elm_Interface_Atspi_Accessible *obj);
void elm_atspi_accessible_reading_info_type_set(Elm_Interface_Atspi_Accessible *obj,
                                                Elm_Atspi_Reading_Info_Type_Mask reading_info);
Elm_Atspi_Reading_Info_Type_Mask elm_atspi_accessible_reading_info_type_get(
    const Elm_Interface_Atspi_Accessible *obj);
Eina_Bool elm_atspi_accessible_relationship_append(Elm_Interface_Atspi_Accessible *obj,
                                                   Elm_Atspi_Relation_Type type,
                                                   const Elm_Interface_Atspi_Accessible *relation);

#ifdef __cplusplus
}
#endif

#endif
