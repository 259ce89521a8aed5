#ifndef QUILLSET_PLATFORM_ROUND_LIST_H
#define QUILLSET_PLATFORM_ROUND_LIST_H

#include <Evas.h>

// Rows of a list on the round screen shrink toward its top and bottom, each as far as its lines
// need to stay whole inside the circle; the rows in the middle keep their size. The screen is
// the window's rectangle (x, y, w, h).
void roundListFit(Evas_Object *genlist, int x, int y, int w, int h);

#endif
