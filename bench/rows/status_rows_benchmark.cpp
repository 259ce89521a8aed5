// One text request of each kind of device status row, as the list makes it when it draws the
// row's value; the serial and barcode rows include the device daemon's round trip on the bus.
// Runs on a simulated watch (`quillset-sim run -- quillset-bench-rows`).
#include <Elementary.h>
#include <benchmark/benchmark.h>

#include <clocale>
#include <cstdlib>
#include <utility>

#include "StInfoApp.h"
#include "StInfoStatusMenuItem.h"
#include "StInfoStatusModel.h"

namespace {

using Row = StInfoStatusMenuItem;

const std::pair<Row::AboutMenu, const char *> kKinds[] = {
    {Row::ESIM_PROFILE, "esim_profile"},
    {Row::EID, "eid"},
    {Row::HW_VERSION, "hw_version"},
    {Row::PHONE_NUMBER, "phone_number"},
    {Row::IMEI, "imei"},
    {Row::IMEISV, "imeisv"},
    {Row::ICCID, "iccid"},
    {Row::IMS_REGISTRATION, "ims_registration"},
    {Row::PRL, "prl"},
    {Row::ERI, "eri"},
    {Row::MEID, "meid"},
    {Row::WIFI_MAC_ADDRESS, "wifi_mac_address"},
    {Row::BLUETOOTH_ADDRESS, "bluetooth_address"},
    {Row::SERIAL_NUMBER, "serial_number"},
    {Row::BARCODE_NUMBER, "barcode_number"},
};

void BM_StatusRowText(benchmark::State &state, Row::AboutMenu kind) {
    auto *row = new Row(kind);
    Elm_Genlist_Item_Class *itc = row->getItemClassNew();
    for (auto _ : state) {
        char *text = itc->func.text_get(row, nullptr, "elm.text.1");
        // Read-only: the library's read-write form lets GCC hand back a different pointer
        // when the sanitizer instruments this loop.
        benchmark::DoNotOptimize(static_cast<const char *>(text));
        free(text);
    }
    elm_genlist_item_class_free(itc);
    delete row;
}

}  // namespace

int main(int argc, char *argv[]) {
    setenv("ELM_DISPLAY", "buffer", 1);
    setenv("LANGUAGE", "en_US:en", 1);
    setlocale(LC_ALL, "C.UTF-8");
    StInfoApp::bindTextDomain();
    elm_init(0, nullptr);
    // The model answers from the platform; created once, as the status page creates it.
    StInfoStatusModel::getInstance();
    for (const auto &kind : kKinds)
        benchmark::RegisterBenchmark((std::string("BM_StatusRowText/") + kind.second).c_str(),
                                     BM_StatusRowText, kind.first)
            ->Unit(benchmark::kMicrosecond);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    elm_shutdown();
    return 0;
}
