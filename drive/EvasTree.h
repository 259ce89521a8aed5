#ifndef QUILLSET_DRIVE_EVAS_TREE_H
#define QUILLSET_DRIVE_EVAS_TREE_H

// Searches of a window's object tree by toolkit type, for the programs that look at the
// application from outside it (the driver and the benchmark's probe).

#include <Elementary.h>

#include <cstring>
#include <vector>

namespace evas_tree {

const int kMaxDepth = 16;

inline bool isType(Evas_Object *obj, const char *type) {
    const char *t = obj ? evas_object_type_get(obj) : nullptr;
    return t && !strcmp(t, type);
}

// The first object of the type, depth first, obj included.
inline Evas_Object *findByType(Evas_Object *obj, const char *type, int depth = 0) {
    if (!obj || depth > kMaxDepth)
        return nullptr;
    if (isType(obj, type))
        return obj;
    // Only smart objects have members.
    if (!efl_isa(obj, EFL_CANVAS_GROUP_CLASS))
        return nullptr;
    Eina_List *children = evas_object_smart_members_get(obj);
    Evas_Object *found = nullptr;
    Eina_List *l;
    void *child;
    EINA_LIST_FOREACH(children, l, child) {
        found = findByType(static_cast<Evas_Object *>(child), type, depth + 1);
        if (found)
            break;
    }
    eina_list_free(children);
    return found;
}

// Every object of the type; with nested, also those inside the objects found.
inline void collectByType(Evas_Object *obj, const char *type, std::vector<Evas_Object *> *found,
                          bool nested = false, int depth = 0) {
    if (!obj || depth > kMaxDepth)
        return;
    if (isType(obj, type)) {
        found->push_back(obj);
        if (!nested)
            return;
    }
    if (!efl_isa(obj, EFL_CANVAS_GROUP_CLASS))
        return;
    Eina_List *children = evas_object_smart_members_get(obj);
    Eina_List *l;
    void *child;
    EINA_LIST_FOREACH(children, l, child)
    collectByType(static_cast<Evas_Object *>(child), type, found, nested, depth + 1);
    eina_list_free(children);
}

}  // namespace evas_tree

#endif
