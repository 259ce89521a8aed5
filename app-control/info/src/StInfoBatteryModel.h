#ifndef _ST_INFO_BATTERY_MODEL_H_
#define _ST_INFO_BATTERY_MODEL_H_

#include <string>

// The battery's rated values and capacity as the vendor stores them, read afresh on every call.
class StInfoBatteryModel {
public:
    static StInfoBatteryModel *getInstance();
    virtual ~StInfoBatteryModel();

    // "<voltage>; <current>", at most 31 characters, or the unknown-value id when either is
    // missing.
    std::string getRatedInfo();
    // The capacity text as stored, at most 15 characters, or the unknown-value id.
    std::string getBatteryCapacity();

private:
    StInfoBatteryModel() = default;
    static StInfoBatteryModel *_instance;
};

#endif
