#ifndef _APP_ASSIST_WPOPUP_CONTROLLER_H_
#define _APP_ASSIST_WPOPUP_CONTROLLER_H_

#include <functional>
#include <string>
#include <vector>

#include "WViewController.h"

namespace app_assist {

// A popup over a view: a title, a text or built content, and buttons. Button and back handlers
// get a flag; setting it to true closes the popup once the handler returns. Closing deletes the
// popup's object and, with it, this controller.
class WPopupController : public WViewController {
public:
    typedef std::function<void(bool *destroyPopup)> ButtonHandler;
    typedef std::function<void(Evas_Object *button)> ButtonDecorator;

    WPopupController();
    const char *getClassName() const override;

    // Title and text content are text ids translated in this domain, also after a language
    // change. Without a domain they are shown as given.
    void setTextTranslatable(const char *domain);
    void setTitle(const char *title);
    void setContent(const char *text);
    void setContent(std::function<Evas_Object *(Evas_Object *parent)> builder);
    void setOnAddProperties(std::function<void(Evas_Object *popup)> handler);
    // Buttons appear in the order they are added; an empty label makes an icon-only button
    // that the decorator fills.
    void addButton(const char *label, ButtonHandler handler, ButtonDecorator decorator = nullptr);
    void setOnBack(ButtonHandler handler);

    const char *getTitle() const { return _hasTitle ? _title.c_str() : nullptr; }
    const char *getTextDomain() const { return _domain.empty() ? nullptr : _domain.c_str(); }
    Evas_Object *getContentObject() const { return _contentObject; }
    std::vector<Evas_Object *> getButtons() const;

    // Closes the popup after the current callback has returned.
    void close();

protected:
    Evas_Object *onCreateView(Evas_Object *parent, void *viewParam) override;
    void onDestroy() override;

public:
    ~WPopupController() override;

private:
    friend class WViewController;

    struct Button {
        std::string label;
        ButtonHandler handler;
        ButtonDecorator decorator;
        Evas_Object *object;
    };

    static void _buttonClickedCb(void *data, Evas_Object *obj, void *eventInfo);
    static void _backCb(void *data, Evas_Object *obj, void *eventInfo);
    static void _closeJobCb(void *data);
    void _setText(Evas_Object *obj, const char *part, const std::string &text);

    WViewController *_owner;
    std::string _domain;
    std::string _title;
    bool _hasTitle;
    std::string _text;
    bool _hasText;
    std::function<Evas_Object *(Evas_Object *)> _contentBuilder;
    std::function<void(Evas_Object *)> _onAddProperties;
    std::vector<Button> _buttons;
    ButtonHandler _onBack;
    Evas_Object *_contentObject;
    Ecore_Job *_closeJob;
};

}  // namespace app_assist

#endif
