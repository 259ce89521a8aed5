#ifndef _ST_INFO_SW_MENU_ITEM_H_
#define _ST_INFO_SW_MENU_ITEM_H_

#include <functional>

#include "StDecoratableItem.h"

// One row of the software information page.
class StInfoSwMenuItem : public StDecoratableItem {
public:
    enum ItemType {
        TIZEN_VERSION = 0,
        SW_VERSION,
        TESSID_VERSION,
        TESSID_CONFIGURE,
        SECURITY_STATUS,
    };

    explicit StInfoSwMenuItem(ItemType type);
    ~StInfoSwMenuItem() override;

    Elm_Genlist_Item_Class *getItemClassNew() override;
    void onSelect(Elm_Object_Item *item) override;
    void setOnSelect(std::function<void()> action);

    ItemType getType() const { return _type; }

private:
    static char *_textGetCb(void *data, Evas_Object *obj, const char *part);

    std::function<void()> _onSelect;
    ItemType _type;
};

#endif
