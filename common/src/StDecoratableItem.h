#ifndef _ST_DECORATABLE_ITEM_H_
#define _ST_DECORATABLE_ITEM_H_

#include <WGenlistItem.h>

// Base of every row of the suite's lists: decorate() runs each time the row is realised in a
// list that asks for it.
class StDecoratableItem : public app_assist::WGenlistItem {
public:
    StDecoratableItem();
    ~StDecoratableItem() override;

    virtual void decorate();
};

#endif
