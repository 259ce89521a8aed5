#ifndef _APP_ASSIST_WSIGNAL_ID_GENERATOR_H_
#define _APP_ASSIST_WSIGNAL_ID_GENERATOR_H_

namespace app_assist {

// Hands out subscription ids shared by every signal of the process. Ids ascend, so listeners
// are called in the order they subscribed; 0 is never returned because it means "none".
class WSignalIdGenerator {
public:
    static unsigned int generate() {
        static unsigned int lastId = 0;
        if (++lastId == 0)
            ++lastId;
        return lastId;
    }
};

}  // namespace app_assist

#endif
