#ifndef _ST_INFO_STATUS_RECORD_READER_H_
#define _ST_INFO_STATUS_RECORD_READER_H_

#include <esim.h>
#include <ITapiModem.h>
#include <ITapiSim.h>

#include <memory>
#include <string>
#include <vector>

#include "StInfoStatusModel.h"

// Reads the records that the telephony and eSIM services hand to the status model, at the byte
// offsets those services lay them out. Every text is cut at the end of its field, so that a full
// field does not run into the next; a list is read to the count the service gives it.
class StInfoStatusRecordReader {
public:
    // Texts of the modem's misc version record; empty when the field is.
    static std::string hwVersion(const TelMiscVersionInformation &record);
    static std::string prlVersion(const TelMiscVersionInformation &record);
    static std::string eriVersion(const TelMiscVersionInformation &record);

    // Texts of the modem's serial-number record; empty when the field is.
    static std::string meid(const TelMiscSNInformation &record);
    static std::string imei(const TelMiscSNInformation &record);
    static std::string imeiSv(const TelMiscSNInformation &record);

    // The first subscriber's number of an MSISDN list; empty when the list has none.
    static std::string msisdn(const TelSimMsisdnList_t &list);

    // The ICCID of a record that holds one, as the carrier of salesCode shows it.
    static std::string iccid(const TelSimIccIdRecord_t &record, const std::string &salesCode);

    // The profiles of an eSIM profile list, in its order, as many as its first byte counts.
    static std::vector<std::shared_ptr<StInfoStatusModel::StInfoEsimProfile>> esimProfiles(
        const esim_profile_list_s &list);

    StInfoStatusRecordReader() = delete;
};

#endif
