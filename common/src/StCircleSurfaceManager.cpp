#include "StCircleSurfaceManager.h"

#include <cstring>

#include "StLog.h"

StCircleSurfaceManager *StCircleSurfaceManager::_instance = nullptr;

StCircleSurfaceManager::StCircleSurfaceManager() : _circleSurface(nullptr) {}

StCircleSurfaceManager::~StCircleSurfaceManager() {}

StCircleSurfaceManager *StCircleSurfaceManager::getInstance() {
    if (!_instance)
        _instance = new StCircleSurfaceManager();
    return _instance;
}

void StCircleSurfaceManager::destroy() {
    delete _instance;
    _instance = nullptr;
}

void StCircleSurfaceManager::addCircleSurface(Evas_Object *container) {
    if (_circleSurface) {
        ST_ERR("circleSurface is already created");
        return;
    }
    const char *type = evas_object_type_get(container);
    if (!type) {
        ST_ERR("objectType error");
        return;
    }
    if (!strcmp(type, "Elm_Conformant") || !strcmp(type, "elm_conformant"))
        _circleSurface = eext_circle_surface_conformant_add(container);
    else if (!strcmp(type, "Elm_Naviframe") || !strcmp(type, "elm_naviframe"))
        _circleSurface = eext_circle_surface_naviframe_add(container);
    else if (!strcmp(type, "Elm_Layout") || !strcmp(type, "elm_layout"))
        _circleSurface = eext_circle_surface_layout_add(container);
}
