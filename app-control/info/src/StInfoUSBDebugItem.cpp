#include "StInfoUSBDebugItem.h"

#include "StInfoModel.h"

const char *StInfoUSBDebugItem::_label() const {
    return "WDS_ST_MBODY_DEBUGGING_ABB";
}

bool StInfoUSBDebugItem::_isOn() const {
    return StInfoModel::getInstance()->isUsbDebuggingEnabled();
}
