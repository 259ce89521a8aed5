#ifndef QUILLSET_PLATFORM_ROUND_SCREEN_H
#define QUILLSET_PLATFORM_ROUND_SCREEN_H

#include <Evas.h>

// The watch's round glass over a window: everything outside the circle inscribed in it is black,
// with an anti-aliased edge, at every size the window takes. Returns the mask object.
Evas_Object *roundScreenAdd(Evas_Object *win);

#endif
