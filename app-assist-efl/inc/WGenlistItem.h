#ifndef _APP_ASSIST_WGENLIST_ITEM_H_
#define _APP_ASSIST_WGENLIST_ITEM_H_

#include <Elementary.h>

namespace app_assist {

// Base of every genlist row. The genlist owns the row: the item class's delete callback
// (delItemCb) deletes it through the virtual destructor when its item goes away.
class WGenlistItem {
public:
    WGenlistItem();
    virtual ~WGenlistItem();

    virtual Elm_Genlist_Item_Class *getItemClassStatic();
    virtual Elm_Genlist_Item_Class *getItemClassNew();
    virtual void onSelect(Elm_Object_Item *item);
    virtual void onSetElmObjectItem(Elm_Object_Item *item);

    void setElmObjectItem(Elm_Object_Item *item);
    Elm_Object_Item *getElmObjectItem() const { return _item; }

    // Selection callback for elm_genlist_item_append: data is the row; calls its onSelect.
    static Evas_Smart_Cb getSelectCb();
    // Delete callback for item classes: data is the row.
    static void delItemCb(void *data, Evas_Object *obj);

    WGenlistItem(const WGenlistItem &) = delete;
    WGenlistItem &operator=(const WGenlistItem &) = delete;

private:
    static void _selectCb(void *data, Evas_Object *obj, void *eventInfo);

    Elm_Object_Item *_item;
};

}  // namespace app_assist

#endif
