#ifndef _ST_INFO_MENU_ITEM_H_
#define _ST_INFO_MENU_ITEM_H_

#include <functional>
#include <string>

#include "StDecoratableItem.h"

// A one-line row that runs an action when tapped (opens a page, starts an application).
class StInfoMenuItem : public StDecoratableItem {
public:
    explicit StInfoMenuItem(const std::string &textId);
    Elm_Genlist_Item_Class *getItemClassNew() override;
    void onSelect(Elm_Object_Item *item) override;
    void setOnSelect(std::function<void()> action);

private:
    static char *_textGetCb(void *data, Evas_Object *obj, const char *part);

    std::function<void()> _onSelect;
    std::string _text;
};

#endif
