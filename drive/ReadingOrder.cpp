// The accessibility tree is upstream Elementary's efl_access API, which upstream marks as beta.
#define EFL_BETA_API_SUPPORT 1
// Reading an object's children and relations is what a screen reader does: protected API.
#define EFL_ACCESS_OBJECT_PROTECTED 1
#include "ReadingOrder.h"

#include <WContentViewController.h>
#include <WPopupController.h>

#include <algorithm>
#include <cstring>
#include <set>
#include <string>
#include <vector>

using nlohmann::json;

namespace {

std::string orEmpty(const char *value) {
    return value ? value : "";
}

// Roles a person acts on: these must carry a name a screen reader can say.
bool tappableRole(Efl_Access_Role role) {
    switch (role) {
        case EFL_ACCESS_ROLE_PUSH_BUTTON:
        case EFL_ACCESS_ROLE_CHECK_BOX:
        case EFL_ACCESS_ROLE_TOGGLE_BUTTON:
        case EFL_ACCESS_ROLE_LIST_ITEM:
        case EFL_ACCESS_ROLE_MENU_ITEM:
        case EFL_ACCESS_ROLE_LINK:
            return true;
        default:
            return false;
    }
}

bool hidden(const Eo *obj) {
    return efl_isa(obj, EFL_CANVAS_OBJECT_CLASS) && !evas_object_visible_get(obj);
}

// Every accessible object under root, depth first, as the toolkit lists its children.
void collect(const Eo *obj, std::vector<const Eo *> *out, std::set<const Eo *> *seen) {
    if (!obj || !efl_isa(obj, EFL_ACCESS_OBJECT_MIXIN) || !seen->insert(obj).second || hidden(obj))
        return;
    out->push_back(obj);
    Eina_List *children = efl_access_object_access_children_get(obj);
    void *child;
    EINA_LIST_FREE(children, child) {
        collect(static_cast<const Eo *>(child), out, seen);
    }
}

bool isListRow(const Eo *obj) {
    const char *name = efl_class_name_get(efl_class_get(obj));
    return name && !strcmp(name, "Elm.Genlist.Item");
}

const Eo *flowsTo(const Eo *obj) {
    const Eo *target = nullptr;
    Eina_Iterator *it = efl_access_object_relations_get(obj);
    Efl_Access_Relation *relation;
    EINA_ITERATOR_FOREACH(it, relation) {
        if (relation->type == EFL_ACCESS_RELATION_TYPE_FLOWS_TO && relation->objects && !target)
            target = static_cast<const Eo *>(eina_list_data_get(relation->objects));
    }
    eina_iterator_free(it);
    return target;
}

}  // namespace

