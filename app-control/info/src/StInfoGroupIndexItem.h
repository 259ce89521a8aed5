#ifndef _ST_INFO_GROUP_INDEX_ITEM_H_
#define _ST_INFO_GROUP_INDEX_ITEM_H_

#include "StDecoratableItem.h"

// A small header over a group of rows. All headers share one item class.
class StInfoGroupIndexItem : public StDecoratableItem {
public:
    explicit StInfoGroupIndexItem(const char *textId);
    ~StInfoGroupIndexItem() override;
    Elm_Genlist_Item_Class *getItemClassStatic() override;

private:
    static char *_textGetCb(void *data, Evas_Object *obj, const char *part);

    char *_text;
};

#endif
