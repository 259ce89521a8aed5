#ifndef _ST_INFO_TESSID_MODEL_H_
#define _ST_INFO_TESSID_MODEL_H_

#include <string>

// Versions of the security platform's components, read afresh on every call; a key that
// cannot be read is answered with the unknown-value string id.
class StInfoTessidModel {
public:
    static StInfoTessidModel *getInstance();
    virtual ~StInfoTessidModel();

    std::string getTessidVersion();
    std::string getMdmVersion();
    std::string getPelorTizenVersion();
    std::string getVimoVersion();

private:
    StInfoTessidModel() = default;
    std::string _getTessidVersion(const std::string &key);

    static StInfoTessidModel *_instance;
};

#endif
