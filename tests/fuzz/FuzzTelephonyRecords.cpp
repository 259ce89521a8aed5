// The modem's records as the telephony service fills them: the misc version record, the
// serial-number record and the ICCID record, each made of the input's bytes. The first byte
// also picks the sales code the ICCID is shown for.

#include <ITapiModem.h>
#include <ITapiSim.h>

#include <cstdint>

#include "FuzzCheck.h"
#include "FuzzRecord.h"
#include "StInfoStatusRecordReader.h"

namespace {

const char *const kSalesCodes[] = {"", "VZW", "SKC", "SKO", "KTC", "KTO", "LUC", "LUO", "kto"};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    auto version = recordFrom<TelMiscVersionInformation>(data, size);
    FUZZ_CHECK(StInfoStatusRecordReader::hwVersion(*version).size() <=
               sizeof(version->szHwVersion));
    FUZZ_CHECK(StInfoStatusRecordReader::prlVersion(*version).size() <=
               sizeof(version->szPrlVersion));
    FUZZ_CHECK(StInfoStatusRecordReader::eriVersion(*version).size() <=
               sizeof(version->szEriVersion));

    auto serial = recordFrom<TelMiscSNInformation>(data, size);
    FUZZ_CHECK(StInfoStatusRecordReader::meid(*serial).size() <= sizeof(serial->szMeid));
    FUZZ_CHECK(StInfoStatusRecordReader::imei(*serial).size() <= sizeof(serial->szImei));
    FUZZ_CHECK(StInfoStatusRecordReader::imeiSv(*serial).size() <= sizeof(serial->szImeiSv));

    auto iccid = recordFrom<TelSimIccIdRecord_t>(data, size);
    const char *salesCode =
        kSalesCodes[size ? data[0] % (sizeof(kSalesCodes) / sizeof(kSalesCodes[0])) : 0];
    StInfoStatusRecordReader::iccid(*iccid, salesCode);
    return 0;
}
