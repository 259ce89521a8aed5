#ifndef _APP_ASSIST_WEVAS_OBJECT_H_
#define _APP_ASSIST_WEVAS_OBJECT_H_

#include <Evas.h>

#include <memory>

namespace app_assist {

// A handle on an Evas object that knows when the object has been deleted. Every weak pointer
// taken on the same object shares one wrapper, which expires when the object is deleted.
class WEvasObject {
public:
    explicit WEvasObject(Evas_Object *obj) : _obj(obj) {}
    Evas_Object *getEvasObject() const { return _obj; }

private:
    friend struct WEvasObjectHolder;
    Evas_Object *_obj;
};

typedef std::weak_ptr<WEvasObject> WEvasObjectWeakPtr;

WEvasObjectWeakPtr wevasobject_get_weak_ptr(Evas_Object *obj);

}  // namespace app_assist

#endif
