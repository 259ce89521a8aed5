#include "StInfoSwMenuItem.h"

#include <libintl.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "StInfoDefines.h"
#include "StInfoSwModel.h"
#include "StInfoValueText.h"

StInfoSwMenuItem::StInfoSwMenuItem(ItemType type) : _type(type) {}

StInfoSwMenuItem::~StInfoSwMenuItem() {}

Elm_Genlist_Item_Class *StInfoSwMenuItem::getItemClassNew() {
    Elm_Genlist_Item_Class *itc = elm_genlist_item_class_new();
    bool twoLines = _type == TIZEN_VERSION || _type == SW_VERSION || _type == SECURITY_STATUS;
    itc->item_style = twoLines ? "2text" : "1text";
    itc->func.text_get = _textGetCb;
    itc->func.del = delItemCb;
    return itc;
}

void StInfoSwMenuItem::onSelect(Elm_Object_Item *item) {
    elm_genlist_item_selected_set(item, EINA_FALSE);
    if (_onSelect)
        _onSelect();
}

void StInfoSwMenuItem::setOnSelect(std::function<void()> action) {
    _onSelect = std::move(action);
}

char *StInfoSwMenuItem::_textGetCb(void *data, Evas_Object *, const char *part) {
    auto *self = static_cast<StInfoSwMenuItem *>(data);
    if (!self || !part)
        return nullptr;
    if (!strcmp(part, "elm.text")) {
        switch (self->_type) {
            case TIZEN_VERSION:
                return strdup(dgettext(ST_INFO_TEXT_DOMAIN, "WDS_ST_MBODY_TIZEN_VERSION_ABB"));
            case SW_VERSION:
                return strdup(dgettext(ST_INFO_TEXT_DOMAIN, "WDS_ST_MBODY_SOFTWARE_VERSION_ABB"));
            case TESSID_VERSION:
                return strdup(dgettext(ST_INFO_TEXT_DOMAIN, "IDS_ST_MBODY_TESSID_VERSION"));
            case TESSID_CONFIGURE:
                // The client's own name; it has no translation.
                return strdup("Tessid Configure");
            case SECURITY_STATUS:
                return strdup(dgettext(ST_INFO_TEXT_DOMAIN, "WDS_ST_TMBODY_SECURITY_STATUS"));
        }
        return nullptr;
    }
    if (!strcmp(part, "elm.text.1")) {
        StInfoSwModel *model = StInfoSwModel::getInstance();
        switch (self->_type) {
            case TIZEN_VERSION:
                return shownValueMarkup(model->getTizenVersion());
            case SW_VERSION:
                return shownValueMarkup(model->getSwVersionInfo());
            case SECURITY_STATUS:
                return shownValueMarkup(model->getSecurityStatus());
            default:
                return nullptr;
        }
    }
    return nullptr;
}
