// Media metadata of the watch's sound files, from the profile's "media" section:
// "media": {"/opt/usr/data/settings/Ringtones/Dawn.ogg": {"title": "Dawn"}}

#include <metadata_extractor.h>

#include <cstring>
#include <string>

#include "PlatformState.h"

struct metadata_extractor_s {
    std::string path;
};

extern "C" {

int metadata_extractor_create(metadata_extractor_h *metadata) {
    if (!metadata)
        return METADATA_EXTRACTOR_ERROR_INVALID_PARAMETER;
    int code;
    if (platform::fault("metadata_extractor_create", nullptr, &code))
        return code;
    *metadata = new metadata_extractor_s();
    return METADATA_EXTRACTOR_ERROR_NONE;
}

int metadata_extractor_set_path(metadata_extractor_h metadata, const char *path) {
    if (!metadata || !path || !*path)
        return METADATA_EXTRACTOR_ERROR_INVALID_PARAMETER;
    int code;
    if (platform::fault("metadata_extractor_set_path", path, &code))
        return code;
    const nlohmann::json &profile = platform::profile();
    auto media = profile.find("media");
    if (media == profile.end() || !media->is_object() || !media->contains(path))
        return METADATA_EXTRACTOR_ERROR_FILE_EXISTS;
    metadata->path = path;
    return METADATA_EXTRACTOR_ERROR_NONE;
}

int metadata_extractor_get_metadata(metadata_extractor_h metadata,
                                    metadata_extractor_attr_e attribute, char **value) {
    if (!metadata || !value || metadata->path.empty())
        return METADATA_EXTRACTOR_ERROR_INVALID_PARAMETER;
    int code;
    if (platform::fault("metadata_extractor_get_metadata", metadata->path.c_str(), &code))
        return code;
    *value = nullptr;
    const char *name = attribute == METADATA_TITLE    ? "title"
                       : attribute == METADATA_ARTIST ? "artist"
                       : attribute == METADATA_ALBUM  ? "album"
                                                      : nullptr;
    const nlohmann::json &file = platform::profile()["media"][metadata->path];
    if (name && file.is_object() && file.contains(name) && file[name].is_string())
        *value = strdup(file[name].get<std::string>().c_str());
    return METADATA_EXTRACTOR_ERROR_NONE;
}

int metadata_extractor_destroy(metadata_extractor_h metadata) {
    if (!metadata)
        return METADATA_EXTRACTOR_ERROR_INVALID_PARAMETER;
    delete metadata;
    return METADATA_EXTRACTOR_ERROR_NONE;
}

}  // extern "C"
