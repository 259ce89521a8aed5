// The watch toolkit's accessibility calls, on top of upstream Elementary's efl_access API.
// Names and descriptions may be text ids translated in a domain set on the object; a
// description may also come from a callback asked at every reading.

// The scrollable and accessibility interfaces are Eo APIs that upstream marks as beta.
#define EFL_BETA_API_SUPPORT 1
// Reading-information types are set by the object's owner, which the toolkit calls protected.
#define EFL_ACCESS_OBJECT_PROTECTED 1
#include <Elementary.h>

#include <libintl.h>

#include <cstdlib>
#include <cstring>

namespace {

const char *const kDomainKey = "_atspi_translation_domain";
const char *const kDescCbKey = "_atspi_description_cb";
const char *const kDescDataKey = "_atspi_description_data";
const char *const kNoHighlightKey = "_atspi_no_highlight";
const char *const kReadingInfoKey = "_atspi_reading_info";

bool valid(const Eo *obj) {
    return obj && efl_isa(obj, EFL_ACCESS_OBJECT_MIXIN);
}

char *translated(const Eo *obj, const char *text) {
    if (!text)
        return nullptr;
    auto *domain = static_cast<const char *>(efl_key_data_get(obj, kDomainKey));
    return strdup(domain ? dgettext(domain, text) : text);
}

}  // namespace

extern "C" {

void elm_atspi_accessible_name_set(Elm_Interface_Atspi_Accessible *obj, const char *name) {
    if (valid(obj))
        efl_access_object_i18n_name_set(obj, name);
}

char *elm_atspi_accessible_name_get(const Elm_Interface_Atspi_Accessible *obj) {
    if (!valid(obj))
        return nullptr;
    // The raw name set on the object, not one made up from its texts.
    return translated(obj, efl_access_object_i18n_name_get(obj));
}

void elm_atspi_accessible_description_set(Elm_Interface_Atspi_Accessible *obj,
                                          const char *description) {
    if (valid(obj))
        efl_access_object_description_set(obj, description);
}

char *elm_atspi_accessible_description_get(const Elm_Interface_Atspi_Accessible *obj) {
    if (!valid(obj))
        return nullptr;
    auto cb = reinterpret_cast<Elm_Atspi_Reading_Info_Cb>(efl_key_data_get(obj, kDescCbKey));
    if (cb)
        return cb(efl_key_data_get(obj, kDescDataKey), const_cast<Eo *>(obj));
    return translated(obj, efl_access_object_description_get(obj));
}

void elm_atspi_accessible_description_cb_set(Elm_Interface_Atspi_Accessible *obj,
                                             Elm_Atspi_Reading_Info_Cb func, const void *data) {
    if (!valid(obj))
        return;
    efl_key_data_set(obj, kDescCbKey, reinterpret_cast<void *>(func));
    efl_key_data_set(obj, kDescDataKey, data);
}

void elm_atspi_accessible_translation_domain_set(Elm_Interface_Atspi_Accessible *obj,
                                                 const char *domain) {
    if (!valid(obj))
        return;
    efl_access_object_translation_domain_set(obj, domain);
    // Kept as well, so that readings translate even where the toolkit does not. Stringshares
    // are interned and released with the toolkit.
    efl_key_data_set(obj, kDomainKey, domain ? eina_stringshare_add(domain) : nullptr);
}

void elm_atspi_accessible_can_highlight_set(Elm_Interface_Atspi_Accessible *obj,
                                            Eina_Bool can_highlight) {
    if (valid(obj))
        efl_key_data_set(obj, kNoHighlightKey, can_highlight ? nullptr : obj);
}

Eina_Bool elm_atspi_accessible_can_highlight_get(const Elm_Interface_Atspi_Accessible *obj) {
    return valid(obj) && !efl_key_data_get(obj, kNoHighlightKey);
}

void elm_atspi_accessible_reading_info_type_set(Elm_Interface_Atspi_Accessible *obj,
                                                Elm_Atspi_Reading_Info_Type_Mask reading_info) {
    if (!valid(obj))
        return;
    efl_access_object_reading_info_type_set(
        obj, static_cast<Efl_Access_Reading_Info_Type>(reading_info));
    efl_key_data_set(obj, kReadingInfoKey, reinterpret_cast<void *>(uintptr_t(reading_info) + 1));
}

Elm_Atspi_Reading_Info_Type_Mask elm_atspi_accessible_reading_info_type_get(
    const Elm_Interface_Atspi_Accessible *obj) {
    if (!valid(obj))
        return 0;
    auto stored = reinterpret_cast<uintptr_t>(efl_key_data_get(obj, kReadingInfoKey));
    // Unset means everything is read.
    return stored ? static_cast<Elm_Atspi_Reading_Info_Type_Mask>(stored - 1) : 0xF;
}

Eina_Bool elm_atspi_accessible_relationship_append(Elm_Interface_Atspi_Accessible *obj,
                                                   Elm_Atspi_Relation_Type type,
                                                   const Elm_Interface_Atspi_Accessible *relation) {
    if (!valid(obj) || !relation)
        return EINA_FALSE;
    return efl_access_object_relationship_append(obj, static_cast<Efl_Access_Relation_Type>(type),
                                                 relation);
}

}  // extern "C"
