#ifndef _ST_INFO_STATUS_MENU_ITEM_H_
#define _ST_INFO_STATUS_MENU_ITEM_H_

#include <cstdint>
#include <functional>
#include <string>

#include "StDecoratableItem.h"

// One label/value row of the device status page. The value is asked of the status model each
// time the list wants it; the three rows whose value arrives later follow the model's signals.
class StInfoStatusMenuItem : public StDecoratableItem {
public:
    enum AboutMenu {
        ESIM_PROFILE = 0,
        EID,
        HW_VERSION,
        PHONE_NUMBER,
        IMEI,
        IMEISV,
        ICCID,
        IMS_REGISTRATION,
        PRL,
        ERI,
        MEID,
        WIFI_MAC_ADDRESS,
        BLUETOOTH_ADDRESS,
        SERIAL_NUMBER,
        BARCODE_NUMBER,
    };

    explicit StInfoStatusMenuItem(const AboutMenu &kind);
    ~StInfoStatusMenuItem() override;

    Elm_Genlist_Item_Class *getItemClassNew() override;
    void onSelect(Elm_Object_Item *item) override;
    void setOnSelect(std::function<void()> action);

    AboutMenu kind() const { return _kind; }
    // The texts the row shows (also used by the text callback).
    std::string labelText() const;
    std::string valueText() const;

private:
    static char *_textGetCb(void *data, Evas_Object *obj, const char *part);
    void _refreshValue();

    AboutMenu _kind;
    std::function<void()> _onSelect;
    uint32_t _msisdnListenerId;
    uint32_t _esimProfileListenerId;
    uint32_t _eidListenerId;
};

#endif
