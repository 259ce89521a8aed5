#ifndef _ST_INFO_VALUE_TEXT_H_
#define _ST_INFO_VALUE_TEXT_H_

#include <string>

// A row's value as the lists show it: string ids translated, real values unchanged, and an
// empty value read as unknown (an empty id would look up the catalogue's header).
std::string shownValue(const std::string &value);

// The same, as markup for a text part: characters such as '<' and '&' in a device's value are
// shown as they are. Newly allocated; the list frees it.
char *shownValueMarkup(const std::string &value);

#endif
