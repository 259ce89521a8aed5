#ifndef _ST_CIRCLE_SURFACE_MANAGER_H_
#define _ST_CIRCLE_SURFACE_MANAGER_H_

#include <efl_extension.h>

// Owner of the one circle surface of the process. Until some screen gives it a container it
// hands out null, which circle-object constructors take as "no shared surface".
class StCircleSurfaceManager {
public:
    static StCircleSurfaceManager *getInstance();
    static void destroy();

    Eext_Circle_Surface *getCircleSurface() const { return _circleSurface; }
    void addCircleSurface(Evas_Object *container);

    virtual ~StCircleSurfaceManager();

private:
    StCircleSurfaceManager();

    // Freed by the platform with the container that carries it.
    Eext_Circle_Surface *_circleSurface;
    static StCircleSurfaceManager *_instance;
};

#endif
