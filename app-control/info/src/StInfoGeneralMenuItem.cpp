#include "StInfoGeneralMenuItem.h"

#include <Elementary.h>
#include <libintl.h>

#include <cstring>
#include <string>

#include "StInfoDefines.h"
#include "StInfoModel.h"
#include "StInfoValueText.h"

StInfoGeneralMenuItem::StInfoGeneralMenuItem(int type) : _type(type) {}

Elm_Genlist_Item_Class *StInfoGeneralMenuItem::getItemClassNew() {
    Elm_Genlist_Item_Class *itc = elm_genlist_item_class_new();
    itc->item_style = "2text";
    itc->func.text_get = _textGetCb;
    itc->func.del = delItemCb;
    return itc;
}

void StInfoGeneralMenuItem::onSelect(Elm_Object_Item *item) {
    elm_genlist_item_selected_set(item, EINA_FALSE);
    if (_onSelect)
        _onSelect();
}

char *StInfoGeneralMenuItem::_textGetCb(void *data, Evas_Object *, const char *part) {
    auto *self = static_cast<StInfoGeneralMenuItem *>(data);
    if (!part)
        return nullptr;
    if (!strcmp(part, "elm.text")) {
        if (self->_type == MODEL_NUMBER)
            return strdup(dgettext(ST_INFO_TEXT_DOMAIN, "WDS_ST_BODY_MODEL_NUMBER_ABB"));
        if (self->_type == STORAGE)
            return strdup(dgettext(ST_INFO_TEXT_DOMAIN, "WDS_ST_MBODY_STORAGE_ABB"));
        return nullptr;
    }
    if (!strcmp(part, "elm.text.1")) {
        std::string value;
        if (self->_type == MODEL_NUMBER)
            value = StInfoModel::getInstance()->getSystemInfoModel();
        else if (self->_type == STORAGE)
            value = StInfoModel::getInstance()->getStorageUsageText();
        else
            return nullptr;
        return shownValueMarkup(value);
    }
    return nullptr;
}
