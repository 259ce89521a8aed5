#ifndef _ST_INFO_GENERAL_MENU_ITEM_H_
#define _ST_INFO_GENERAL_MENU_ITEM_H_

#include <functional>

#include "StDecoratableItem.h"

// A two-line fact of the About list: a label and the info model's value under it.
class StInfoGeneralMenuItem : public StDecoratableItem {
public:
    enum Type { MODEL_NUMBER = 0, STORAGE = 1 };

    explicit StInfoGeneralMenuItem(int type);
    Elm_Genlist_Item_Class *getItemClassNew() override;
    void onSelect(Elm_Object_Item *item) override;

private:
    static char *_textGetCb(void *data, Evas_Object *obj, const char *part);

    std::function<void()> _onSelect;
    int32_t _type;
};

#endif
