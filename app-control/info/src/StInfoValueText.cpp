#include "StInfoValueText.h"

#include <Elementary.h>
#include <libintl.h>

#include <cstdlib>
#include <cstring>

#include "StInfoDefines.h"

std::string shownValue(const std::string &value) {
    return dgettext(ST_INFO_TEXT_DOMAIN, value.empty() ? ST_UNKNOWN_TEXT : value.c_str());
}

char *shownValueMarkup(const std::string &value) {
    char *markup = elm_entry_utf8_to_markup(shownValue(value).c_str());
    return markup ? markup : strdup("");
}
