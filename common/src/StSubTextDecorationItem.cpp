#include "StSubTextDecorationItem.h"

#include <uxt_theme.h>

StSubTextDecorationItem::StSubTextDecorationItem() {}

void StSubTextDecorationItem::decorate() {
    Elm_Object_Item *item = getElmObjectItem();
    if (!item)
        return;
    uxt_theme_object_item_replace_color(item, "T022", "AT013");
    uxt_theme_object_item_replace_color(item, "T022P", "AT013P");
    uxt_theme_object_item_replace_color(item, "T022D", "AT013D");
}
