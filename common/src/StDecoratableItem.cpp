#include "StDecoratableItem.h"

StDecoratableItem::StDecoratableItem() {}

StDecoratableItem::~StDecoratableItem() {}

void StDecoratableItem::decorate() {}
