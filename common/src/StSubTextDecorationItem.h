#ifndef _ST_SUB_TEXT_DECORATION_ITEM_H_
#define _ST_SUB_TEXT_DECORATION_ITEM_H_

#include "StDecoratableItem.h"

// A row whose sub text takes the changeable theme's accent colour.
class StSubTextDecorationItem : public StDecoratableItem {
public:
    StSubTextDecorationItem();
    void decorate() override;
};

#endif
