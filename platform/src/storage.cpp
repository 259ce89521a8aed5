// Internal storage sizes from the profile's "storage" section:
// "storage": {"block_size": 4096, "total_blocks": 1048576, "available_blocks": 700000}
// and, where a watch keeps blocks back or counts in fragments of another size, "free_blocks"
// (default: the available ones) and "fragment_size" (default: the block size).

#include <storage.h>

#include <cstring>

#include "PlatformState.h"

extern "C" int storage_get_internal_memory_size(struct statvfs *buf) {
    if (!buf)
        return STORAGE_ERROR_INVALID_PARAMETER;
    int code;
    if (platform::fault("storage_get_internal_memory_size", nullptr, &code))
        return code;
    const nlohmann::json &profile = platform::profile();
    auto it = profile.find("storage");
    if (it == profile.end() || !it->is_object())
        return STORAGE_ERROR_NOT_SUPPORTED;
    memset(buf, 0, sizeof(*buf));
    try {
        buf->f_bsize = it->value("block_size", 4096UL);
        buf->f_frsize = it->value("fragment_size", buf->f_bsize);
        buf->f_blocks = it->value("total_blocks", 1048576UL);
        buf->f_bavail = it->value("available_blocks", 0UL);
        buf->f_bfree = it->value("free_blocks", buf->f_bavail);
    } catch (const nlohmann::json::exception &) {
        return STORAGE_ERROR_OPERATION_FAILED;
    }
    return STORAGE_ERROR_NONE;
}
