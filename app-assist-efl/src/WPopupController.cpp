#include "WPopupController.h"

#include <efl_extension.h>

#include "WDefine.h"

namespace app_assist {

namespace {
const char *const kButtonParts[] = {"button1", "button2", "button3"};
}

WPopupController::WPopupController()
    : _owner(nullptr),
      _hasTitle(false),
      _hasText(false),
      _contentObject(nullptr),
      _closeJob(nullptr) {}

WPopupController::~WPopupController() {
    if (_closeJob)
        ecore_job_del(_closeJob);
    if (_owner)
        _owner->_popupDestroyed(this);
}

const char *WPopupController::getClassName() const {
    return "WPopupController";
}

void WPopupController::setTextTranslatable(const char *domain) {
    _domain = domain ? domain : "";
}

void WPopupController::setTitle(const char *title) {
    _hasTitle = title != nullptr;
    _title = title ? title : "";
}

void WPopupController::setContent(const char *text) {
    _hasText = text != nullptr;
    _text = text ? text : "";
    _contentBuilder = nullptr;
}

void WPopupController::setContent(std::function<Evas_Object *(Evas_Object *)> builder) {
    _contentBuilder = std::move(builder);
    _hasText = false;
}

void WPopupController::setOnAddProperties(std::function<void(Evas_Object *)> handler) {
    _onAddProperties = std::move(handler);
}

void WPopupController::addButton(const char *label, ButtonHandler handler,
                                 ButtonDecorator decorator) {
    if (_buttons.size() >= sizeof(kButtonParts) / sizeof(kButtonParts[0])) {
        WERROR("a popup holds at most three buttons");
        return;
    }
    _buttons.push_back(
        Button{label ? label : "", std::move(handler), std::move(decorator), nullptr});
}

void WPopupController::setOnBack(ButtonHandler handler) {
    _onBack = std::move(handler);
}

std::vector<Evas_Object *> WPopupController::getButtons() const {
    std::vector<Evas_Object *> buttons;
    for (const Button &button : _buttons)
        if (button.object)
            buttons.push_back(button.object);
    return buttons;
}

void WPopupController::_setText(Evas_Object *obj, const char *part, const std::string &text) {
    if (_domain.empty())
        elm_object_part_text_set(obj, part, text.c_str());
    else
        elm_object_domain_translatable_part_text_set(obj, part, _domain.c_str(), text.c_str());
}

Evas_Object *WPopupController::onCreateView(Evas_Object *parent, void *) {
    Evas_Object *popup = elm_popup_add(parent);
    if (!popup)
        return nullptr;
    // Long texts scroll between the title and the buttons instead of growing off the screen.
    elm_popup_scrollable_set(popup, EINA_TRUE);
    elm_popup_align_set(popup, ELM_NOTIFY_ALIGN_FILL, 0.5);
    evas_object_size_hint_weight_set(popup, EVAS_HINT_EXPAND, EVAS_HINT_EXPAND);
    if (_onAddProperties)
        _onAddProperties(popup);

    if (_hasTitle) {
        _setText(popup, "title,text", _title);
        // A screen reader announces the popup by its title rather than by its text.
        elm_atspi_accessible_name_set(popup, _title.c_str());
        if (!_domain.empty())
            elm_atspi_accessible_translation_domain_set(popup, _domain.c_str());
    }
    if (_contentBuilder) {
        _contentObject = _contentBuilder(popup);
        if (_contentObject)
            elm_object_content_set(popup, _contentObject);
    } else if (_hasText) {
        _setText(popup, nullptr, _text);
    }

    size_t count = _buttons.size();
    for (size_t i = 0; i < count; ++i) {
        Button &button = _buttons[i];
        Evas_Object *btn = elm_button_add(popup);
        const char *style =
            count == 1 ? "popup/circle" : (i == 0 ? "popup/circle/left" : "popup/circle/right");
        elm_object_style_set(btn, style);
        if (!button.label.empty())
            _setText(btn, nullptr, button.label);
        if (button.decorator)
            button.decorator(btn);
        evas_object_smart_callback_add(btn, "clicked", _buttonClickedCb, this);
        elm_object_part_content_set(popup, kButtonParts[i], btn);
        button.object = btn;
    }

    eext_object_event_callback_add(popup, EEXT_CALLBACK_BACK, _backCb, this);
    evas_object_show(popup);
    return popup;
}

void WPopupController::onDestroy() {
    if (getEvasObject())
        eext_object_event_callback_del(getEvasObject(), EEXT_CALLBACK_BACK, _backCb);
    for (Button &button : _buttons)
        button.object = nullptr;
    _contentObject = nullptr;
}

void WPopupController::close() {
    if (!_closeJob)
        _closeJob = ecore_job_add(_closeJobCb, this);
}

void WPopupController::_closeJobCb(void *data) {
    auto *self = static_cast<WPopupController *>(data);
    self->_closeJob = nullptr;
    self->destroy();
}

void WPopupController::_buttonClickedCb(void *data, Evas_Object *obj, void *) {
    auto *self = static_cast<WPopupController *>(data);
    if (self->_closeJob)
        return;  // already closing: a second tap must not run a handler twice
    for (Button &button : self->_buttons) {
        if (button.object != obj)
            continue;
        bool destroyPopup = false;
        if (button.handler)
            button.handler(&destroyPopup);
        if (destroyPopup)
            self->close();
        return;
    }
}

void WPopupController::_backCb(void *data, Evas_Object *, void *) {
    auto *self = static_cast<WPopupController *>(data);
    if (self->_closeJob)
        return;
    bool destroyPopup = true;
    if (self->_onBack) {
        destroyPopup = false;
        self->_onBack(&destroyPopup);
    }
    if (destroyPopup)
        self->close();
}

}  // namespace app_assist
