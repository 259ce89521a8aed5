#include "StInfoBatteryMenuItem.h"

#include <libintl.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "StInfoBatteryModel.h"
#include "StInfoDefines.h"
#include "StInfoValueText.h"

StInfoBatteryMenuItem::StInfoBatteryMenuItem(ItemType type) : _type(type) {}

StInfoBatteryMenuItem::~StInfoBatteryMenuItem() {}

Elm_Genlist_Item_Class *StInfoBatteryMenuItem::getItemClassNew() {
    Elm_Genlist_Item_Class *itc = elm_genlist_item_class_new();
    itc->item_style = "2text";
    itc->func.text_get = _textGetCb;
    itc->func.del = delItemCb;
    return itc;
}

void StInfoBatteryMenuItem::onSelect(Elm_Object_Item *item) {
    elm_genlist_item_selected_set(item, EINA_FALSE);
    if (_onSelect)
        _onSelect();
}

char *StInfoBatteryMenuItem::_textGetCb(void *data, Evas_Object *, const char *part) {
    auto *self = static_cast<StInfoBatteryMenuItem *>(data);
    if (!self || !part)
        return nullptr;
    bool label = !strcmp(part, "elm.text");
    if (!label && strcmp(part, "elm.text.1"))
        return nullptr;
    std::string text;
    switch (self->_type) {
        case RATED:
            text = label ? "WDS_ST_MBODY_RATED_ABB"
                         : StInfoBatteryModel::getInstance()->getRatedInfo();
            break;
        case BATTERY_CAPACITY:
            text = label ? "WDS_ST_MBODY_BATTERY_CAPACITY_ABB"
                         : StInfoBatteryModel::getInstance()->getBatteryCapacity();
            break;
        default:
            return nullptr;
    }
    if (label)
        return strdup(dgettext(ST_INFO_TEXT_DOMAIN, text.c_str()));
    return shownValueMarkup(text);
}
