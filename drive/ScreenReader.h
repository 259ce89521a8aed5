#ifndef QUILLSET_DRIVE_SCREEN_READER_H
#define QUILLSET_DRIVE_SCREEN_READER_H

#include <Elementary.h>
#include <nlohmann/json.hpp>

#include <map>
#include <string>
#include <vector>

namespace app_assist {
class WViewController;
class WPopupController;
}  // namespace app_assist

// Reads the application's screens the way a person sees them: the top page of the naviframe,
// its list rows with their texts as shown, its popup and its toast.
class ScreenReader {
public:
    Evas_Object *window() const;
    app_assist::WViewController *topView() const;
    int depth() const;
    // The top page's list, if it has one.
    Evas_Object *topList() const;
    // The popup shown over the top page, if any.
    app_assist::WPopupController *topPopup() const;
    // Popup buttons in order, with the text a person or a screen reader gets for each.
    std::vector<std::pair<Evas_Object *, std::string>> popupButtons() const;
    Evas_Object *toast() const;

    // Switch states seen on rows that are not on screen now.
    typedef std::map<Elm_Object_Item *, bool> SwitchStates;

    // The top screen as one JSON object. Rows outside the round screen have no widgets; their
    // switches are reported from states, or as null.
    nlohmann::json dump(const SwitchStates &states = SwitchStates()) const;

    // The switch a row shows, when the row is on screen.
    static Evas_Object *checkOf(Elm_Object_Item *item);
    // Rows with content (a switch) whose state only the screen knows.
    static bool hasSwitch(Elm_Object_Item *item);

    // Soft hyphens only show where a line breaks; a reader of the text does not see them.
    static std::string withoutSoftHyphens(std::string text);

    // Texts of a row, keyed by part, as its item class answers them.
    static nlohmann::json rowTexts(Elm_Object_Item *item);
};

#endif
