// quillset-bench-baseline: the floor the About application is measured against. The same
// toolkit, window, naviframe, theme, scale and row styles as the application's first screen,
// with fixed texts, seen through the same round glass: no models, no platform calls. A tap on any
// row but the title pushes a page of fifteen fixed rows; the back key pops it, and on the first
// list ends the program.
#include <unistd.h>

#include <Elementary.h>

#include <climits>
#include <cstdio>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <string>

#include "RoundScreen.h"
#include "StatePaths.h"

namespace {

const int kScreenSize = 360;

struct Row {
    const char *style;
    const char *text;
    const char *value;
    bool hasSwitch;
};

// The About list of an Indian watch (its regulatory row included), as it reads in English.
const Row kMainRows[] = {
    {"title", "About Kesta", nullptr, false},
    {"1text", "Device information", nullptr, false},
    {"2text", "Model number", "QX-M480", false},
    {"2text", "Storage", "1.25GB / 4.0GB", false},
    {"1text", "Software information", nullptr, false},
    {"1text", "Battery information", nullptr, false},
    {"1text", "Regulatory information", nullptr, false},
    {"1text", "Open source licences", nullptr, false},
    {"1text.1icon.1", "Report diagnostic and usage info", nullptr, true},
    {"1text", "Nerova Tessid Privacy Notice", nullptr, false},
    {"1text.1icon.1", "Debugging", nullptr, true},
    {"groupindex", "Looking for this?", nullptr, false},
    {"1text", "Reset Kesta", nullptr, false},
};

const Row kPageRows[] = {
    {"title", "Device information", nullptr, false},
    {"2text/sub1.multiline", "Kesta eSIM profile", "Kite &amp; Co &lt;Travel&gt;", false},
    {"2text/sub1.multiline", "eID", "89000480000001000000012345678901", false},
    {"2text", "Kesta phone number", "+44 7700 900123", false},
    {"2text", "IMEI", "004801001234563", false},
    {"2text", "IMEISV", "01", false},
    {"2text", "ICCID", "8944110012345678901", false},
    {"2text", "Wi-Fi MAC address", "a0:b1:c2:d3:e4:f6", false},
    {"2text", "Bluetooth address", "A0:B1:C2:D3:E4:F5", false},
    {"2text", "Serial number", "NV480Q0A1B2C", false},
    {"2text", "Barcode number", "3546201", false},
    {"2text", "Hardware version", "REV1.0", false},
    {"2text", "Software version", "M480-EU-3.2.0611", false},
    {"2text", "Rated voltage", "3.85V", false},
    {"2text", "Rated current", "300mA", false},
};

Evas_Object *g_naviframe = nullptr;

char *textGetCb(void *data, Evas_Object *, const char *part) {
    auto *row = static_cast<const Row *>(data);
    if (!part)
        return nullptr;
    if (!strcmp(part, "elm.text"))
        return strdup(row->text);
    if (!strcmp(part, "elm.text.1") && row->value)
        return strdup(row->value);
    return nullptr;
}

Evas_Object *contentGetCb(void *data, Evas_Object *obj, const char *part) {
    auto *row = static_cast<const Row *>(data);
    if (!row->hasSwitch || !part || (strcmp(part, "elm.icon") && strcmp(part, "elm.swallow.icon")))
        return nullptr;
    Evas_Object *check = elm_check_add(obj);
    elm_object_style_set(check, "on&off/list");
    evas_object_size_hint_weight_set(check, EVAS_HINT_EXPAND, EVAS_HINT_EXPAND);
    evas_object_size_hint_align_set(check, EVAS_HINT_FILL, EVAS_HINT_FILL);
    elm_object_signal_emit(check, "elm,event,pass,enabled", "elm");
    return check;
}

void pushPage(const Row *rows, size_t count);

void selectedCb(void *, Evas_Object *, void *eventInfo) {
    elm_genlist_item_selected_set(static_cast<Elm_Object_Item *>(eventInfo), EINA_FALSE);
    pushPage(kPageRows, sizeof(kPageRows) / sizeof(kPageRows[0]));
}

void pushPage(const Row *rows, size_t count) {
    Evas_Object *genlist = elm_genlist_add(g_naviframe);
    elm_genlist_mode_set(genlist, ELM_LIST_COMPRESS);
    for (size_t i = 0; i < count; ++i) {
        Elm_Genlist_Item_Class *itc = elm_genlist_item_class_new();
        itc->item_style = rows[i].style;
        itc->func.text_get = textGetCb;
        itc->func.content_get = rows[i].hasSwitch ? contentGetCb : nullptr;
        bool title = i == 0;
        Elm_Object_Item *item =
            elm_genlist_item_append(genlist, itc, &rows[i], nullptr, ELM_GENLIST_ITEM_NONE,
                                    title ? nullptr : selectedCb, nullptr);
        elm_genlist_item_class_free(itc);
        if (title)
            elm_genlist_item_select_mode_set(item, ELM_OBJECT_SELECT_MODE_DISPLAY_ONLY);
    }
    Elm_Object_Item *naviItem =
        elm_naviframe_item_push(g_naviframe, nullptr, nullptr, nullptr, genlist, nullptr);
    elm_naviframe_item_title_enabled_set(naviItem, EINA_FALSE, EINA_FALSE);
}

void keyDownCb(void *, Evas *, Evas_Object *, void *eventInfo) {
    auto *event = static_cast<Evas_Event_Key_Down *>(eventInfo);
    if (!event->keyname ||
        (strcmp(event->keyname, "Escape") && strcmp(event->keyname, "BackSpace")))
        return;
    Eina_List *items = elm_naviframe_items_get(g_naviframe);
    unsigned int depth = eina_list_count(items);
    eina_list_free(items);
    if (depth > 1)
        elm_naviframe_item_pop(g_naviframe);
    else
        elm_exit();
}

}  // namespace

