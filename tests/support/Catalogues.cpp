#include "Catalogues.h"

#include <libintl.h>

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <filesystem>

#include "StatePaths.h"

extern "C" int _nl_msg_cat_cntr;

namespace {
std::string localeDir() {
    return sim::dataDir() + "/res/locale";
}
}  // namespace

std::vector<std::string> compiledLanguages() {
    std::vector<std::string> found;
    std::error_code error;
    for (const auto &entry : std::filesystem::directory_iterator(localeDir(), error))
        found.push_back(entry.path().filename().string());
    std::sort(found.begin(), found.end());
    return found;
}

std::string languageList(const std::string &language) {
    size_t underscore = language.find('_');
    return underscore == std::string::npos ? language
                                           : language + ":" + language.substr(0, underscore);
}

std::string textIn(const std::string &language, const char *id) {
    // Translations need a locale other than C; C.UTF-8 always exists.
    setlocale(LC_MESSAGES, "C.UTF-8");
    bindtextdomain("quillset", localeDir().c_str());
    bind_textdomain_codeset("quillset", "UTF-8");
    const char *before = getenv("LANGUAGE");
    std::string saved = before ? before : "";
    setenv("LANGUAGE", languageList(language).c_str(), 1);
    ++_nl_msg_cat_cntr;
    std::string text = dgettext("quillset", id);
    if (before)
        setenv("LANGUAGE", saved.c_str(), 1);
    else
        unsetenv("LANGUAGE");
    ++_nl_msg_cat_cntr;
    return text;
}
