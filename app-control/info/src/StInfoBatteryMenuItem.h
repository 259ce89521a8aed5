#ifndef _ST_INFO_BATTERY_MENU_ITEM_H_
#define _ST_INFO_BATTERY_MENU_ITEM_H_

#include <functional>

#include "StDecoratableItem.h"

// One display-only row of the battery information page.
class StInfoBatteryMenuItem : public StDecoratableItem {
public:
    enum ItemType {
        RATED = 0,
        BATTERY_CAPACITY,
    };

    explicit StInfoBatteryMenuItem(ItemType type);
    ~StInfoBatteryMenuItem() override;

    Elm_Genlist_Item_Class *getItemClassNew() override;
    void onSelect(Elm_Object_Item *item) override;

private:
    static char *_textGetCb(void *data, Evas_Object *obj, const char *part);

    std::function<void()> _onSelect;
    ItemType _type;
};

#endif
