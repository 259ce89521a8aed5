// The message catalogues the build compiled, as the screens read them.
#pragma once

#include <string>
#include <vector>

// Every language with a compiled catalogue (res/locale/<language>), pseudo-locales included,
// sorted.
std::vector<std::string> compiledLanguages();

// LANGUAGE as the platform sets it for language: "zh_TW:zh", "de".
std::string languageList(const std::string &language);

// The text of id in language's catalogue, as the screens show it (with the marks where lines
// may break). The platform's order applies: "zh_TW", then "zh".
std::string textIn(const std::string &language, const char *id);
