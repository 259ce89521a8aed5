#ifndef _ST_INFO_TESSID_MENU_ITEM_H_
#define _ST_INFO_TESSID_MENU_ITEM_H_

#include <functional>

#include "StDecoratableItem.h"

// One display-only row of the security-platform versions page: a component and its version.
class StInfoTessidMenuItem : public StDecoratableItem {
public:
    enum ItemType {
        TESSID_PLATFORM_VERSION = 0,
        WEARABLE_SDK_VERSION,
        PELOR_VERSION,
        VIMO_VERSION,
    };

    explicit StInfoTessidMenuItem(ItemType type);
    ~StInfoTessidMenuItem() override;

    Elm_Genlist_Item_Class *getItemClassNew() override;
    void onSelect(Elm_Object_Item *item) override;

private:
    static char *_textGetCb(void *data, Evas_Object *obj, const char *part);

    std::function<void()> _onSelect;
    ItemType _type;
};

#endif