int main(int argc, char *argv[]) {
    const char *locale = setlocale(LC_ALL, "");
    if (!locale || !strcmp(locale, "C") || !strcmp(locale, "POSIX"))
        setlocale(LC_ALL, "C.UTF-8");
    setenv("ELM_SCALE", "1.3", 0);
    elm_init(argc, argv);
    std::string theme = sim::dataDir() + "/platform/watch-theme.edj";
    elm_theme_overlay_add(nullptr, theme.c_str());
    elm_app_base_scale_set(1.3);

    Evas_Object *win = elm_win_add(nullptr, "StKestaInfo", ELM_WIN_DIALOG_BASIC);
    elm_win_title_set(win, "StKestaInfo");
    elm_win_autodel_set(win, EINA_FALSE);
    evas_object_size_hint_min_set(win, kScreenSize, kScreenSize);
    evas_object_size_hint_max_set(win, kScreenSize, kScreenSize);
    evas_object_resize(win, kScreenSize, kScreenSize);
    Evas_Object *bg = elm_bg_add(win);
    elm_bg_color_set(bg, 0, 0, 0);
    evas_object_size_hint_weight_set(bg, EVAS_HINT_EXPAND, EVAS_HINT_EXPAND);
    elm_win_resize_object_add(win, bg);
    evas_object_show(bg);

    g_naviframe = elm_naviframe_add(win);
    evas_object_size_hint_weight_set(g_naviframe, EVAS_HINT_EXPAND, EVAS_HINT_EXPAND);
    elm_win_resize_object_add(win, g_naviframe);
    evas_object_show(g_naviframe);
    for (const char *key : {"Escape", "BackSpace"}) {
        if (!evas_object_key_grab(win, key, 0, 0, EINA_FALSE))
            fprintf(stderr, "quillset-bench-baseline: key %s could not be grabbed\n", key);
    }
    evas_object_event_callback_add(win, EVAS_CALLBACK_KEY_DOWN, keyDownCb, nullptr);
    // Seen, as the application is, through the simulated watch's round glass.
    roundScreenAdd(win);

    pushPage(kMainRows, sizeof(kMainRows) / sizeof(kMainRows[0]));
    evas_object_show(win);

    elm_run();
    elm_shutdown();
    return 0;
}
