// The SIM's MSISDN list as the telephony service answers it, made of the input's bytes.

#include <ITapiSim.h>

#include <cstdint>
#include <string>

#include "FuzzCheck.h"
#include "FuzzRecord.h"
#include "StInfoStatusRecordReader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    auto list = recordFrom<TelSimMsisdnList_t>(data, size);
    std::string number = StInfoStatusRecordReader::msisdn(*list);
    if (list->count <= 0)
        FUZZ_CHECK(number.empty());
    // The number is the first subscriber's dialling number, never more.
    FUZZ_CHECK(number.size() <= sizeof(list->list[0].num));
    return 0;
}
