#ifndef _APP_ASSIST_WSIGNAL_H_
#define _APP_ASSIST_WSIGNAL_H_

#include <Evas.h>

#include <functional>
#include <list>
#include <map>

#include "WDefine.h"
#include "WSignalIdGenerator.h"

namespace app_assist {

template <typename Signature>
class WSignal;

// A signal that models emit and views listen to. A subscription may be bound to an Evas object
// and then ends by itself when that object is deleted, whether or not the object's input is
// frozen at the time (the toolkit skips EVAS_CALLBACK_DEL then, so the object-level
// invalidation is heard instead). Listeners may subscribe and unsubscribe (themselves or
// others) while the signal is being emitted.
template <typename... Args>
class WSignal<void(Args...)> {
public:
    WSignal() : _emitting(false) {}

    virtual ~WSignal() {
        for (auto &entry : _listeners) {
            ListenerInfo *info = entry.second;
            if (info->boundObject)
                efl_event_callback_del(info->boundObject, EFL_EVENT_INVALIDATE,
                                       _onBoundObjectDeleted, info);
            if (_emitting)
                info->removed = true;
        }
        for (auto &entry : _listeners)
            delete entry.second;
        for (ListenerInfo *info : _pending)
            delete info;
    }

    WSignal(const WSignal &) = delete;
    WSignal &operator=(const WSignal &) = delete;

    unsigned int addListener(std::function<void(Args...)> callback,
                             Evas_Object *boundObject = nullptr) {
        unsigned int id = WSignalIdGenerator::generate();
        auto *info = new ListenerInfo{std::move(callback), boundObject, false, id, this};
        if (_emitting)
            _pending.push_back(info);
        else
            _store(info);
        return id;
    }

    void removeListener(unsigned int id) {
        if (id == 0)
            return;
        auto it = _listeners.find(id);
        if (it == _listeners.end()) {
            WERROR("Already removed listener! = %u", id);
            return;
        }
        ListenerInfo *info = it->second;
        if (info->boundObject)
            efl_event_callback_del(info->boundObject, EFL_EVENT_INVALIDATE, _onBoundObjectDeleted,
                                   info);
        if (_emitting) {
            info->removed = true;
        } else {
            _listeners.erase(it);
            delete info;
        }
    }

    void emit(Args... args) {
        _emitting = true;
        notifyListeners(args...);
        _emitting = false;

        for (auto it = _listeners.begin(); it != _listeners.end();) {
            if (it->second->removed) {
                delete it->second;
                it = _listeners.erase(it);
            } else {
                ++it;
            }
        }
        std::list<ListenerInfo *> pending;
        pending.swap(_pending);
        for (ListenerInfo *info : pending)
            _store(info);
    }

protected:
    virtual void notifyListeners(Args... args) {
        for (auto &entry : _listeners) {
            ListenerInfo *info = entry.second;
            if (!info->removed)
                info->callback(args...);
        }
    }

private:
    struct ListenerInfo {
        std::function<void(Args...)> callback;
        Evas_Object *boundObject;
        bool removed;
        unsigned int id;
        WSignal *owner;
    };

    void _store(ListenerInfo *info) {
        auto it = _listeners.find(info->id);
        if (it != _listeners.end()) {
            ListenerInfo *old = it->second;
            if (old->boundObject)
                efl_event_callback_del(old->boundObject, EFL_EVENT_INVALIDATE,
                                       _onBoundObjectDeleted, old);
            delete old;
            it->second = info;
        } else {
            _listeners.emplace(info->id, info);
        }
        if (info->boundObject)
            efl_event_callback_add(info->boundObject, EFL_EVENT_INVALIDATE, _onBoundObjectDeleted,
                                   info);
    }

    static void _onBoundObjectDeleted(void *data, const Efl_Event *) {
        auto *info = static_cast<ListenerInfo *>(data);
        // The object is going away: its callback list must not be touched again.
        info->boundObject = nullptr;
        if (info->owner->_emitting) {
            info->removed = true;
            return;
        }
        info->owner->removeListener(info->id);
    }

    bool _emitting;
    std::list<ListenerInfo *> _pending;
    std::map<unsigned int, ListenerInfo *> _listeners;
};

}  // namespace app_assist

#endif
