// The watch's UI extension: the changeable colour theme (colour tables read from XML), the
// genlist bottom margin and rotary scrolling of popups.

#include <uxt_genlist.h>
#include <uxt_popup.h>
#include <uxt_theme.h>

#include <dlog.h>
#include <efl_extension.h>

#include <cstdio>
#include <cstring>
#include <map>
#include <string>

#include "PlatformState.h"

namespace {

const char *const kTag = "UXT";

struct Rgba {
    int r, g, b, a;
};

bool g_changeableUi = false;

}  // namespace

struct _Uxt_Theme_Color_Table {
    std::string path;
    std::map<std::string, Rgba> colors;
};

namespace {

Uxt_Theme_Color_Table *g_current = nullptr;

bool parseColor(const char *text, Rgba *out) {
    unsigned int r, g, b, a = 255;
    size_t len = strlen(text);
    if (text[0] != '#' || (len != 7 && len != 9))
        return false;
    for (size_t i = 1; i < len; ++i)
        if (!isxdigit(static_cast<unsigned char>(text[i])))
            return false;
    if (sscanf(text + 1, "%2x%2x%2x", &r, &g, &b) != 3)
        return false;
    if (len == 9 && sscanf(text + 7, "%2x", &a) != 1)
        return false;
    *out = Rgba{static_cast<int>(r), static_cast<int>(g), static_cast<int>(b), static_cast<int>(a)};
    return true;
}

struct ParseState {
    Uxt_Theme_Color_Table *table;
    bool sawRoot;
    int errors;
};

Eina_Bool attributeCb(void *data, const char *key, const char *value) {
    auto *attrs = static_cast<std::map<std::string, std::string> *>(data);
    (*attrs)[key] = value;
    return EINA_TRUE;
}

Eina_Bool xmlCb(void *data, Eina_Simple_XML_Type type, const char *content, unsigned offset,
                unsigned length) {
    auto *state = static_cast<ParseState *>(data);
    if (type != EINA_SIMPLE_XML_OPEN && type != EINA_SIMPLE_XML_OPEN_EMPTY)
        return EINA_TRUE;
    std::string tag(content, length);
    std::string name = tag.substr(0, tag.find_first_of(" \t\r\n/"));
    if (name == "ChangeableColorTable") {
        state->sawRoot = true;
        return EINA_TRUE;
    }
    if (name != "Color")
        return EINA_TRUE;
    std::map<std::string, std::string> attrs;
    const char *attrStart = eina_simple_xml_tag_attributes_find(content, length);
    if (attrStart)
        eina_simple_xml_attributes_parse(attrStart, length - (attrStart - content), attributeCb,
                                         &attrs);
    Rgba rgba;
    if (attrs["code"].empty() || !parseColor(attrs["value"].c_str(), &rgba)) {
        dlog_print(DLOG_ERROR, kTag, "%s: bad Color entry at byte %u (code='%s' value='%s')",
                   state->table->path.c_str(), offset, attrs["code"].c_str(),
                   attrs["value"].c_str());
        ++state->errors;
        return EINA_TRUE;
    }
    state->table->colors[attrs["code"]] = rgba;
    return EINA_TRUE;
}

void applyTable(const Uxt_Theme_Color_Table *table) {
    // Colour codes are Edje colour classes: every themed part that uses one follows the table.
    for (const auto &entry : table->colors) {
        const Rgba &c = entry.second;
        edje_color_class_set(entry.first.c_str(), c.r, c.g, c.b, c.a, c.r, c.g, c.b, c.a, c.r, c.g,
                             c.b, c.a);
    }
}

// Room under the last row of a list, so that it can reach the middle of the round screen.
const char *const kBottomMarginKey = "_uxt_bottom_margin";

struct BottomMargin {
    Evas_Object *genlist;
    Ecore_Job *job;
    Elm_Object_Item *item;
};

void bottomMarginJob(void *data) {
    auto *margin = static_cast<BottomMargin *>(data);
    margin->job = nullptr;
    static Elm_Genlist_Item_Class *itc = nullptr;
    if (!itc) {
        itc = elm_genlist_item_class_new();
        itc->item_style = "padding";
    }
    margin->item = elm_genlist_item_append(margin->genlist, itc, nullptr, nullptr,
                                           ELM_GENLIST_ITEM_NONE, nullptr, nullptr);
    elm_genlist_item_select_mode_set(margin->item, ELM_OBJECT_SELECT_MODE_DISPLAY_ONLY);
}

void bottomMarginDelCb(void *data, const Efl_Event *) {
    auto *margin = static_cast<BottomMargin *>(data);
    if (margin->job)
        ecore_job_del(margin->job);
    delete margin;
}

}  // namespace

