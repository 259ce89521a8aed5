#include "StInfoStatusMenuItem.h"

#include <Elementary.h>
#include <libintl.h>
#include <vconf.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "StInfoDefines.h"
#include "StInfoStatusModel.h"
#include "StInfoValueText.h"

namespace {

std::string translated(const std::string &id) {
    return dgettext(ST_INFO_TEXT_DOMAIN, id.c_str());
}

bool isChinaCountry() {
    char *country = vconf_get_str("db/csc/text_string_country");
    bool china = country && !strcmp(country, "CN");
    free(country);
    return china;
}

}  // namespace

StInfoStatusMenuItem::StInfoStatusMenuItem(const AboutMenu &kind)
    : _kind(kind), _msisdnListenerId(0), _esimProfileListenerId(0), _eidListenerId(0) {
    StInfoStatusModel *model = StInfoStatusModel::getInstance();
    auto refresh = [this]() { _refreshValue(); };
    if (_kind == PHONE_NUMBER)
        _msisdnListenerId = model->_msisdnSignal.addListener(refresh);
    else if (_kind == ESIM_PROFILE)
        _esimProfileListenerId = model->_esimProfileSignal.addListener(refresh);
    else if (_kind == EID)
        _eidListenerId = model->_eidSignal.addListener(refresh);
}

StInfoStatusMenuItem::~StInfoStatusMenuItem() {
    StInfoStatusModel *model = StInfoStatusModel::getInstance();
    if (_kind == PHONE_NUMBER && _msisdnListenerId)
        model->_msisdnSignal.removeListener(_msisdnListenerId);
    else if (_kind == ESIM_PROFILE && _esimProfileListenerId)
        model->_esimProfileSignal.removeListener(_esimProfileListenerId);
    else if (_kind == EID && _eidListenerId)
        model->_eidSignal.removeListener(_eidListenerId);
}

void StInfoStatusMenuItem::_refreshValue() {
    // Before the row is in the list there is nothing to redraw.
    if (Elm_Object_Item *item = getElmObjectItem())
        elm_genlist_item_fields_update(item, "elm.text.1", ELM_GENLIST_ITEM_FIELD_TEXT);
}

Elm_Genlist_Item_Class *StInfoStatusMenuItem::getItemClassNew() {
    Elm_Genlist_Item_Class *itc = elm_genlist_item_class_new();
    // The eSIM profile name and the EID may be long: their values wrap.
    itc->item_style = (_kind == ESIM_PROFILE || _kind == EID) ? "2text/sub1.multiline" : "2text";
    itc->func.text_get = _textGetCb;
    itc->func.del = delItemCb;
    return itc;
}

void StInfoStatusMenuItem::onSelect(Elm_Object_Item *item) {
    // A row that stayed selected would not report the next tap.
    elm_genlist_item_selected_set(item, EINA_FALSE);
    if (_onSelect)
        _onSelect();
}

void StInfoStatusMenuItem::setOnSelect(std::function<void()> action) {
    _onSelect = std::move(action);
}

std::string StInfoStatusMenuItem::labelText() const {
    switch (_kind) {
        case ESIM_PROFILE:
            return translated("WDS_WMGR_MBODY_KESTA_ESIM_PROFILE_ABB");
        case EID:
            return "eID";
        case HW_VERSION:
            return translated("IDS_ST_MBODY_HARDWARE_VERSION");
        case PHONE_NUMBER:
            return translated("IDS_ST_MBODY_KESTA_PHONE_NO_ABB");
        case IMEI:
            return translated("IDS_ST_MBODY_IMEI_ABB");
        case IMEISV:
            return translated("IDS_ST_MBODY_IMEISV");
        case ICCID:
            return translated("WDS_ST_MBODY_ICCID_ABB");
        case IMS_REGISTRATION:
            return translated("WDS_ST_MBODY_IMS_REGISTRATION_STATUS");
        case PRL:
            return "PRL";
        case ERI:
            return "ERI";
        case MEID:
            return translated("IDS_ST_BODY_MEID");
        case WIFI_MAC_ADDRESS:
            return translated(isChinaCountry() ? "IDS_ST_BODY_WLAN_MAC_ADDRESS_CHN"
                                               : "WDS_ST_MBODY_WI_FI_MAC_ADDRESS_ABB");
        case BLUETOOTH_ADDRESS:
            return translated("WDS_ST_MBODY_BLUETOOTH_ADDRESS_ABB");
        case SERIAL_NUMBER:
            return translated("WDS_ST_MBODY_SERIAL_NUMBER_ABB");
        case BARCODE_NUMBER:
            return translated("WDS_ST_MBODY_BARCODE_NUMBER");
    }
    return "";
}

std::string StInfoStatusMenuItem::valueText() const {
    StInfoStatusModel *model = StInfoStatusModel::getInstance();
    std::string value;
    switch (_kind) {
        case ESIM_PROFILE:
            value = model->getEnabledEsimName();
            if (value.empty())
                value = "WDS_WMGR_SBODY_NONE_M_PROFILE_STATUS";
            break;
        case EID:
            value = model->getEid();
            break;
        case HW_VERSION:
            value = model->getHwVersionInfo();
            break;
        case PHONE_NUMBER:
            value = model->getPhoneNumberInfo();
            break;
        case IMEI:
            value = model->getImeiInfo();
            break;
        case IMEISV:
            value = model->getImeiSvInfo();
            break;
        case ICCID:
            value = model->getIccidInfo();
            break;
        case IMS_REGISTRATION:
            value = model->getImsRegistrationInfo() ? "WDS_PN_SBODY_ON_M_STATUS_ABB"
                                                    : "WDS_PN_SBODY_OFF_M_STATUS_ABB";
            break;
        case PRL:
            value = model->getPrlInfo();
            break;
        case ERI:
            value = model->getEriInfo();
            break;
        case MEID:
            value = model->getMeIdInfo();
            break;
        case WIFI_MAC_ADDRESS:
            value = model->getWifiMacAddress();
            break;
        case BLUETOOTH_ADDRESS:
            value = model->getBluetoothAddress();
            break;
        case SERIAL_NUMBER:
            value = model->getSerialNumberInfo();
            break;
        case BARCODE_NUMBER:
            value = model->getBarcodeNumberInfo();
            break;
    }
    return shownValue(value);
}

char *StInfoStatusMenuItem::_textGetCb(void *data, Evas_Object *, const char *part) {
    auto *self = static_cast<StInfoStatusMenuItem *>(data);
    if (!part)
        return nullptr;
    if (!strcmp(part, "elm.text"))
        return strdup(self->labelText().c_str());
    if (!strcmp(part, "elm.text.1")) {
        // Values such as profile names are shown as written, markup characters included.
        char *markup = elm_entry_utf8_to_markup(self->valueText().c_str());
        return markup ? markup : strdup("");
    }
    return nullptr;
}
