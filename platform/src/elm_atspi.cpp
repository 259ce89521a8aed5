// The watch toolkit's accessibility calls, on top of upstream Elementary's efl_access API.
// Everything lands in efl_access data or in the object's own answers to it, which is what the
// AT-SPI bridge hands to a screen reader: names and descriptions translated in the object's domain,
// a description callback asked whenever a reader reads the object, reading information, relations,
// and objects that cannot be highlighted left out of the reading chain.

// The scrollable and accessibility interfaces are Eo APIs that upstream marks as beta.
#define EFL_BETA_API_SUPPORT 1
// Access types and reading information are set by the object's owner, which the toolkit
// calls protected.
#define EFL_ACCESS_OBJECT_PROTECTED 1
#include <Elementary.h>
#include <libintl.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

const char *const kAnswersKey = "_atspi_answers";
const char *const kNameKey = "_atspi_name";
const char *const kDescCbKey = "_atspi_description_cb";
const char *const kDescDataKey = "_atspi_description_data";
// The callback's last answer, kept until the next reading or the object's end.
const char *const kDescTextKey = "_atspi_description_text";

bool valid(const Eo *obj) {
    return obj && efl_isa(obj, EFL_ACCESS_OBJECT_MIXIN);
}

// A name set on the object is what is read, even where upstream's class makes one up from the
// object's texts (pages, popups); translated at every reading.
const char *nameAsRead(const Eo *obj, void *) {
    auto *name = static_cast<const char *>(efl_key_data_get(obj, kNameKey));
    if (!name)
        return efl_access_object_i18n_name_get(efl_super(obj, EFL_OBJECT_OVERRIDE_CLASS));
    const char *domain = efl_access_object_translation_domain_get(obj);
    // An empty id would translate to the catalogue's header.
    return domain && *name ? dgettext(domain, name) : name;
}

const char *descriptionAsRead(const Eo *obj, void *) {
    auto cb = reinterpret_cast<Elm_Atspi_Reading_Info_Cb>(efl_key_data_get(obj, kDescCbKey));
    if (!cb)
        return efl_access_object_description_get(efl_super(obj, EFL_OBJECT_OVERRIDE_CLASS));
    char *text = cb(efl_key_data_get(obj, kDescDataKey), const_cast<Eo *>(obj));
    auto *kept = static_cast<const char *>(efl_key_data_get(obj, kDescTextKey));
    eina_stringshare_replace(&kept, text);
    free(text);
    efl_key_data_set(const_cast<Eo *>(obj), kDescTextKey, kept);
    return kept;
}

void releaseAnswers(void *, const Efl_Event *event) {
    eina_stringshare_del(static_cast<const char *>(efl_key_data_get(event->object, kNameKey)));
    eina_stringshare_del(static_cast<const char *>(efl_key_data_get(event->object, kDescTextKey)));
}

// Upstream answers the name set (an empty one, or none, too), translated in the object's domain
// if it has one.
bool readsItsOwnName(const Eo *obj, const char *name) {
    const char *read = efl_access_object_i18n_name_get(obj);
    if (!name || !read)
        return !name && !read;
    const char *domain = efl_access_object_translation_domain_get(obj);
    return !strcmp(read, name) || (domain && *name && !strcmp(read, dgettext(domain, name)));
}

// The AT-SPI bridge asks the object itself, so the object answers as the watch would.
void answerAsTheWatch(Eo *obj) {
    if (efl_key_data_get(obj, kAnswersKey))
        return;
    static Efl_Op_Description answers[] = {
        EFL_OBJECT_OP_FUNC(efl_access_object_i18n_name_get, nameAsRead),
        EFL_OBJECT_OP_FUNC(efl_access_object_description_get, descriptionAsRead)};
    static Efl_Object_Ops ops = {answers, 2};
    if (!efl_object_override(obj, &ops))
        return;
    efl_key_data_set(obj, kAnswersKey, obj);
    efl_event_callback_add(obj, EFL_EVENT_INVALIDATE, releaseAnswers, nullptr);
}

