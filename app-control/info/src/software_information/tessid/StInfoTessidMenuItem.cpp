#include "StInfoTessidMenuItem.h"

#include <libintl.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "StInfoDefines.h"
#include "StInfoTessidModel.h"
#include "StInfoValueText.h"

StInfoTessidMenuItem::StInfoTessidMenuItem(ItemType type) : _type(type) {}

StInfoTessidMenuItem::~StInfoTessidMenuItem() {}

Elm_Genlist_Item_Class *StInfoTessidMenuItem::getItemClassNew() {
    Elm_Genlist_Item_Class *itc = elm_genlist_item_class_new();
    itc->item_style = "2text";
    itc->func.text_get = _textGetCb;
    itc->func.del = delItemCb;
    return itc;
}

void StInfoTessidMenuItem::onSelect(Elm_Object_Item *item) {
    elm_genlist_item_selected_set(item, EINA_FALSE);
    if (_onSelect)
        _onSelect();
}

char *StInfoTessidMenuItem::_textGetCb(void *data, Evas_Object *, const char *part) {
    auto *self = static_cast<StInfoTessidMenuItem *>(data);
    if (!self || !part)
        return nullptr;
    if (!strcmp(part, "elm.text")) {
        // Component names other than the platform's own are product names, not translated.
        switch (self->_type) {
            case TESSID_PLATFORM_VERSION:
                return strdup(dgettext(ST_INFO_TEXT_DOMAIN, "IDS_ST_MBODY_TESSID_VERSION"));
            case WEARABLE_SDK_VERSION:
                return strdup("Tessid Tizen Wearable SDK");
            case PELOR_VERSION:
                return strdup("Pelor for Tizen");
            case VIMO_VERSION:
                return strdup("VIMO");
        }
        return nullptr;
    }
    if (!strcmp(part, "elm.text.1")) {
        StInfoTessidModel *model = StInfoTessidModel::getInstance();
        std::string value;
        switch (self->_type) {
            case TESSID_PLATFORM_VERSION:
                value = model->getTessidVersion();
                break;
            case WEARABLE_SDK_VERSION:
                value = model->getMdmVersion();
                break;
            case PELOR_VERSION:
                value = model->getPelorTizenVersion();
                break;
            case VIMO_VERSION:
                value = model->getVimoVersion();
                break;
            default:
                return nullptr;
        }
        return shownValueMarkup(value);
    }
    return nullptr;
}
