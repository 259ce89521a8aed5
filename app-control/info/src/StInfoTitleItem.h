#ifndef _ST_INFO_TITLE_ITEM_H_
#define _ST_INFO_TITLE_ITEM_H_

#include <string>

#include "StDecoratableItem.h"

// The page title row at the top of every list.
class StInfoTitleItem : public StDecoratableItem {
public:
    explicit StInfoTitleItem(const std::string &titleId);
    Elm_Genlist_Item_Class *getItemClassNew() override;

private:
    static char *_textGetCb(void *data, Evas_Object *obj, const char *part);

    std::string _title;
};

#endif
