// Smart-object classes are named through upstream's Eo API, which it marks as beta.
#define EFL_BETA_API_SUPPORT 1
#include "ScreenReader.h"

#include <WApp.h>
#include <WContentViewController.h>
#include <WNaviframeController.h>
#include <WPopupController.h>
#include <WWindowController.h>

#include <cstdlib>
#include <cstring>
#include <iterator>
#include <map>

#include "EvasTree.h"

using app_assist::WApp;
using app_assist::WContentViewController;
using app_assist::WNaviframeController;
using app_assist::WPopupController;
using app_assist::WViewController;
using nlohmann::json;

using evas_tree::collectByType;
using evas_tree::findByType;
using evas_tree::isType;

namespace {

// Text parts a row may answer, in the order a person reads them.
const char *const kRowParts[] = {"elm.text", "elm.text.1", "elm.text.2", "elm.text.sub"};
const char *const kCheckParts[] = {"elm.icon", "elm.swallow.icon", "elm.swallow.end"};
// Text parts of the page layouts.
const char *const kLayoutParts[] = {"text.title", "text.body", "elm.text.title", "elm.text"};

json textOrNull(const char *text) {
    return text ? json(std::string(text)) : json(nullptr);
}

std::string plain(const char *markup) {
    if (!markup)
        return std::string();
    char *utf8 = elm_entry_markup_to_utf8(markup);
    std::string text = utf8 ? utf8 : "";
    free(utf8);
    return ScreenReader::withoutSoftHyphens(text);
}

// Text parts that a row style shows, from the "texts" list of its theme group.
const std::vector<std::string> &styleParts(Evas_Object *genlist, const char *style) {
    static std::map<std::string, std::vector<std::string>> cache;
    std::string key = style ? style : "default";
    auto it = cache.find(key);
    if (it != cache.end())
        return it->second;
    std::vector<std::string> parts;
    std::string group = "elm/genlist/item/" + key + "/default";
    const char *file = elm_theme_group_path_find(nullptr, group.c_str());
    if (file) {
        Evas_Object *edje = edje_object_add(evas_object_evas_get(genlist));
        if (edje_object_file_set(edje, file, group.c_str())) {
            const char *texts = edje_object_data_get(edje, "texts");
            std::string list = texts ? texts : "";
            size_t start = 0;
            while (start < list.size()) {
                size_t end = list.find(' ', start);
                if (end == std::string::npos)
                    end = list.size();
                if (end > start)
                    parts.push_back(list.substr(start, end - start));
                start = end + 1;
            }
        }
        evas_object_del(edje);
    }
    if (parts.empty())
        parts.assign(std::begin(kRowParts), std::end(kRowParts));
    return cache[key] = parts;
}

}  // namespace

Evas_Object *ScreenReader::checkOf(Elm_Object_Item *item) {
    for (const char *part : kCheckParts) {
        Evas_Object *content = elm_object_item_part_content_get(item, part);
        if (isType(content, "elm_check"))
            return content;
    }
    return nullptr;
}

bool ScreenReader::hasSwitch(Elm_Object_Item *item) {
    const Elm_Genlist_Item_Class *itc = elm_genlist_item_item_class_get(item);
    return itc && itc->func.content_get;
}

Evas_Object *ScreenReader::window() const {
    WApp *app = WApp::getInstance();
    return app && app->getWindowController() ? app->getWindowController()->getEvasObject()
                                             : nullptr;
}

static WNaviframeController *naviframe() {
    WApp *app = WApp::getInstance();
    if (!app || !app->getWindowController())
        return nullptr;
    return dynamic_cast<WNaviframeController *>(
        app->getWindowController()->getBaseViewController());
}

WViewController *ScreenReader::topView() const {
    WNaviframeController *nf = naviframe();
    return nf ? nf->getTopView() : nullptr;
}

int ScreenReader::depth() const {
    WNaviframeController *nf = naviframe();
    return nf ? static_cast<int>(nf->getViews().size()) : 0;
}

Evas_Object *ScreenReader::topList() const {
    WViewController *view = topView();
    return view ? findByType(view->getEvasObject(), "elm_genlist") : nullptr;
}

WPopupController *ScreenReader::topPopup() const {
    WViewController *view = topView();
    return view ? view->getPopup() : nullptr;
}

std::vector<std::pair<Evas_Object *, std::string>> ScreenReader::popupButtons() const {
    std::vector<std::pair<Evas_Object *, std::string>> buttons;
    WPopupController *popup = topPopup();
    if (!popup)
        return buttons;
    // Buttons inside the popup's content come first, as they are read.
    std::vector<Evas_Object *> objects;
    collectByType(popup->getContentObject(), "elm_button", &objects);
    for (Evas_Object *button : popup->getButtons())
        objects.push_back(button);
    for (Evas_Object *button : objects) {
        std::string label = plain(elm_object_text_get(button));
        if (label.empty()) {
            // Icon buttons are known by their accessibility name.
            const char *name = elm_atspi_accessible_name_get(button);
            label = name ? name : "";
        }
        buttons.emplace_back(button, label);
    }
    return buttons;
}

