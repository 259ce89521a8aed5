// The application lifecycle of the watch: the main loop, launch requests, language changes
// and the application's resource directory.
//
// Launch requests after the first arrive from the simulated watch's services daemon as the
// event "launch". The language is the
// settings key db/menu_widget/language, watched like any other key.

#include <app.h>

#include <Elementary.h>
#include <dlog.h>
#include <vconf.h>

#include <libintl.h>
#include <sys/stat.h>
#include <locale.h>

#include <cstdlib>
#include <cstring>
#include <list>
#include <string>

#include "AppControlRequest.h"
#include "DaemonLink.h"
#include "PlatformState.h"
#include "WatchFonts.h"
#include "SimEvents.h"

extern "C" int _nl_msg_cat_cntr;

struct app_event_info {
    app_event_type_e type;
    std::string language;
};

struct app_event_handler {
    app_event_type_e type;
    app_event_cb callback;
    void *userData;
};

namespace {

const char *const kTag = "APP_CORE";
const char *const kLanguageKey = "db/menu_widget/language";

struct AppContext {
    ui_app_lifecycle_callback_s callbacks;
    void *userData;
};

AppContext *g_app = nullptr;
std::list<app_event_handler *> g_handlers;
std::string g_language;

// "de_DE.UTF-8" -> "de_DE"
std::string languageOf(const char *value) {
    std::string lang = value ? value : "";
    size_t dot = lang.find_first_of(".@");
    if (dot != std::string::npos)
        lang.erase(dot);
    return lang;
}

void applyLanguage(const std::string &lang) {
    g_language = lang;
    std::string list = lang;
    size_t underscore = lang.find('_');
    if (underscore != std::string::npos)
        list += ":" + lang.substr(0, underscore);
    setenv("LANGUAGE", list.c_str(), 1);
    // gettext caches translations per language; this tells it the language changed.
    ++_nl_msg_cat_cntr;
}

void readLanguage() {
    char *value = vconf_get_str(kLanguageKey);
    applyLanguage(languageOf(value && *value ? value : "en_US.UTF-8"));
    free(value);
}

// Which way the language reads, as the toolkit itself tells it at start: its own catalogue
// translates "default:LTR" to "default:RTL" for Arabic, Hebrew and the like. Layouts and
// popups mirror with it.
void applyDirection() {
    elm_config_mirrored_set(!strcmp(dgettext("efl", "default:LTR"), "default:RTL"));
}

void languageChangedCb(keynode_t *, void *) {
    readLanguage();
    applyDirection();
    platform::applyWatchFonts(g_language);
    app_event_info info{APP_EVENT_LANGUAGE_CHANGED, g_language};
    std::list<app_event_handler *> handlers(g_handlers);
    for (app_event_handler *handler : handlers) {
        if (handler->type == APP_EVENT_LANGUAGE_CHANGED)
            handler->callback(&info, handler->userData);
    }
}

void deliverLaunch() {
    if (!g_app || !g_app->callbacks.app_control)
        return;
    app_control_h request = platform::newAppControl();
    app_control_set_operation(request, APP_CONTROL_OPERATION_DEFAULT);
    g_app->callbacks.app_control(request, g_app->userData);
    app_control_destroy(request);
}

void setUpLocale() {
    const char *current = setlocale(LC_ALL, "");
    // Translations need a locale other than C; C.UTF-8 always exists.
    if (!current || !strcmp(current, "C") || !strcmp(current, "POSIX"))
        setlocale(LC_ALL, "C.UTF-8");
    readLanguage();
}

void loadWatchTheme() {
    std::string theme = platform::dataDir() + "/platform/watch-theme.edj";
    if (access(theme.c_str(), R_OK) != 0) {
        dlog_print(DLOG_ERROR, kTag, "watch theme %s is missing: using the toolkit's own look",
                   theme.c_str());
        return;
    }
    elm_theme_overlay_add(nullptr, theme.c_str());
}

}  // namespace