json ReadingOrder::read() const {
    json out;
    app_assist::WPopupController *popup = _reader.topPopup();
    app_assist::WViewController *view = _reader.topView();
    auto *content = dynamic_cast<app_assist::WContentViewController *>(view);
    out["page"] = content && content->getTitle() ? json(content->getTitle()) : json(nullptr);
    out["popup"] = popup != nullptr;

    const Eo *root = popup ? popup->getEvasObject() : view ? view->getEvasObject() : nullptr;
    std::vector<const Eo *> tree;
    std::set<const Eo *> seen;
    collect(root, &tree, &seen);

    // The stops: what the reader can highlight and has something to say or to act on. Panes
    // and fillers that only repeat their texts are passed over, as is the popup itself, which
    // is announced as it opens.
    struct Stop {
        const Eo *obj;
        json entry;
        int y, x;
    };
    std::vector<Stop> stops;
    bool listRows = false;
    for (const Eo *obj : tree) {
        if (!elm_atspi_accessible_can_highlight_get(const_cast<Eo *>(obj)))
            continue;
        // The name AT-SPI hands out: the one set on the object, else what the toolkit makes up
        // from its texts (list rows, labels, buttons).
        std::string name = orEmpty(elm_atspi_accessible_name_get(obj));
        Efl_Access_Role role = efl_access_object_role_get(obj);
        bool tappable = tappableRole(role);
        bool row = isListRow(obj);
        if (row) {
            auto *item = const_cast<Elm_Object_Item *>(obj);
            const Elm_Genlist_Item_Class *itc = elm_genlist_item_item_class_get(item);
            // Spacing under the last row is not a stop; titles and facts are read, not tapped.
            if (itc && itc->item_style && !strcmp(itc->item_style, "padding"))
                continue;
            // A row off screen has no name until a reader scrolls to it; it then reads its texts.
            if (name.empty()) {
                json texts = ScreenReader::rowTexts(item);
                for (auto &text : texts.items())
                    if (text.value().is_string() && !text.value().get<std::string>().empty())
                        name += (name.empty() ? "" : ", ") + text.value().get<std::string>();
            }
            Elm_Object_Select_Mode mode = elm_genlist_item_select_mode_get(item);
            tappable = mode != ELM_OBJECT_SELECT_MODE_DISPLAY_ONLY &&
                       mode != ELM_OBJECT_SELECT_MODE_NONE && !elm_object_item_disabled_get(item);
            listRows = true;
        }
        std::string description = orEmpty(elm_atspi_accessible_description_get(obj));
        Elm_Atspi_Reading_Info_Type_Mask info =
            elm_atspi_accessible_reading_info_type_get(const_cast<Eo *>(obj));
        std::string reads;
        if (info & ELM_ACCESSIBLE_READING_INFO_TYPE_NAME)
            reads = name;
        if ((info & ELM_ACCESSIBLE_READING_INFO_TYPE_DESCRIPTION) && !description.empty())
            reads += (reads.empty() ? "" : ", ") + description;
        const char *roleName = efl_access_object_role_name_get(obj);
        json entry;
        entry["name"] = ScreenReader::withoutSoftHyphens(name);
        entry["description"] = ScreenReader::withoutSoftHyphens(description);
        entry["role"] = roleName ? roleName : "";
        entry["reads"] = ScreenReader::withoutSoftHyphens(reads);
        entry["tappable"] = tappable;
        if (obj == root) {
            out["announces"] = reads;
            continue;
        }
        bool container = role == EFL_ACCESS_ROLE_FILLER || role == EFL_ACCESS_ROLE_PANEL ||
                         role == EFL_ACCESS_ROLE_SCROLL_PANE || role == EFL_ACCESS_ROLE_LIST ||
                         role == EFL_ACCESS_ROLE_WINDOW || role == EFL_ACCESS_ROLE_DIALOG ||
                         role == EFL_ACCESS_ROLE_PAGE_TAB_LIST;
        if (reads.empty() && !tappable)
            continue;
        if (container && description.empty())
            continue;
        int x = 0, y = 0;
        if (!row && efl_isa(obj, EFL_CANVAS_OBJECT_CLASS))
            evas_object_geometry_get(obj, &x, &y, nullptr, nullptr);
        stops.push_back(Stop{obj, entry, y, x});
    }
    // Without a list, a reader moves down the screen: top to bottom, then left to right.
    if (!listRows)
        std::stable_sort(stops.begin(), stops.end(), [](const Stop &a, const Stop &b) {
            return a.y != b.y ? a.y < b.y : a.x < b.x;
        });

    // A swipe follows a flows-to relation where there is one, else the next stop in the tree.
    auto indexOf = [&stops](const Eo *obj) {
        for (size_t i = 0; i < stops.size(); ++i)
            if (stops[i].obj == obj)
                return i;
        return stops.size();
    };
    json order = json::array();
    std::vector<bool> visited(stops.size(), false);
    size_t current = 0;
    while (current < stops.size()) {
        visited[current] = true;
        json entry = stops[current].entry;
        size_t target = indexOf(flowsTo(stops[current].obj));
        if (target < stops.size())
            entry["flows_to"] = stops[target].entry["reads"];
        order.push_back(entry);
        if (target >= stops.size() || visited[target]) {
            target = current + 1;
            while (target < stops.size() && visited[target])
                ++target;
            if (target >= stops.size()) {
                target = 0;
                while (target < stops.size() && visited[target])
                    ++target;
            }
        }
        current = target;
    }
    out["order"] = order;
    return out;
}
