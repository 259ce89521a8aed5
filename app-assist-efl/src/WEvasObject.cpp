#include "WEvasObject.h"

namespace app_assist {

namespace {
const char *const kHolderKey = "_app_assist_wevasobject";
}

// Keeps the only strong reference; dropping it on deletion expires every weak pointer.
struct WEvasObjectHolder {
    std::shared_ptr<WEvasObject> object;

    static void delCb(void *data, const Efl_Event *) {
        auto *holder = static_cast<WEvasObjectHolder *>(data);
        holder->object->_obj = nullptr;
        delete holder;
    }
};

WEvasObjectWeakPtr wevasobject_get_weak_ptr(Evas_Object *obj) {
    if (!obj)
        return WEvasObjectWeakPtr();
    auto *holder = static_cast<WEvasObjectHolder *>(evas_object_data_get(obj, kHolderKey));
    if (!holder) {
        holder = new WEvasObjectHolder{std::make_shared<WEvasObject>(obj)};
        evas_object_data_set(obj, kHolderKey, holder);
        // At the object level: the toolkit skips the EVAS_CALLBACK_DEL of an object whose
        // input is frozen, and a weak pointer must expire all the same.
        efl_event_callback_add(obj, EFL_EVENT_INVALIDATE, WEvasObjectHolder::delCb, holder);
    }
    return holder->object;
}

}  // namespace app_assist
