#ifndef _ST_INFO_SWITCH_ITEM_H_
#define _ST_INFO_SWITCH_ITEM_H_

#include <functional>

#include "StDecoratableItem.h"

// A row with a label and an on/off switch. A tap does not flip the switch: it runs the action
// the list installed, and the switch follows the setting through setCheckState.
class StInfoSwitchItem : public StDecoratableItem {
public:
    StInfoSwitchItem();
    ~StInfoSwitchItem() override;

    void setOnSelect(std::function<void()> action);
    void setCheckState(bool on);
    Elm_Genlist_Item_Class *getItemClassNew() override;
    void onSelect(Elm_Object_Item *item) override;

protected:
    virtual const char *_label() const = 0;
    virtual bool _isOn() const = 0;

private:
    static char *_textGetCb(void *data, Evas_Object *obj, const char *part);
    static Evas_Object *_contentGetCb(void *data, Evas_Object *obj, const char *part);
    static void _checkDelCb(void *data, const Efl_Event *event);

    std::function<void()> _onSelect;
    // Belongs to the list and lives only while the row is realised.
    Evas_Object *_check;
};

#endif
