#ifndef _ST_INFO_USB_DEBUG_ITEM_H_
#define _ST_INFO_USB_DEBUG_ITEM_H_

#include "StInfoSwitchItem.h"

// The USB debugging switch.
class StInfoUSBDebugItem : public StInfoSwitchItem {
protected:
    const char *_label() const override;
    bool _isOn() const override;
};

#endif