extern "C" {

void uxt_theme_set_changeable_ui_enabled(bool enabled) {
    g_changeableUi = enabled;
}

bool uxt_theme_get_changeable_ui_enabled(void) {
    return g_changeableUi;
}

Uxt_Theme_Color_Table *uxt_theme_add_color_table(const char *file_path) {
    if (!file_path) {
        dlog_print(DLOG_ERROR, kTag, "colour table: no path");
        return nullptr;
    }
    if (platform::fault(__func__, file_path, nullptr))
        return nullptr;
    Eina_File *file = eina_file_open(file_path, EINA_FALSE);
    if (!file) {
        dlog_print(DLOG_ERROR, kTag, "colour table %s cannot be opened", file_path);
        return nullptr;
    }
    size_t size = eina_file_size_get(file);
    auto *data = static_cast<const char *>(eina_file_map_all(file, EINA_FILE_SEQUENTIAL));
    auto *table = new Uxt_Theme_Color_Table{file_path, {}};
    ParseState state{table, false, 0};
    bool parsed = data && eina_simple_xml_parse(data, size, EINA_TRUE, xmlCb, &state);
    if (data)
        eina_file_map_free(file, const_cast<char *>(data));
    eina_file_close(file);
    if (!parsed || !state.sawRoot || table->colors.empty()) {
        dlog_print(DLOG_ERROR, kTag, "colour table %s is not a colour table (%s)", file_path,
                   !parsed ? "malformed XML" : "no ChangeableColorTable with Color entries");
        delete table;
        return nullptr;
    }
    return table;
}

void uxt_theme_delete_color_table(Uxt_Theme_Color_Table *table) {
    if (!table)
        return;
    if (g_current == table)
        g_current = nullptr;
    delete table;
}

void uxt_theme_set_color_table(Uxt_Theme_Color_Table *table) {
    if (!table)
        return;
    g_current = table;
    applyTable(table);
}

bool uxt_theme_get_color(const char *code, int *r, int *g, int *b, int *a) {
    if (!g_current || !code)
        return false;
    auto it = g_current->colors.find(code);
    if (it == g_current->colors.end())
        return false;
    if (r)
        *r = it->second.r;
    if (g)
        *g = it->second.g;
    if (b)
        *b = it->second.b;
    if (a)
        *a = it->second.a;
    return true;
}

void uxt_theme_object_item_replace_color(Elm_Object_Item *item, const char *color_class,
                                         const char *code) {
    if (!item || !color_class || !code) {
        dlog_print(DLOG_ERROR, kTag, "%s: no item, colour class or code", __func__);
        return;
    }
    int r, g, b, a;
    if (!uxt_theme_get_color(code, &r, &g, &b, &a)) {
        dlog_print(DLOG_WARN, kTag, "colour %s is not in the current table", code);
        return;
    }
    // Upstream items have no colour classes of their own: recolour the class on the list.
    Evas_Object *widget = elm_object_item_widget_get(item);
    if (widget)
        edje_object_color_class_set(elm_layout_edje_get(widget), color_class, r, g, b, a, r, g, b,
                                    a, r, g, b, a);
}

void uxt_genlist_set_bottom_margin_enabled(Evas_Object *genlist, bool enabled) {
    if (!genlist)
        return;
    auto *margin = static_cast<BottomMargin *>(evas_object_data_get(genlist, kBottomMarginKey));
    if (enabled && !margin) {
        margin = new BottomMargin{genlist, nullptr, nullptr};
        evas_object_data_set(genlist, kBottomMarginKey, margin);
        // Heard at the object level: a list whose input is frozen by a launch is deleted
        // without its EVAS_CALLBACK_DEL.
        efl_event_callback_add(genlist, EFL_EVENT_INVALIDATE, bottomMarginDelCb, margin);
        // The list is still being filled: the margin goes after its last row.
        margin->job = ecore_job_add(bottomMarginJob, margin);
    } else if (!enabled && margin) {
        efl_event_callback_del(genlist, EFL_EVENT_INVALIDATE, bottomMarginDelCb, margin);
        evas_object_data_del(genlist, kBottomMarginKey);
        if (margin->item)
            elm_object_item_del(margin->item);
        bottomMarginDelCb(margin, nullptr);
    }
}

void uxt_popup_set_rotary_event_enabled(Evas_Object *popup, bool enabled) {
    if (!popup || platform::fault(__func__, nullptr, nullptr))
        return;
    eext_rotary_object_event_activated_set(popup, enabled ? EINA_TRUE : EINA_FALSE);
}

}  // extern "C"
