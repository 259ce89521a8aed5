#include "StInfoTessidModel.h"

#include <system_info.h>

#include <cstdlib>

#include "StInfoDefines.h"
#include "StLog.h"

StInfoTessidModel *StInfoTessidModel::_instance = nullptr;

StInfoTessidModel *StInfoTessidModel::getInstance() {
    if (!_instance)
        _instance = new StInfoTessidModel();
    return _instance;
}

StInfoTessidModel::~StInfoTessidModel() {}

std::string StInfoTessidModel::getTessidVersion() {
    return _getTessidVersion(ST_VENDOR_KEY("tizen/feature/tessid.version"));
}

std::string StInfoTessidModel::getMdmVersion() {
    return _getTessidVersion(ST_VENDOR_KEY("tizen/feature/mdm.version"));
}

std::string StInfoTessidModel::getPelorTizenVersion() {
    return _getTessidVersion(ST_VENDOR_KEY("tizen/feature/tessid.pelortizen.version"));
}

std::string StInfoTessidModel::getVimoVersion() {
    return _getTessidVersion(ST_VENDOR_KEY("tizen/feature/tessid.vimo.version"));
}

std::string StInfoTessidModel::_getTessidVersion(const std::string &key) {
    char *version = nullptr;
    int ret = system_info_get_custom_string(key.c_str(), &version);
    if (ret != SYSTEM_INFO_ERROR_NONE || !version) {
        ST_ERR("ret : %d", ret);
        free(version);
        return ST_UNKNOWN_TEXT;
    }
    std::string result = version;
    free(version);
    return result;
}