// Upstream reads nothing into an unset mask; the watch reads everything.
const Elm_Atspi_Reading_Info_Type_Mask kReadEverything = 0xF;

}  // namespace

extern "C" {

void elm_atspi_accessible_name_set(Elm_Interface_Atspi_Accessible *obj, const char *name) {
    if (!valid(obj))
        return;
    efl_access_object_i18n_name_set(obj, name);
    // Most classes read a name set on them (pages' frames among them); an object answers as
    // the watch only where upstream would not, as Eo keeps a record of every object whose
    // answers are overridden until the process ends.
    if (!efl_key_data_get(obj, kAnswersKey) && readsItsOwnName(obj, name))
        return;
    answerAsTheWatch(obj);
    auto *kept = static_cast<const char *>(efl_key_data_get(obj, kNameKey));
    eina_stringshare_replace(&kept, name);
    efl_key_data_set(obj, kNameKey, kept);
}

const char *elm_atspi_accessible_name_get(const Elm_Interface_Atspi_Accessible *obj) {
    return valid(obj) ? efl_access_object_i18n_name_get(obj) : nullptr;
}

void elm_atspi_accessible_description_set(Elm_Interface_Atspi_Accessible *obj,
                                          const char *description) {
    if (valid(obj))
        efl_access_object_description_set(obj, description);
}

const char *elm_atspi_accessible_description_get(const Elm_Interface_Atspi_Accessible *obj) {
    return valid(obj) ? efl_access_object_description_get(obj) : nullptr;
}

void elm_atspi_accessible_description_cb_set(Elm_Interface_Atspi_Accessible *obj,
                                             Elm_Atspi_Reading_Info_Cb func, const void *data) {
    if (!valid(obj))
        return;
    answerAsTheWatch(obj);
    efl_key_data_set(obj, kDescCbKey, reinterpret_cast<void *>(func));
    efl_key_data_set(obj, kDescDataKey, data);
}

void elm_atspi_accessible_translation_domain_set(Elm_Interface_Atspi_Accessible *obj,
                                                 const char *domain) {
    if (valid(obj))
        efl_access_object_translation_domain_set(obj, domain);
}

void elm_atspi_accessible_can_highlight_set(Elm_Interface_Atspi_Accessible *obj,
                                            Eina_Bool can_highlight) {
    // A skipped object is no stop of its own; its children, if any, are read in its place.
    if (valid(obj))
        efl_access_object_access_type_set(
            obj, can_highlight ? EFL_ACCESS_TYPE_REGULAR : EFL_ACCESS_TYPE_SKIPPED);
}

Eina_Bool elm_atspi_accessible_can_highlight_get(const Elm_Interface_Atspi_Accessible *obj) {
    return valid(obj) && efl_access_object_access_type_get(obj) == EFL_ACCESS_TYPE_REGULAR;
}

void elm_atspi_accessible_reading_info_type_set(Elm_Interface_Atspi_Accessible *obj,
                                                Elm_Atspi_Reading_Info_Type_Mask reading_info) {
    if (!valid(obj))
        return;
    efl_access_object_reading_info_type_set(
        obj, static_cast<Efl_Access_Reading_Info_Type>(reading_info));
    // A desktop reader always says the name; an object read without one has none, rather
    // than the texts upstream would make one up from.
    if (!(reading_info & ELM_ACCESSIBLE_READING_INFO_TYPE_NAME))
        elm_atspi_accessible_name_set(obj, "");
}

Elm_Atspi_Reading_Info_Type_Mask elm_atspi_accessible_reading_info_type_get(
    const Elm_Interface_Atspi_Accessible *obj) {
    if (!valid(obj))
        return 0;
    auto mask =
        static_cast<Elm_Atspi_Reading_Info_Type_Mask>(efl_access_object_reading_info_type_get(obj));
    return mask ? mask : kReadEverything;
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
