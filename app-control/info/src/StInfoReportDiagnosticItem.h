#ifndef _ST_INFO_REPORT_DIAGNOSTIC_ITEM_H_
#define _ST_INFO_REPORT_DIAGNOSTIC_ITEM_H_

#include "StInfoSwitchItem.h"

// The switch of the consent to send diagnostic and usage data.
class StInfoReportDiagnosticItem : public StInfoSwitchItem {
protected:
    const char *_label() const override;
    bool _isOn() const override;
};

#endif