Evas_Object *ScreenReader::toast() const {
    Evas_Object *win = window();
    if (!win)
        return nullptr;
    // Toasts are not part of any page: they are popups of their own on the window's canvas.
    Evas *canvas = evas_object_evas_get(win);
    for (Evas_Object *obj = evas_object_bottom_get(canvas); obj; obj = evas_object_above_get(obj)) {
        std::vector<Evas_Object *> popups;
        collectByType(obj, "elm_popup", &popups);
        for (Evas_Object *popup : popups) {
            const char *style = elm_object_style_get(popup);
            if (style && !strcmp(style, "toast/circle") && evas_object_visible_get(popup))
                return popup;
        }
    }
    return nullptr;
}

json ScreenReader::rowTexts(Elm_Object_Item *item) {
    json texts = json::object();
    const Elm_Genlist_Item_Class *itc = elm_genlist_item_item_class_get(item);
    if (!itc || !itc->func.text_get)
        return texts;
    Evas_Object *genlist = elm_object_item_widget_get(item);
    void *data = elm_object_item_data_get(item);
    for (const std::string &part : styleParts(genlist, itc->item_style)) {
        char *text = itc->func.text_get(data, genlist, part.c_str());
        if (text) {
            texts[part] = plain(text);  // rows are textblocks: markup shows as text
            free(text);
        }
    }
    return texts;
}

std::string ScreenReader::withoutSoftHyphens(std::string text) {
    const std::string softHyphen = "\xC2\xAD";
    for (size_t at = text.find(softHyphen); at != std::string::npos; at = text.find(softHyphen, at))
        text.erase(at, softHyphen.size());
    return text;
}

json ScreenReader::dump(const SwitchStates &switches) const {
    json out;
    WViewController *view = topView();
    auto *content = dynamic_cast<WContentViewController *>(view);
    out["page"] = textOrNull(content ? content->getTitle() : nullptr);
    out["depth"] = depth();

    json items = json::array();
    if (Evas_Object *list = topList()) {
        int index = 0;
        for (Elm_Object_Item *item = elm_genlist_first_item_get(list); item;
             item = elm_genlist_item_next_get(item), ++index) {
            const Elm_Genlist_Item_Class *itc = elm_genlist_item_item_class_get(item);
            // Spacing under the last row is not a row.
            if (itc && itc->item_style && !strcmp(itc->item_style, "padding"))
                continue;
            Elm_Object_Select_Mode mode = elm_genlist_item_select_mode_get(item);
            json row;
            row["index"] = index;
            row["style"] = textOrNull(itc ? itc->item_style : nullptr);
            row["texts"] = rowTexts(item);
            row["selectable"] =
                mode != ELM_OBJECT_SELECT_MODE_DISPLAY_ONLY && mode != ELM_OBJECT_SELECT_MODE_NONE;
            row["disabled"] = static_cast<bool>(elm_object_item_disabled_get(item));
            Evas_Object *check = checkOf(item);
            auto seen = switches.find(item);
            row["check"] = check ? json(static_cast<bool>(elm_check_state_get(check)))
                           : seen != switches.end() ? json(seen->second)
                                                    : json(nullptr);
            items.push_back(row);
        }
    }
    out["items"] = items;

    out["layout"] = nullptr;
    if (view && !topList()) {
        // A page may nest its layout in a frame layout and a scroller: read every layout on it.
        std::vector<Evas_Object *> layouts;
        collectByType(view->getEvasObject(), "elm_layout", &layouts, true);
        if (!layouts.empty()) {
            json parts = json::object();
            for (Evas_Object *layout : layouts)
                for (const char *part : kLayoutParts) {
                    const char *text = elm_layout_text_get(layout, part);
                    if (text && !parts.contains(part))
                        parts[part] = plain(text);
                }
            out["layout"] = parts;
        }
    }

    out["popup"] = nullptr;
    if (WPopupController *popup = topPopup()) {
        Evas_Object *obj = popup->getEvasObject();
        json p;
        p["title"] = textOrNull(elm_object_part_text_get(obj, "title,text"));
        const char *text = nullptr;
        std::string body;
        if (Evas_Object *built = popup->getContentObject()) {
            body = plain(elm_object_part_text_get(built, "elm.text"));
            text = body.empty() ? nullptr : body.c_str();
        } else {
            body = plain(elm_object_text_get(obj));
            text = body.empty() ? nullptr : body.c_str();
        }
        p["text"] = textOrNull(text);
        json buttons = json::array();
        for (auto &button : popupButtons())
            buttons.push_back(button.second);
        p["buttons"] = buttons;
        out["popup"] = p;
    }

    Evas_Object *toastObj = toast();
    out["toast"] = toastObj ? json(plain(elm_object_text_get(toastObj))) : json(nullptr);
    return out;
}
