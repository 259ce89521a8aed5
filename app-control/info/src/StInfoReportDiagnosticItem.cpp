#include "StInfoReportDiagnosticItem.h"

#include "StInfoModel.h"

const char *StInfoReportDiagnosticItem::_label() const {
    return "WDS_ST_MBODY_REPORT_DIAGNOSTIC_AND_USAGE_INFO_ABB";
}

bool StInfoReportDiagnosticItem::_isOn() const {
    return StInfoModel::getInstance()->isReportDiagnosticEnabled();
}
