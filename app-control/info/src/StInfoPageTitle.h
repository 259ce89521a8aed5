#ifndef _ST_INFO_PAGE_TITLE_H_
#define _ST_INFO_PAGE_TITLE_H_

#include <WContentViewController.h>

// A page whose title is the first row of its list, or a part of its layout: the naviframe's own
// title bar is hidden, the item's texts follow the watch's language, and a screen reader
// announces the page by its title in that language.
void useTitleInsidePage(app_assist::WContentViewController *view, Elm_Object_Item *naviItem);

#endif
