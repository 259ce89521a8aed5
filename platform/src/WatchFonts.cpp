#include "WatchFonts.h"

#include <Edje.h>

#include <cctype>

namespace platform {

namespace {
// "zh_TW" -> "zh-tw", as fontconfig names languages.
std::string fontLanguage(const std::string &language) {
    std::string lang;
    for (char c : language.substr(0, language.find_first_of(".@")))
        lang += c == '_' ? '-' : static_cast<char>(tolower(static_cast<unsigned char>(c)));
    return lang;
}
}  // namespace

void applyWatchFonts(const std::string &language) {
    const std::string lang = ":lang=" + fontLanguage(language);
    // Size 0: every text keeps the size its layout gives it.
    edje_text_class_set("watch_text", ("Sans:style=Condensed" + lang).c_str(), 0);
    edje_text_class_set("watch_text_bold", ("DejaVu Sans Condensed:style=Bold" + lang).c_str(),
                        0);
}

}  // namespace platform