extern "C" {

int ui_app_main(int argc, char **argv, ui_app_lifecycle_callback_s *callback, void *user_data) {
    if (!callback || !callback->create) {
        dlog_print(DLOG_ERROR, kTag, "ui_app_main: no lifecycle callbacks");
        return APP_ERROR_INVALID_PARAMETER;
    }
    if (g_app) {
        dlog_print(DLOG_ERROR, kTag, "ui_app_main: already running");
        return APP_ERROR_ALREADY_RUNNING;
    }
    AppContext app{*callback, user_data};
    g_app = &app;

    setUpLocale();
    // The watch's screen density: the toolkit scales by this over the application's base scale.
    setenv("ELM_SCALE", "1.3", 0);
    // The watch's faces, and which language each draws.
    std::string fonts = platform::dataDir() + "/platform/fonts.conf";
    if (access(fonts.c_str(), R_OK) == 0)
        setenv("FONTCONFIG_FILE", fonts.c_str(), 0);
    else
        dlog_print(DLOG_ERROR, kTag, "font configuration %s is missing: the system's own is used",
                   fonts.c_str());
    elm_init(argc, argv);
    loadWatchTheme();
    // The toolkit hears the watch's language from the start, as on every change: Edje
    // translates the texts its layouts carry only once it has one.
    elm_language_set(g_language.c_str());
    applyDirection();
    platform::applyWatchFonts(g_language);
    int launchEvents = platform::simEventSubscribe(
        "launch", [](const std::vector<std::string> &) { deliverLaunch(); });
    vconf_notify_key_changed(kLanguageKey, languageChangedCb, nullptr);

    int result = APP_ERROR_NONE;
    if (app.callbacks.create(user_data)) {
        // The platform's order: create, the launch request, resume; all before the first
        // frame, so that the first frame shows what the launch request put on screen.
        deliverLaunch();
        if (app.callbacks.resume)
            app.callbacks.resume(user_data);
        elm_run();
        if (app.callbacks.pause)
            app.callbacks.pause(user_data);
    } else {
        dlog_print(DLOG_ERROR, kTag, "the application refused to start");
        result = APP_ERROR_INVALID_CONTEXT;
    }
    if (app.callbacks.terminate)
        app.callbacks.terminate(user_data);

    vconf_ignore_key_changed(kLanguageKey, languageChangedCb);
    platform::simEventUnsubscribe(launchEvents);
    // Usage records sent last still hear from the log provider, for a moment at most.
    platform::daemonLinkShutdown(1.0);
    platform::simEventsShutdown();
    elm_shutdown();
    g_app = nullptr;
    return result;
}

void ui_app_exit(void) {
    if (g_app)
        elm_exit();
}

int ui_app_add_event_handler(app_event_handler_h *handler, app_event_type_e event_type,
                             app_event_cb callback, void *user_data) {
    if (!handler || !callback || event_type < APP_EVENT_LOW_MEMORY ||
        event_type > APP_EVENT_SUSPENDED_STATE_CHANGED)
        return APP_ERROR_INVALID_PARAMETER;
    int code;
    if (platform::fault("ui_app_add_event_handler", nullptr, &code))
        return code;
    auto *h = new app_event_handler{event_type, callback, user_data};
    g_handlers.push_back(h);
    *handler = h;
    return APP_ERROR_NONE;
}

int ui_app_remove_event_handler(app_event_handler_h event_handler) {
    for (auto it = g_handlers.begin(); it != g_handlers.end(); ++it) {
        if (*it == event_handler) {
            delete *it;
            g_handlers.erase(it);
            return APP_ERROR_NONE;
        }
    }
    return APP_ERROR_INVALID_PARAMETER;
}

int app_event_get_language(app_event_info_h event_info, char **lang) {
    if (!event_info || !lang || event_info->type != APP_EVENT_LANGUAGE_CHANGED)
        return APP_ERROR_INVALID_PARAMETER;
    int code;
    if (platform::fault("app_event_get_language", nullptr, &code))
        return code;
    *lang = strdup(event_info->language.c_str());
    return *lang ? APP_ERROR_NONE : APP_ERROR_OUT_OF_MEMORY;
}

char *app_get_resource_path(void) {
    if (platform::fault("app_get_resource_path", nullptr, nullptr))
        return nullptr;
    std::string dir = platform::dataDir() + "/res/";
    // The application does not report a layout it cannot load; the watch's builder hears of it.
    static bool checked = false;
    struct stat st;
    if (!checked && stat((dir + "edje").c_str(), &st) != 0)
        dlog_print(DLOG_WARN, kTag,
                   "%sedje is missing: the application's layouts and images "
                   "will not show",
                   dir.c_str());
    checked = true;
    return strdup(dir.c_str());
}

char *app_get_data_path(void) {
    if (platform::fault("app_get_data_path", nullptr, nullptr))
        return nullptr;
    return strdup((platform::stateDir() + "/data/").c_str());
}

int app_get_id(char **id) {
    if (!id)
        return APP_ERROR_INVALID_PARAMETER;
    *id = strdup("com.nerova.quillset");
    return APP_ERROR_NONE;
}

}  // extern "C"
